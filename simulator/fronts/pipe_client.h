// A front's end of a camera's pipe.
#pragma once

#include <windows.h>

#include <cstring>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "simulator/fronts/protocol.h"

namespace qvx::simulator {

// Any thread may ask; several at once have a connection each.
class PipeClient {
 public:
  explicit PipeClient(std::wstring pipe) : pipe_(std::move(pipe)) {}
  ~PipeClient();
  PipeClient(const PipeClient&) = delete;
  PipeClient& operator=(const PipeClient&) = delete;

  const std::wstring& pipe() const { return pipe_; }

  // The bytes of the reply, in `reply`; how many there are. Nothing when the camera refuses, takes
  // too long or is gone.
  std::optional<std::size_t> ask(RequestKind kind, std::uint32_t number,
                                 std::span<const std::uint8_t> key,
                                 std::span<const std::uint8_t> bytes, std::span<std::uint8_t> reply,
                                 std::uint32_t limit_ms = transferLimit_ms);

  // For what has a fixed size.
  template <class Answer>
  std::optional<Answer> askFor(RequestKind kind, std::uint32_t number = 0) {
    Answer answer;
    const std::span bytes(reinterpret_cast<std::uint8_t*>(&answer), sizeof answer);
    const auto size = ask(kind, number, {}, {}, bytes);
    return size == sizeof answer ? std::optional(answer) : std::nullopt;
  }

 private:
  struct Connection {
    HANDLE pipe, event;
  };

  std::optional<Connection> connect();
  static void close(const Connection& connection);
  static std::optional<std::size_t> exchange(const Connection& connection,
                                             std::span<std::uint8_t> request,
                                             std::span<std::uint8_t> reply, std::uint32_t limit_ms);

  const std::wstring pipe_;
  std::mutex guard_;
  std::vector<Connection> idle_;
};

// Whether a camera is still plugged in.
bool isServed(const std::wstring& pipe);

}  // namespace qvx::simulator
