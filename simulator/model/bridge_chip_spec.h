// A bridge camera as a person writes it: "0970,zoom=1:20/10s,button=2s".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/model/bridge_chip_device.h"

namespace qvx::simulator {

struct BridgeSpec {
  // What the camera's video interface offers besides video.
  enum class Unit : std::uint8_t {
    bridge,    // the bridge's extension unit
    variant1,  // that of the other bridge variant
    foreign,   // one that is not a bridge's
    none,      // none
    plain,     // no topology at all
  };

  std::uint16_t vendorId = 0x3C7E, productId = 0;
  std::string name;
  Unit unit = Unit::bridge;
  HidReports reports = HidReports::bridge;
  BridgeSetup setup;
  std::optional<ZoomMotion> zoom;
  std::uint32_t buttonPeriod_ms = 0;
  BridgeFault fault;
};

// Nothing, and what is wrong, when the text is no camera.
std::optional<BridgeSpec> bridgeSpecFrom(std::string_view text, std::string& problem);

// The text with further options, which replace earlier ones of the same name.
std::string withOptions(std::string_view text, std::string_view options);

// What the text may hold, for a program's help.
extern const char bridgeSpecHelp[];

}  // namespace qvx::simulator
