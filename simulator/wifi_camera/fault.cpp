#include "simulator/wifi_camera/fault.h"

#include "simulator/wifi_camera/number.h"

namespace qvx::wifi_camera {

namespace {

constexpr struct {
  std::string_view name;
  FaultKind kind;
} kinds[] = {
    {"empty", FaultKind::empty}, {"half", FaultKind::half},     {"no-marker", FaultKind::noMarker},
    {"junk", FaultKind::junk},   {"silent", FaultKind::silent}, {"refuse", FaultKind::refuse},
};

FaultKind kindOf(std::string_view name) {
  for (const auto& row : kinds) {
    if (row.name == name) return row.kind;
  }
  return FaultKind::none;
}

// Takes the text up to the next colon, and the colon.
std::string_view takeField(std::string_view& text) {
  const std::size_t end = text.find(':');
  const std::string_view field = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return field;
}

// Every byte value, NUL first.
std::string everyByte() {
  std::string bytes;
  for (int value = 0; value < 256; ++value) bytes += static_cast<char>(value);
  return bytes;
}

}  // namespace

std::optional<Fault> faultFrom(std::string_view text) {
  constexpr std::uint32_t longest_ms = 600'000, lastRequest = 1'000'000'000;
  if (text.ends_with(':')) return std::nullopt;
  Fault fault;
  fault.kind = kindOf(takeField(text));
  if (fault.kind == FaultKind::none) return std::nullopt;
  if (fault.kind == FaultKind::silent) {
    const auto silence_ms = numberFrom(takeField(text), 1, longest_ms);
    if (!silence_ms) return std::nullopt;
    fault.silence_ms = *silence_ms;
  }
  if (text.empty()) return fault;
  const auto first = numberFrom(text, 1, lastRequest);
  if (!first) return std::nullopt;
  fault.firstRequest = *first;
  return fault;
}

std::string spoiled(const Fault& fault, std::uint64_t request, std::string body) {
  constexpr std::size_t oneRead = 8192;  // as much as a client takes of an answer
  if (fault.strikes(FaultKind::empty, request)) return {};
  if (fault.strikes(FaultKind::noMarker, request)) return std::string(oneRead, 'x');
  if (fault.strikes(FaultKind::junk, request)) return everyByte();
  return body;
}

}  // namespace qvx::wifi_camera
