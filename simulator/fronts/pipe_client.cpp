#include "simulator/fronts/pipe_client.h"

#include <algorithm>
#include <map>

namespace qvx::simulator {

std::wstring pathOfPipe(const std::wstring& pipe) {
  return L"\\\\.\\pipe\\" + pipe;
}

std::optional<DWORD> finish(HANDLE pipe, OVERLAPPED& operation, BOOL done,
                            std::span<const HANDLE> events, DWORD limit_ms) {
  const DWORD error = done ? ERROR_SUCCESS : GetLastError();
  if (error == ERROR_PIPE_CONNECTED) return 0;
  if (error != ERROR_SUCCESS && error != ERROR_IO_PENDING) return std::nullopt;
  const auto count = static_cast<DWORD>(events.size());
  if (WaitForMultipleObjects(count, events.data(), FALSE, limit_ms) != WAIT_OBJECT_0 + count - 1) {
    CancelIoEx(pipe, &operation);
  }
  DWORD size = 0;
  return GetOverlappedResult(pipe, &operation, &size, TRUE) ? std::optional(size) : std::nullopt;
}

bool isServed(const std::wstring& pipe) {
  return WaitNamedPipeW(pathOfPipe(pipe).c_str(), 1) || GetLastError() != ERROR_FILE_NOT_FOUND;
}

PipeClient& PipeClient::of(const std::wstring& pipe) {
  static std::mutex guard;
  static std::map<std::wstring, PipeClient> clients;
  const std::lock_guard lock(guard);
  return clients.try_emplace(pipe, pipe).first->second;
}

std::optional<std::size_t> PipeClient::transfer(const RequestHead& head,
                                                std::span<std::uint8_t> bytes,
                                                std::uint32_t limit_ms) {
  const std::size_t sent = head.sets != 0 ? bytes.size() : 0, wanted = bytes.size() - sent;
  if (sent > maxBytes) return std::nullopt;
  Request request{head, {}};
  request.head.wanted = static_cast<std::uint32_t>(wanted);
  std::ranges::copy(bytes.first(sent), request.bytes);
  std::vector<std::uint8_t> reply(replyHeadSize + wanted);

  auto connection = connect();
  if (!connection) return std::nullopt;
  OVERLAPPED transfer{};
  const HANDLE event = transfer.hEvent = connection->event.get();
  const BOOL done =
      TransactNamedPipe(connection->pipe.get(), &request, static_cast<DWORD>(sizeof head + sent),
                        reply.data(), static_cast<DWORD>(reply.size()), nullptr, &transfer);
  const auto size = finish(connection->pipe.get(), transfer, done, {&event, 1}, limit_ms);
  if (!size || *size < replyHeadSize) return std::nullopt;
  {
    const std::lock_guard lock(guard_);
    idle_.push_back(std::move(*connection));
  }
  if (reply[0] == 0) return std::nullopt;
  std::copy(reply.begin() + replyHeadSize, reply.begin() + *size, bytes.begin());
  return sent + *size - replyHeadSize;
}

std::optional<PipeClient::Connection> PipeClient::connect() {
  constexpr DWORD busyLimit_ms = 200;  // all instances may be busy for a moment
  {
    const std::lock_guard lock(guard_);
    if (!idle_.empty()) {
      Connection connection = std::move(idle_.back());
      idle_.pop_back();
      return connection;
    }
  }
  HANDLE pipe = nullptr;
  do {
    pipe = CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                       FILE_FLAG_OVERLAPPED, nullptr);
  } while (pipe == INVALID_HANDLE_VALUE && GetLastError() == ERROR_PIPE_BUSY &&
           WaitNamedPipeW(path_.c_str(), busyLimit_ms));
  if (pipe == INVALID_HANDLE_VALUE) return std::nullopt;
  DWORD mode = PIPE_READMODE_MESSAGE;
  SetNamedPipeHandleState(pipe, &mode, nullptr, nullptr);
  return Connection{Handle(pipe), makeEvent()};
}

}  // namespace qvx::simulator
