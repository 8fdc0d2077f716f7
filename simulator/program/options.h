// The command line of qvx-simulator.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "simulator/model/camera_description.h"

namespace qvx::simulator {

struct Options {
  std::vector<CameraDescription> cameras;
  std::string address = "127.0.0.1";  // of Wi-Fi cameras
  std::string pageAddress = "127.0.0.1";
  int pagePort = 8064;
  bool pageIsAsked = false;  // at this address or not at all
  bool noPage = false, log = false, unplug = false;
  std::vector<std::string> program;  // and its arguments
  std::string help;                  // to be printed, when asked for
};

// Parses the arguments. Returns one line that says what is wrong with them, or nothing.
std::string optionsFrom(std::span<const std::string> arguments, Options& options);

}  // namespace qvx::simulator
