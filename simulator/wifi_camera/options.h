// The command line of qvx-wifi-camera.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <variant>

#include "simulator/model/zoom_ring.h"
#include "simulator/wifi_camera/fault.h"

namespace qvx::wifi_camera {

struct Options {
  std::uint16_t productId = 0x970;
  std::string address = "127.0.0.1";
  std::uint16_t port = 8080;  // 0 = any free one
  std::optional<simulator::ZoomMotion> zoom;
  Fault fault;
  bool log = false;
  bool help = false;
};

// The options, or one line that says what is wrong with them.
std::variant<Options, std::string> optionsFrom(std::span<const char* const> arguments);

extern const char helpText[];

}  // namespace qvx::wifi_camera
