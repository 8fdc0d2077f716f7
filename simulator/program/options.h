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
  bool pageIsAsked = false;  // to be there and nowhere else
  bool noPage = false, log = false, unplug = false, help = false;
  std::vector<std::string> program;  // and its arguments
};

// What is wrong with the arguments, in one line; nothing when the options are theirs.
std::string optionsFrom(std::span<const std::string> arguments, Options& options);

// What --help prints, without the grammar of cameras.
extern const char helpText[];

}  // namespace qvx::simulator
