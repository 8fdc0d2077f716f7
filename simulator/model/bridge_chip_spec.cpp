#include "simulator/model/bridge_chip_spec.h"

#include <algorithm>
#include <charconv>

namespace qvx::simulator {

namespace {

using Unit = BridgeSpec::Unit;

template <class Value>
struct Word {
  std::string_view text;
  Value value;
};

constexpr Word<Unit> units[] = {
    {"bridge", Unit::bridge}, {"variant1", Unit::variant1}, {"foreign", Unit::foreign},
    {"none", Unit::none},     {"plain", Unit::plain},
};

constexpr Word<HidReports> reportKinds[] = {
    {"bridge", HidReports::bridge},
    {"extra", HidReports::extra},
    {"without-block", HidReports::withoutBlock},
    {"none", HidReports::none},
};

constexpr Word<std::uint8_t> chips[] = {
    {"0", BridgeFamily::generation0},
    {"2", BridgeFamily::generation2},
    {"2-hid", BridgeFamily::generation2HidOnly},
};

constexpr Word<BridgeFirmware> firmwares[] = {
    {"narrow", BridgeFirmware::narrow},
    {"wide", BridgeFirmware::wide},
    {"one-shot", BridgeFirmware::oneShot},
};

template <class Value, std::size_t count>
bool choose(std::string_view text, const Word<Value> (&words)[count], Value& value) {
  for (const auto& word : words) {
    if (word.text != text) continue;
    value = word.value;
    return true;
  }
  return false;
}

template <class Number>
bool number(std::string_view text, int base, Number& value) {
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, value, base);
  return error == std::errc() && stopped == end;
}

bool duration(std::string_view text, std::uint32_t& value_ms) {
  const bool milliseconds = text.ends_with("ms");
  if (!text.ends_with('s')) return false;
  text.remove_suffix(milliseconds ? 2 : 1);
  constexpr std::uint32_t most = 1'000'000;
  if (!number(text, 10, value_ms) || value_ms > most) return false;
  if (!milliseconds) value_ms *= 1000;
  return true;
}

// Cuts the first part off a text whose parts are separated by that character.
std::string_view takePart(std::string_view& text, char separator) {
  const std::string_view part = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(part.size() + 1, text.size()));
  return part;
}

// "3C7E:0970", or the product id alone.
bool ids(std::string_view text, BridgeSpec& spec) {
  const std::size_t colon = text.find(':');
  if (colon != std::string_view::npos) {
    if (!number(text.substr(0, colon), 16, spec.vendorId)) return false;
    text.remove_prefix(colon + 1);
  }
  return number(text, 16, spec.productId);
}

// "refuse", "refuse:3", "stall:600ms", "stall:600ms:3".
bool fault(std::string_view text, BridgeSpec& spec) {
  const std::string_view kind = takePart(text, ':');
  if (kind == "none") {
    spec.fault = {};
    return text.empty();
  }
  spec.fault.kind = kind == "stall" ? BridgeFault::stall : BridgeFault::refuse;
  if (kind != "stall" && kind != "refuse") return false;
  if (kind == "stall" && !duration(takePart(text, ':'), spec.fault.stall_ms)) return false;
  return text.empty() || number(text, 10, spec.fault.first);
}

bool name(std::string_view text, BridgeSpec& spec) {
  spec.name = text;
  return !text.empty();
}

bool chip(std::string_view text, BridgeSpec& spec) {
  return choose(text, chips, spec.setup.family);
}

bool firmware(std::string_view text, BridgeSpec& spec) {
  return choose(text, firmwares, spec.setup.firmware);
}

bool unit(std::string_view text, BridgeSpec& spec) {
  return choose(text, units, spec.unit);
}

bool reports(std::string_view text, BridgeSpec& spec) {
  return choose(text, reportKinds, spec.reports);
}

bool zoom(std::string_view text, BridgeSpec& spec) {
  spec.zoom = zoomMotionFrom(text);
  return spec.zoom.has_value();
}

bool button(std::string_view text, BridgeSpec& spec) {
  return duration(text, spec.buttonPeriod_ms);
}

struct Option {
  std::string_view name;
  bool (*take)(std::string_view text, BridgeSpec& spec);
};

constexpr Option options[] = {
    {"name", name},       {"chip", chip}, {"firmware", firmware}, {"unit", unit},
    {"reports", reports}, {"zoom", zoom}, {"button", button},     {"fault", fault},
};

bool takeOption(std::string_view text, BridgeSpec& spec) {
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) return false;
  for (const Option& option : options) {
    if (option.name == text.substr(0, equals)) return option.take(text.substr(equals + 1), spec);
  }
  return false;
}

std::string hexDigits(std::uint16_t value) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (int shift = 12; shift >= 0; shift -= 4) text += digits[value >> shift & 15];
  return text;
}

}  // namespace

std::optional<BridgeSpec> bridgeSpecFrom(std::string_view text, std::string& problem) {
  BridgeSpec spec;
  for (bool first = true; first || !text.empty(); first = false) {
    const std::string_view part = takePart(text, ',');
    if (first ? ids(part, spec) : takeOption(part, spec)) continue;
    problem = "not understood: \"" + std::string(part) + "\"";
    return std::nullopt;
  }
  if (spec.name.empty()) spec.name = "Simulated microscope " + hexDigits(spec.productId);
  return spec;
}

std::string withOptions(std::string_view text, std::string_view options) {
  std::string result(takePart(text, ','));
  std::string added(1, ',');
  added += options;
  while (!text.empty()) {
    std::string part(1, ',');
    part += takePart(text, ',');
    const bool replaced = added.find(part.substr(0, part.find('=') + 1)) != std::string::npos;
    if (!replaced) result += part;
  }
  return result + added;
}

const char bridgeSpecHelp[] =
    "A camera is written [VID:]PID[,OPTION=VALUE...], ids in hexadecimal:\n"
    "  name=TEXT      its name\n"
    "  chip=0         bridge chip: generation 0, 2, or 2-hid (2 on its HID interface only)\n"
    "  firmware=F     one-shot, wide or narrow: newest to oldest\n"
    "  unit=U         bridge, variant1, foreign, none, or plain: the extension unit it has\n"
    "  reports=R      bridge, extra, without-block or none: the feature reports it has\n"
    "  zoom=Z         63 stands at x63; 1:20/10s sweeps from x1 to x20 in 10 s and back\n"
    "  button=2s      presses its touch button every 2 s\n"
    "  fault=FAULT    refuse[:N] or stall:600ms[:N]: from the N-th transfer on\n";

}  // namespace qvx::simulator
