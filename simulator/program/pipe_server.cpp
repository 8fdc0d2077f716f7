#include "simulator/program/pipe_server.h"

#include <array>

#include "simulator/program/front_requests.h"

namespace qvx::simulator {

namespace {

// An event for one operation at a time.
struct PendingOperation {
  PendingOperation() { overlapped.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr); }
  ~PendingOperation() { CloseHandle(overlapped.hEvent); }
  PendingOperation(const PendingOperation&) = delete;
  PendingOperation& operator=(const PendingOperation&) = delete;

  OVERLAPPED overlapped{};
};

}  // namespace

PipeServer::PipeServer(PluggedCamera& camera, const std::wstring& pipe)
    : camera_(camera),
      path_(L"\\\\.\\pipe\\" + pipe),
      closing_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
  // The first instance is there before anyone learns of the pipe.
  acceptor_ = std::thread([this, first = createInstance()] { accept(first); });
}

PipeServer::~PipeServer() {
  close();
  acceptor_.join();
  std::unique_lock lock(guard_);
  ended_.wait(lock, [this] { return connections_ == 0; });
  CloseHandle(closing_);
}

HANDLE PipeServer::createInstance() const {
  return CreateNamedPipeW(path_.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED,
                          PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_REJECT_REMOTE_CLIENTS,
                          PIPE_UNLIMITED_INSTANCES, mostReplyBytes, mostRequestBytes, 0, nullptr);
}

// Waits for an operation's end, or for that of the server; returns whether it is done.
bool PipeServer::finish(HANDLE instance, OVERLAPPED& operation, BOOL done, DWORD& size) const {
  if (!done && GetLastError() != ERROR_IO_PENDING) return GetLastError() == ERROR_PIPE_CONNECTED;
  const std::array<HANDLE, 2> events = {closing_, operation.hEvent};
  if (WaitForMultipleObjects(events.size(), events.data(), FALSE, INFINITE) == WAIT_OBJECT_0) {
    CancelIoEx(instance, &operation);
  }
  return GetOverlappedResult(instance, &operation, &size, TRUE) != FALSE;
}

void PipeServer::accept(HANDLE instance) {
  for (PendingOperation operation; instance != INVALID_HANDLE_VALUE; instance = createInstance()) {
    DWORD size = 0;
    ResetEvent(operation.overlapped.hEvent);
    const BOOL connected = ConnectNamedPipe(instance, &operation.overlapped);
    if (!finish(instance, operation.overlapped, connected, size)) break;
    {
      const std::lock_guard lock(guard_);
      ++connections_;
    }
    std::thread([this, instance] { serve(instance); }).detach();
  }
  CloseHandle(instance);
}

void PipeServer::serve(HANDLE instance) {
  PendingOperation operation;
  std::array<std::uint8_t, mostRequestBytes> request{};
  for (;;) {
    DWORD size = 0;
    if (!finish(instance, operation.overlapped,
                ReadFile(instance, request.data(), request.size(), nullptr, &operation.overlapped),
                size)) {
      break;
    }
    const std::string reply = answerFront(camera_, {request.data(), size});
    if (!camera_.isPluggedIn() ||
        !finish(instance, operation.overlapped,
                WriteFile(instance, reply.data(), static_cast<DWORD>(reply.size()), nullptr,
                          &operation.overlapped),
                size)) {
      break;
    }
  }
  CloseHandle(instance);
  const std::lock_guard lock(guard_);
  --connections_;
  ended_.notify_all();
}

}  // namespace qvx::simulator
