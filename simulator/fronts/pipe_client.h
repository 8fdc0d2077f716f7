// The client side of a camera's pipe.
#pragma once

#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "simulator/fronts/handle.h"
#include "simulator/fronts/protocol.h"

namespace qvx::simulator {

std::wstring pathOfPipe(const std::wstring& pipe);

// Waits for an operation on a pipe whose own event is the last of `events`. Returns the number of
// bytes moved; nothing if it fails, or is cancelled because another event or the limit comes first.
std::optional<DWORD> finish(HANDLE pipe, OVERLAPPED& operation, BOOL done,
                            std::span<const HANDLE> events, DWORD limit_ms);

// Whether a camera is still plugged in.
bool isServed(const std::wstring& pipe);

// Thread-safe; concurrent transfers use separate connections.
class PipeClient {
 public:
  // The client of this process for that pipe; it is never destroyed.
  static PipeClient& of(const std::wstring& pipe);

  explicit PipeClient(const std::wstring& pipe) : path_(pathOfPipe(pipe)) {}

  // Sends bytes to the camera or receives them; returns their number. Nothing if the camera
  // refuses, takes too long or is gone.
  std::optional<std::size_t> transfer(const RequestHead& head, std::span<std::uint8_t> bytes,
                                      std::uint32_t limit_ms = transferLimit_ms);

 private:
  struct Connection {
    Handle pipe, event;
  };

  std::optional<Connection> connect();

  const std::wstring path_;
  std::mutex guard_;
  std::vector<Connection> idle_;
};

}  // namespace qvx::simulator
