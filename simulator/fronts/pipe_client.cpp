#include "simulator/fronts/pipe_client.h"

#include <algorithm>
#include <cstring>
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

std::optional<std::size_t> PipeClient::ask(RequestHead head, std::span<const std::uint8_t> bytes,
                                           std::span<std::uint8_t> reply, std::uint32_t limit_ms) {
  head.wanted = static_cast<std::uint32_t>(reply.size());
  std::vector<std::uint8_t> request(sizeof head + bytes.size()),
      answer(sizeof(ReplyHead) + reply.size());
  std::memcpy(request.data(), &head, sizeof head);
  std::ranges::copy(bytes, request.begin() + sizeof head);

  auto connection = connect();
  if (!connection) return std::nullopt;
  OVERLAPPED transfer{};
  const HANDLE event = transfer.hEvent = connection->event.get();
  const BOOL done =
      TransactNamedPipe(connection->pipe.get(), request.data(), static_cast<DWORD>(request.size()),
                        answer.data(), static_cast<DWORD>(answer.size()), nullptr, &transfer);
  const auto size = finish(connection->pipe.get(), transfer, done, {&event, 1}, limit_ms);
  if (!size || *size < sizeof(ReplyHead)) return std::nullopt;
  {
    const std::lock_guard lock(guard_);
    idle_.push_back(std::move(*connection));
  }
  ReplyHead told;
  std::memcpy(&told, answer.data(), sizeof told);
  if (told.done == 0) return std::nullopt;
  std::copy_n(answer.begin() + sizeof told, *size - sizeof told, reply.begin());
  return *size - sizeof told;
}

std::optional<PipeClient::Connection> PipeClient::connect() {
  constexpr DWORD busyLimit_ms = 200;  // for a moment all instances may be taken
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
