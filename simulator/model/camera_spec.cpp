#include "simulator/model/camera_spec.h"

#include "simulator/model/product.h"
#include "simulator/model/words.h"

namespace qvx::simulator {

namespace {

constexpr Word<Transport> transports[] = {
    {"wifi", Transport::wifi},
    {"usb", Transport::usb},
    {"hid", Transport::hid},
    {"usb3", Transport::usb3},
};

constexpr Word<Unit> units[] = {
    {"bridge", Unit::bridge}, {"variant1", Unit::variant1}, {"foreign", Unit::foreign},
    {"none", Unit::none},     {"plain", Unit::plain},       {"absent", Unit::absent},
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

template <class Target, class Value>
bool assign(Target& target, const std::optional<Value>& value) {
  if (value) target = static_cast<Target>(*value);
  return value.has_value();
}

// "3C7E:0970", or the product id alone.
bool takeIds(std::string_view text, CameraSpec& spec) {
  constexpr int hexadecimal = 16;
  constexpr std::uint32_t most = 0xFFFF;
  if (text.find(':') != std::string_view::npos &&
      !assign(spec.vendorId, numberFrom(takePart(text, ':'), 0, most, hexadecimal))) {
    return false;
  }
  return assign(spec.productId, numberFrom(text, 1, most, hexadecimal));
}

enum : unsigned { onWifi = 1, onUsb = 2, onHid = 4, onUsb3 = 8, onVideo = 14, everywhere = 15 };

struct Option {
  std::string_view name;
  unsigned transports;  // of cameras that have it
  bool (*take)(std::string_view text, CameraSpec& spec);
};

constexpr Option options[] = {
    {"name", everywhere,
     [](std::string_view text, CameraSpec& spec) {
       spec.name = text;
       return !text.empty();
     }},
    {"zoom", everywhere,
     [](std::string_view text, CameraSpec& spec) {
       return assign(spec.zoom, zoomMotionFrom(text)) &&
              productFor(spec.productId).magnification != CalibrationForm::none;
     }},
    {"button", everywhere,
     [](std::string_view text, CameraSpec& spec) {
       return assign(spec.buttonPeriod_ms, duration_msFrom(text));
     }},
    {"fault", everywhere,
     [](std::string_view text, CameraSpec& spec) { return assign(spec.fault, faultFrom(text)); }},
    {"port", onWifi,
     [](std::string_view text, CameraSpec& spec) {
       return assign(spec.port, numberFrom(text, 0, 0xFFFF));
     }},
    {"chip", onUsb | onHid,
     [](std::string_view text, CameraSpec& spec) {
       return assign(spec.setup.family, valueOf(text, chips));
     }},
    {"firmware", onUsb | onHid,
     [](std::string_view text, CameraSpec& spec) {
       return assign(spec.setup.firmware, valueOf(text, firmwares));
     }},
    {"unit", onVideo,
     [](std::string_view text, CameraSpec& spec) {
       return assign(spec.unit, valueOf(text, units));
     }},
    {"reports", onHid,
     [](std::string_view text, CameraSpec& spec) {
       return assign(spec.reports, valueOf(text, reportKinds));
     }},
};

bool takeOption(std::string_view text, CameraSpec& spec) {
  if (text.find('=') == std::string_view::npos) return false;
  const std::string_view name = takePart(text, '=');
  const unsigned transport = 1U << static_cast<unsigned>(spec.transport);
  for (const Option& option : options) {
    if (option.name == name) return (option.transports & transport) != 0 && option.take(text, spec);
  }
  return false;
}

std::string pidText(std::uint16_t productId) {
  return hex(productId, 4).substr(2);
}

}  // namespace

std::optional<CameraSpec> cameraSpecFrom(std::string_view text, std::string& problem) {
  const std::string whole(text);
  CameraSpec spec;
  const bool known = assign(spec.transport, valueOf(takePart(text, ':'), transports));
  if (spec.transport == Transport::usb) spec.unit = Unit::bridge;
  std::string_view part = takePart(text, ',');
  bool good = known && takeIds(part, spec);
  while (good && !text.empty()) {
    part = takePart(text, ',');
    good = takeOption(part, spec);
  }
  if (!good) {
    problem =
        "\"" + whole + "\": " +
        (known ? "not understood, or not what such a camera has: \"" + std::string(part) + "\""
               : "a camera begins with wifi:, usb:, hid: or usb3:");
    return std::nullopt;
  }
  if (spec.name.empty()) spec.name = "Simulated microscope " + pidText(spec.productId);
  return spec;
}

std::string shortNameOf(const CameraSpec& spec) {
  return std::string(wordFor(spec.transport, transports)) + "-" + pidText(spec.productId);
}

const char cameraSpecHelp[] =
    R"(A camera is written wifi:PID, usb:PID, hid:PID or usb3:PID, its product id in
hexadecimal (or VID:PID for one of another maker), and then any of
  ,name=TEXT      its name
  ,zoom=Z         63 stands at x63; 1:200/10s turns from x1 to x200 in 10 s and back
  ,button=2s      touches its button every 2 s
  ,fault=FAULT    what goes wrong, see below
  ,port=N         wifi: TCP port (default 8080); 0 takes any free one
  ,chip=C         usb, hid: its bridge chip is of generation 0, 2, or 2-hid
                  (2 on its HID interface only)
  ,firmware=F     usb, hid: one-shot, wide or narrow, newest to oldest
  ,unit=U         usb: its extension unit: bridge, variant1, foreign, none, or
                  plain (not even a topology); absent: no video interface
  ,reports=R      hid: its feature reports: bridge, extra, without-block, none

A fault is KIND, KIND:N (from the N-th access on) or KIND:N+M (M of them):
  refuse          accesses are refused
  stall:600ms     they are answered so late
  empty           replies are empty
  half            half of each reply comes
  junk            replies are bytes of all kinds
  no-marker       replies are filler
  lose            writes are acknowledged and not done
  unplug          the camera is gone
  none            all is well
)";

}  // namespace qvx::simulator
