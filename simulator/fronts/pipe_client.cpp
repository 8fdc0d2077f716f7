#include "simulator/fronts/pipe_client.h"

#include <algorithm>
#include <array>

namespace qvx::simulator {

namespace {

std::wstring pathOf(const std::wstring& pipe) {
  return L"\\\\.\\pipe\\" + pipe;
}

// For a moment all instances may be taken.
constexpr DWORD busyLimit_ms = 200;

}  // namespace

PipeClient::~PipeClient() {
  for (const Connection& connection : idle_) close(connection);
}

std::optional<std::size_t> PipeClient::ask(RequestKind kind, std::uint32_t number,
                                           std::span<const std::uint8_t> key,
                                           std::span<const std::uint8_t> bytes,
                                           std::span<std::uint8_t> reply, std::uint32_t limit_ms) {
  RequestHead head{kind, number, {}, static_cast<std::uint32_t>(reply.size())};
  if (key.size() > head.key.size()) return std::nullopt;
  std::copy(key.begin(), key.end(), head.key.begin());
  std::vector<std::uint8_t> request(sizeof head + bytes.size()),
      answer(sizeof(ReplyHead) + reply.size());
  std::memcpy(request.data(), &head, sizeof head);
  std::copy(bytes.begin(), bytes.end(), request.begin() + sizeof head);

  const auto connection = connect();
  if (!connection) return std::nullopt;
  const auto size = exchange(*connection, request, answer, limit_ms);
  if (!size || *size < sizeof(ReplyHead)) {
    close(*connection);
    return std::nullopt;
  }
  {
    const std::lock_guard lock(guard_);
    idle_.push_back(*connection);
  }
  ReplyHead told;
  std::memcpy(&told, answer.data(), sizeof told);
  if (told.done == 0) return std::nullopt;
  std::copy_n(answer.begin() + sizeof told, *size - sizeof told, reply.begin());
  return *size - sizeof told;
}

std::optional<PipeClient::Connection> PipeClient::connect() {
  {
    const std::lock_guard lock(guard_);
    if (!idle_.empty()) {
      const Connection connection = idle_.back();
      idle_.pop_back();
      return connection;
    }
  }
  const std::wstring path = pathOf(pipe_);
  const auto open = [&path] {
    return CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                       FILE_FLAG_OVERLAPPED, nullptr);
  };
  HANDLE pipe = open();
  if (pipe == INVALID_HANDLE_VALUE && GetLastError() == ERROR_PIPE_BUSY &&
      WaitNamedPipeW(path.c_str(), busyLimit_ms)) {
    pipe = open();
  }
  if (pipe == INVALID_HANDLE_VALUE) return std::nullopt;
  DWORD mode = PIPE_READMODE_MESSAGE;
  SetNamedPipeHandleState(pipe, &mode, nullptr, nullptr);
  return Connection{pipe, CreateEventW(nullptr, TRUE, FALSE, nullptr)};
}

void PipeClient::close(const Connection& connection) {
  CloseHandle(connection.pipe);
  CloseHandle(connection.event);
}

std::optional<std::size_t> PipeClient::exchange(const Connection& connection,
                                                std::span<std::uint8_t> request,
                                                std::span<std::uint8_t> reply,
                                                std::uint32_t limit_ms) {
  OVERLAPPED transfer{};
  transfer.hEvent = connection.event;
  DWORD size = 0;
  const BOOL done =
      TransactNamedPipe(connection.pipe, request.data(), static_cast<DWORD>(request.size()),
                        reply.data(), static_cast<DWORD>(reply.size()), &size, &transfer);
  if (!done && GetLastError() != ERROR_IO_PENDING) return std::nullopt;
  if (WaitForSingleObject(connection.event, limit_ms) != WAIT_OBJECT_0) {
    CancelIoEx(connection.pipe, &transfer);
  }
  if (!GetOverlappedResult(connection.pipe, &transfer, &size, TRUE)) return std::nullopt;
  return size;
}

bool isServed(const std::wstring& pipe) {
  return WaitNamedPipeW(pathOf(pipe).c_str(), 1) || GetLastError() != ERROR_FILE_NOT_FOUND;
}

}  // namespace qvx::simulator
