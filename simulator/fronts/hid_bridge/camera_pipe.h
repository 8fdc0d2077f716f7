// The driver's end of a camera's pipe, in the kernel's terms.
#pragma once

#include "simulator/fronts/hid_bridge/minidriver.h"
#include "simulator/fronts/protocol.h"

namespace qvx::simulator {

// One request at a time.
class CameraPipe {
 public:
  // The name is a record's.
  explicit CameraPipe(const wchar_t* name) : name_(name) {}

  // The reply's bytes go to `reply`, and how many there are to `size`. False when the camera
  // refuses, takes too long or is gone; what is asked next opens the pipe anew.
  bool ask(const RequestHead& head, const void* bytes, ULONG byteCount, void* reply, ULONG& size) {
    UCHAR request[mostRequestBytes], answer[mostReplyBytes];
    if (byteCount > mostBytes || head.wanted > mostBytes || (pipe_ == nullptr && !open())) {
      return false;
    }
    RtlCopyMemory(request, &head, sizeof head);
    RtlCopyMemory(request + sizeof head, bytes, byteCount);
    ULONG answerSize = sizeof(ReplyHead) + head.wanted;
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

  void close() {
    if (pipe_ != nullptr) ZwClose(pipe_);
    pipe_ = nullptr;
  }

 private:
  bool open() {
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
    struct {
      ULONG readMode = 1, completionMode = 0;  // whole messages
    } modes;
    constexpr auto pipeInformation = static_cast<FILE_INFORMATION_CLASS>(23);
    ZwSetInformationFile(pipe_, &status, &modes, sizeof modes, pipeInformation);
    return true;
  }

  bool exchange(const void* request, ULONG requestSize, void* reply, ULONG& replySize) {
    constexpr ULONG transceive =
        CTL_CODE(FILE_DEVICE_NAMED_PIPE, 5, METHOD_NEITHER, FILE_READ_DATA | FILE_WRITE_DATA);
    constexpr LONGLONG perMillisecond_100ns = 10'000;
    IO_STATUS_BLOCK done{};
    NTSTATUS status = ZwFsControlFile(pipe_, nullptr, nullptr, nullptr, &done, transceive,
                                      const_cast<void*>(request), requestSize, reply, replySize);
    if (status == STATUS_PENDING) {
      LARGE_INTEGER limit;
      limit.QuadPart = -perMillisecond_100ns * static_cast<LONGLONG>(transferLimit_ms);
      if (ZwWaitForSingleObject(pipe_, FALSE, &limit) != STATUS_SUCCESS) {
        IO_STATUS_BLOCK cancelled;
        ZwCancelIoFile(pipe_, &cancelled);
        ZwWaitForSingleObject(pipe_, FALSE, nullptr);
        return false;
      }
      status = done.Status;
    }
    replySize = static_cast<ULONG>(done.Information);
    return status == STATUS_SUCCESS && replySize >= sizeof(ReplyHead);
  }

  const wchar_t* const name_;
  HANDLE pipe_ = nullptr;
};

}  // namespace qvx::simulator
