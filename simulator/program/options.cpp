#include "simulator/program/options.h"

#include <algorithm>
#include <set>

#include "simulator/model/words.h"

namespace qvx::simulator {

const char helpText[] =
    R"(Usage: qvx-simulator [OPTION]... CAMERA... [-- PROGRAM [ARGUMENT]...]
       qvx-simulator --unplug
Plugs simulated microscope cameras into this machine, for as long as PROGRAM
runs, or until Ctrl-C. Shows them on a page, http://127.0.0.1:8064/.

  --log                 print every access to the cameras
  --page ADDRESS:PORT   where the page is; by itself it takes another port when
                        8064 is taken
  --no-page             none
  --address IPV4        where Wi-Fi cameras listen (default 127.0.0.1)
  --unplug              take out what a run that was killed has left plugged in
  --help                print this

What a client does that a real camera would not understand is reported on
standard error as a violation.

Exit status: that of PROGRAM; 0 ended by Ctrl-C, 1 a camera cannot be plugged
in, 2 wrong option, 97 PROGRAM does not start.

Examples:
  qvx-simulator --log wifi:0998,zoom=1:200/10s
  qvx-simulator usb:0970,button=2s,fault=stall:600ms -- qvxctl watch
  qvx-simulator hid:09C5 usb3:09B0 -- qvxctl list

)";

namespace {

bool isAddress(std::string_view text) {
  constexpr std::uint32_t mostOfByte = 255;
  for (int dots = 3; dots >= 0; --dots) {
    const bool separated = text.find('.') != std::string_view::npos;
    if (separated != (dots > 0) || !numberFrom(takePart(text, '.'), 0, mostOfByte)) return false;
  }
  return true;
}

bool takeAddress(std::string_view text, Options& options) {
  options.address = text;
  return isAddress(text);
}

bool takePage(std::string_view text, Options& options) {
  const std::string address(takePart(text, ':'));
  const auto port = numberFrom(text, 0, 0xFFFF);
  if (port) options.page = {address, static_cast<int>(*port)};
  return port && isAddress(address);
}

constexpr struct {
  std::string_view name;
  bool (*take)(std::string_view, Options&);
  std::string_view expected;
} valued[] = {
    {"--page", takePage, "ADDRESS:PORT, such as 127.0.0.1:8064"},
    {"--address", takeAddress, "an IPv4 address"},
};

constexpr struct {
  std::string_view name;
  bool Options::*flag;
} flags[] = {
    {"--log", &Options::log},
    {"--no-page", &Options::noPage},
    {"--unplug", &Options::unplug},
    {"--help", &Options::help},
};

using Arguments = std::span<const std::string>;

std::string takeCamera(const std::string& text, Options& options) {
  std::string problem;
  const auto spec = cameraSpecFrom(text, problem);
  if (spec) options.cameras.push_back(*spec);
  return problem;
}

// Reads one option and moves past it; returns what is wrong.
std::string takeOption(Arguments& arguments, Options& options) {
  const std::string name = arguments.front();
  arguments = arguments.subspan(1);
  for (const auto& [known, flag] : flags) {
    if (known != name) continue;
    options.*flag = true;
    return {};
  }
  for (const auto& [known, take, expected] : valued) {
    if (known != name) continue;
    const std::string value = arguments.empty() ? "" : arguments.front();
    if (!take(value, options)) {
      return name + ": expected " + std::string(expected) + ", not \"" + value + "\"";
    }
    arguments = arguments.subspan(1);
    return {};
  }
  return "unknown option \"" + name + "\"; see --help";
}

std::string fitting(const Options& options) {
  if (options.help || (options.unplug && options.cameras.empty())) return {};
  if (options.cameras.empty()) return "no camera given; see --help";
  std::set<std::uint16_t> ports;
  for (const CameraSpec& camera : options.cameras) {
    if (camera.transport != Transport::wifi || camera.port == 0) continue;
    if (!ports.insert(camera.port).second) {
      return "two Wi-Fi cameras on port " + std::to_string(camera.port) + "; give one ,port=N";
    }
  }
  return {};
}

}  // namespace

std::variant<Options, std::string> optionsFrom(Arguments arguments) {
  Options options;
  std::string wrong;
  while (!arguments.empty() && wrong.empty()) {
    if (arguments.front() == "--") {
      options.program.assign(arguments.begin() + 1, arguments.end());
      if (options.program.empty()) wrong = "no program given after --";
      break;
    }
    if (arguments.front().starts_with("-")) {
      wrong = takeOption(arguments, options);
    } else {
      wrong = takeCamera(arguments.front(), options);
      arguments = arguments.subspan(1);
    }
  }
  if (wrong.empty()) wrong = fitting(options);
  if (!wrong.empty()) return wrong;
  return options;
}

}  // namespace qvx::simulator
