#include "simulator/fronts/hid_bridge/camera_pipe.h"

namespace qvx::simulator {

namespace {

constexpr ULONG transceive =
    CTL_CODE(FILE_DEVICE_NAMED_PIPE, 5, METHOD_NEITHER, FILE_READ_DATA | FILE_WRITE_DATA);
constexpr LONGLONG perMillisecond_100ns = 10'000;
constexpr int pipeInformation = 23;  // FilePipeInformation

struct PipeModes {
  ULONG readMode, completionMode;
};

}  // namespace

bool CameraPipe::ask(const RequestHead& head, const void* bytes, ULONG byteCount, void* reply,
                     ULONG room, ULONG& size) {
  UCHAR request[mostRequestBytes], answer[mostReplyBytes];
  if (byteCount > mostBytes || room > mostBytes || (pipe_ == nullptr && !open())) return false;
  RtlCopyMemory(request, &head, sizeof head);
  RtlCopyMemory(request + sizeof head, bytes, byteCount);
  ULONG answerSize = sizeof(ReplyHead) + room;
  if (!exchange(request, sizeof head + byteCount, answer, answerSize)) {
    close();
    return false;
  }
  ReplyHead told;
  RtlCopyMemory(&told, answer, sizeof told);
  size = answerSize - static_cast<ULONG>(sizeof told);
  RtlCopyMemory(reply, answer + sizeof told, size);
  return told.done != 0;
}

bool CameraPipe::open() {
  static constexpr wchar_t folder[] = L"\\??\\pipe\\";
  wchar_t path[(sizeof folder + sizeof CameraRecord::pipe) / sizeof(wchar_t)] = {};
  RtlCopyMemory(path, folder, sizeof folder);
  RtlCopyMemory(path + sizeof folder / sizeof(wchar_t) - 1, name_, sizeof CameraRecord::pipe);
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, path);
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, &name, OBJ_CASE_INSENSITIVE, nullptr, nullptr);
  IO_STATUS_BLOCK status;
  if (ZwCreateFile(&pipe_, GENERIC_READ | GENERIC_WRITE | SYNCHRONIZE, &attributes, &status,
                   nullptr, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, FILE_OPEN, 0, nullptr,
                   0) != STATUS_SUCCESS) {
    pipe_ = nullptr;
    return false;
  }
  PipeModes modes = {1, 0};  // whole messages
  ZwSetInformationFile(pipe_, &status, &modes, sizeof modes,
                       static_cast<FILE_INFORMATION_CLASS>(pipeInformation));
  InitializeObjectAttributes(&attributes, nullptr, 0, nullptr, nullptr);
  if (ZwCreateEvent(&event_, EVENT_ALL_ACCESS, &attributes, SynchronizationEvent, FALSE) ==
      STATUS_SUCCESS) {
    return true;
  }
  event_ = nullptr;
  close();
  return false;
}

void CameraPipe::close() {
  if (pipe_ != nullptr) ZwClose(pipe_);
  if (event_ != nullptr) ZwClose(event_);
  pipe_ = event_ = nullptr;
}

bool CameraPipe::exchange(const void* request, ULONG requestSize, void* reply, ULONG& replySize) {
  IO_STATUS_BLOCK done{};
  NTSTATUS status = ZwFsControlFile(pipe_, event_, nullptr, nullptr, &done, transceive,
                                    const_cast<void*>(request), requestSize, reply, replySize);
  if (status == STATUS_PENDING) {
    LARGE_INTEGER limit;
    limit.QuadPart = -perMillisecond_100ns * static_cast<LONGLONG>(transferLimit_ms);
    if (ZwWaitForSingleObject(event_, FALSE, &limit) != STATUS_SUCCESS) {
      IO_STATUS_BLOCK cancelled;
      ZwCancelIoFile(pipe_, &cancelled);
      ZwWaitForSingleObject(event_, FALSE, nullptr);
      return false;
    }
    status = done.Status;
  }
  replySize = static_cast<ULONG>(done.Information);
  return status == STATUS_SUCCESS && replySize >= sizeof(ReplyHead);
}

}  // namespace qvx::simulator
