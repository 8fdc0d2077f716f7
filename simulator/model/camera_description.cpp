#include "simulator/model/camera_description.h"

#include "simulator/model/product.h"
#include "simulator/model/words.h"

namespace qvx::simulator {

namespace {

using Text = std::string_view;

// In the order of the enumerations that they name.
constexpr Text transportNames[] = {"wifi", "usb", "hid", "usb3"};
constexpr Text units[] = {"bridge", "variant1", "foreign", "none", "plain", "absent"};
constexpr Text reportKinds[] = {"bridge", "extra", "without-block", "none"};
constexpr Text firmwares[] = {"narrow", "wide", "one-shot"};
constexpr Text chips[] = {"0", "2", "2-hid"};
constexpr std::uint8_t families[] = {BridgeFamily::generation0, BridgeFamily::generation2,
                                     BridgeFamily::generation2HidOnly};

template <std::size_t count>
std::optional<std::ptrdiff_t> placeOf(Text name, const Text (&names)[count]) {
  const auto* const found = std::find(std::begin(names), std::end(names), name);
  return found == std::end(names) ? std::nullopt : std::optional(found - names);
}

template <class Target, class Value>
bool assign(Target& target, const std::optional<Value>& value) {
  if (value) target = static_cast<Target>(*value);
  return value.has_value();
}

bool takeName(Text text, CameraDescription& camera) {
  camera.name = text;
  return !text.empty();
}

bool takeZoom(Text text, CameraDescription& camera) {
  return assign(camera.zoom, zoomMotionFrom(text)) &&
         productFor(camera.productId).magnification != CalibrationForm::none;
}

enum : unsigned { onWifi = 1, onUsb = 2, onHid = 4, onUsb3 = 8, onVideo = 14, everywhere = 15 };

constexpr struct {
  Text form, meaning;
  unsigned transports;  // that have the option
  bool (*take)(Text text, CameraDescription& camera);
} options[] = {
    {"name=TEXT", "its name", everywhere, takeName},
    {"zoom=Z", "63 stands at x63; 1:200/10s turns from x1 to x200 in 10 s and back", everywhere,
     takeZoom},
    {"button=2s", "touches its button every 2 s", everywhere,
     [](Text text, CameraDescription& camera) {
       return assign(camera.buttonPeriod_ms, duration_msFrom(text));
     }},
    {"fault=FAULT", "what goes wrong, see below", everywhere,
     [](Text text, CameraDescription& camera) { return assign(camera.fault, faultFrom(text)); }},
    {"port=N", "wifi: TCP port (default 8080); 0 takes any free one", onWifi,
     [](Text text, CameraDescription& camera) {
       return assign(camera.port, numberFrom(text, 0, 0xFFFF));
     }},
    {"chip=C", "usb, hid: generation of its bridge chip: 0, 2, or 2-hid (2 on HID only)",
     onUsb | onHid,
     [](Text text, CameraDescription& camera) {
       const auto chip = placeOf(text, chips);
       return assign(camera.setup.family, chip ? std::optional(families[*chip]) : std::nullopt);
     }},
    {"firmware=F", "usb, hid: one-shot, wide or narrow, newest to oldest", onUsb | onHid,
     [](Text text, CameraDescription& camera) {
       return assign(camera.setup.firmware, placeOf(text, firmwares));
     }},
    {"unit=U",
     "its extension unit: bridge, variant1, foreign, none, or plain (not even\n"
     "                  a topology); absent: no video interface",
     onVideo,
     [](Text text, CameraDescription& camera) {
       return assign(camera.unit, placeOf(text, units));
     }},
    {"reports=R", "hid: its feature reports: bridge, extra, without-block, none", onHid,
     [](Text text, CameraDescription& camera) {
       return assign(camera.reports, placeOf(text, reportKinds));
     }},
};

// "3C7E:0970" or just the product id.
bool takeIds(Text text, CameraDescription& camera) {
  constexpr int hexadecimal = 16;
  const bool foreign = text.find(':') != Text::npos;
  if (foreign &&
      !assign(camera.vendorId, numberFrom(takePart(text, ':'), 0, 0xFFFF, hexadecimal))) {
    return false;
  }
  return assign(camera.productId, numberFrom(text, 1, 0xFFFF, hexadecimal));
}

bool takeOption(Text text, CameraDescription& camera) {
  const Text name = text.substr(0, text.find('=') + 1);
  const unsigned transport = 1U << static_cast<unsigned>(camera.transport);
  for (const auto& option : options) {
    if (name.empty() || !option.form.starts_with(name)) continue;
    return (option.transports & transport) != 0 && option.take(text.substr(name.size()), camera);
  }
  return false;
}

bool takeTransport(Text name, CameraDescription& camera) {
  const bool known = assign(camera.transport, placeOf(name, transportNames));
  if (camera.transport == Transport::usb) camera.unit = Unit::bridge;
  return known;
}

std::string pidText(std::uint16_t productId) {
  return hex(productId, 4).substr(2);
}

}  // namespace

std::optional<CameraDescription> cameraDescriptionFrom(Text text, std::string& problem) {
  problem = '"' + std::string(text) + "\": ";
  CameraDescription camera;
  if (!takeTransport(takePart(text, ':'), camera)) {
    problem += "a camera begins with wifi:, usb:, hid: or usb3:";
    return std::nullopt;
  }
  Text part = takePart(text, ',');
  bool good = takeIds(part, camera);
  while (good && !text.empty()) {
    part = takePart(text, ',');
    good = takeOption(part, camera);
  }
  problem += "not understood, or not what such a camera has: \"" + std::string(part) + '"';
  if (!good) return std::nullopt;
  problem.clear();
  if (camera.name.empty()) camera.name = "Simulated microscope " + pidText(camera.productId);
  return camera;
}

std::string shortNameOf(const CameraDescription& camera) {
  return std::string(transportNames[static_cast<std::size_t>(camera.transport)]) + "-" +
         pidText(camera.productId);
}

std::string cameraDescriptionHelp() {
  std::string help =
      "A camera is written wifi:PID, usb:PID, hid:PID or usb3:PID, its product id in\n"
      "hexadecimal (or VID:PID for one of another maker), and then any of\n";
  for (const auto& option : options) {
    help += helpLine("," + std::string(option.form), option.meaning);
  }
  return help + "\nA fault is KIND, KIND:N (from the N-th access on) or KIND:N+M (M of them):\n" +
         faultHelp();
}

}  // namespace qvx::simulator
