// What a camera in trouble does to its answers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qvx::wifi_camera {

enum class FaultKind {
  none,
  empty,     // no body
  half,      // fewer bytes than announced, then the connection closes
  noMarker,  // 8192 bytes without "res:"
  junk,      // binary, NULs included
  silent,    // the answer comes late
  refuse,    // connections are refused
};

struct Fault {
  FaultKind kind = FaultKind::none;
  std::uint32_t silence_ms = 0;
  std::uint32_t firstRequest = 1;  // counted from 1

  bool strikes(FaultKind wanted, std::uint64_t request) const {
    return kind == wanted && request >= firstRequest;
  }
};

// "KIND", "KIND:N", "silent:MS" or "silent:MS:N"; N is the first request that goes wrong.
std::optional<Fault> faultFrom(std::string_view text);

// The body that is sent instead. Half an answer is still whole here: the front cuts it.
std::string spoiled(const Fault& fault, std::uint64_t request, std::string body);

}  // namespace qvx::wifi_camera
