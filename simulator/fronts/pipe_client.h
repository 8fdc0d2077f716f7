// A front's end of a camera's pipe.
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

// Waits for an operation on a pipe, the last of the events being its own: the bytes moved; nothing
// when it fails, or is cancelled because another event or the limit comes first.
std::optional<DWORD> finish(HANDLE pipe, OVERLAPPED& operation, BOOL done,
                            std::span<const HANDLE> events, DWORD limit_ms);

// Whether a camera is still plugged in.
bool isServed(const std::wstring& pipe);

// Any thread may ask; several at once have a connection each.
class PipeClient {
 public:
  // The one of this process for that pipe; it stays.
  static PipeClient& of(const std::wstring& pipe);

  explicit PipeClient(const std::wstring& pipe) : path_(pathOfPipe(pipe)) {}

  // Bytes to the camera, or from it; how many. Nothing when the camera refuses, takes too long or
  // is gone.
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
