// The command line of qvx-simulator.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "simulator/model/camera_spec.h"

namespace qvx::simulator {

struct Endpoint {
  std::string address;
  int port;
};

struct Options {
  std::vector<CameraSpec> cameras;
  std::string address = "127.0.0.1";  // of Wi-Fi cameras
  std::optional<Endpoint> page;       // where it must be
  bool noPage = false, log = false, unplug = false, help = false;
  std::vector<std::string> program;  // and its arguments
};

// The options, or one line that says what is wrong with them.
std::variant<Options, std::string> optionsFrom(std::span<const std::string> arguments);

// What --help prints, without the grammar of cameras.
extern const char helpText[];

}  // namespace qvx::simulator
