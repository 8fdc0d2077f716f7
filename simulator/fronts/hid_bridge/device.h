// A device of the minidriver: the client side of a camera's pipe, with kernel functions.
#pragma once

#include "simulator/fronts/hid_bridge/minidriver.h"
#include "simulator/fronts/protocol.h"

namespace qvx::simulator {

// Constructed in the device extension that the class driver provides.
class Device {
 public:
  explicit Device(const CameraRecord& record) : camera(record) {
    KeInitializeEvent(&idle_, SynchronizationEvent, TRUE);
  }

  // Sends `size` bytes to the camera or receives them, and sets `size` to the number moved. One
  // transfer at a time. Returns false if the camera refuses, takes too long or is gone; in the last
  // two cases the next transfer reopens the pipe.
  bool transfer(const RequestHead& head, UCHAR* bytes, ULONG& size) {
    KeWaitForSingleObject(&idle_, Executive, KernelMode, FALSE, nullptr);
    const bool done = size <= maxBytes && (pipe_ != nullptr || open()) && ask(head, bytes, size);
    KeSetEvent(&idle_, IO_NO_INCREMENT, FALSE);
    return done;
  }

  void close() {
    if (pipe_ != nullptr) ZwClose(pipe_);
    pipe_ = nullptr;
  }

  const CameraRecord camera;

 private:
  bool open() {
    static constexpr wchar_t folder[] = L"\\??\\pipe\\";
    wchar_t path[(sizeof folder + sizeof camera.pipe) / sizeof(wchar_t)] = {};
    RtlCopyMemory(path, folder, sizeof folder);
    RtlCopyMemory(path + sizeof folder / sizeof(wchar_t) - 1, camera.pipe, sizeof camera.pipe);
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
      ULONG readMode = 1, completionMode = 0;  // message mode
    } modes;
    constexpr auto pipeInformation = static_cast<FILE_INFORMATION_CLASS>(23);
    ZwSetInformationFile(pipe_, &status, &modes, sizeof modes, pipeInformation);
    return true;
  }

  bool ask(const RequestHead& head, UCHAR* bytes, ULONG& size) {
    const ULONG sent = head.sets != 0 ? size : 0;
    Request request;
    UCHAR reply[replyHeadSize + maxBytes];
    request.head = head;
    request.head.wanted = size - sent;
    RtlCopyMemory(request.bytes, bytes, sent);
    ULONG replySize = replyHeadSize + request.head.wanted;
    if (!exchange(&request, sizeof head + sent, reply, replySize)) {
      close();
      return false;
    }
    size = sent + replySize - replyHeadSize;
    RtlCopyMemory(bytes, reply + replyHeadSize, replySize - replyHeadSize);
    return reply[0] != 0;
  }

  bool exchange(void* request, ULONG requestSize, void* reply, ULONG& replySize) {
    constexpr ULONG transceive =
        CTL_CODE(FILE_DEVICE_NAMED_PIPE, 5, METHOD_NEITHER, FILE_READ_DATA | FILE_WRITE_DATA);
    constexpr LONGLONG perMillisecond_100ns = 10'000;
    IO_STATUS_BLOCK done{};
    NTSTATUS status = ZwFsControlFile(pipe_, nullptr, nullptr, nullptr, &done, transceive, request,
                                      requestSize, reply, replySize);
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
    return status == STATUS_SUCCESS && replySize >= replyHeadSize;
  }

  KEVENT idle_;  // signalled while no transfer is in progress
  HANDLE pipe_ = nullptr;
};

}  // namespace qvx::simulator
