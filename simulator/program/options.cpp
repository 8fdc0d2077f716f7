#include "simulator/program/options.h"

#include <httplib.h>

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

bool isAddress(const std::string& text) {
  in_addr address;
  return inet_pton(AF_INET, text.c_str(), &address) == 1;
}

bool takeAddress(std::string_view text, Options& options) {
  options.address = text;
  return isAddress(options.address);
}

bool takePage(std::string_view text, Options& options) {
  options.pageIsAsked = true;
  options.pageAddress = takePart(text, ':');
  const auto port = numberFrom(text, 0, 0xFFFF);
  options.pagePort = static_cast<int>(port.value_or(0));
  return port && isAddress(options.pageAddress);
}

template <bool Options::*flag>
bool setFlag(std::string_view, Options& options) {
  return options.*flag = true;
}

constexpr struct Known {
  std::string_view name, expected;  // expected: describes the value; empty if there is none
  bool (*take)(std::string_view value, Options& options);
} knownOptions[] = {
    {"--log", "", setFlag<&Options::log>},
    {"--page", "ADDRESS:PORT, such as 127.0.0.1:8064", takePage},
    {"--no-page", "", setFlag<&Options::noPage>},
    {"--address", "an IPv4 address", takeAddress},
    {"--unplug", "", setFlag<&Options::unplug>},
    {"--help", "", setFlag<&Options::help>},
};

// Checks the options as a whole; returns what is missing.
std::string lackOf(const Options& options) {
  if (options.help || (options.unplug && options.cameras.empty())) return {};
  if (options.cameras.empty()) return "no camera given; see --help";
  std::set<std::uint16_t> ports;
  for (const CameraDescription& camera : options.cameras) {
    if (camera.transport != Transport::wifi || camera.port == 0) continue;
    if (!ports.insert(camera.port).second) {
      return "two Wi-Fi cameras on port " + std::to_string(camera.port) + "; give one ,port=N";
    }
  }
  return {};
}

}  // namespace

std::string optionsFrom(std::span<const std::string> arguments, Options& options) {
  std::string wrong;
  for (auto at = arguments.begin(); wrong.empty() && at != arguments.end();) {
    const std::string& word = *at++;
    const auto* const known = std::ranges::find(knownOptions, word, &Known::name);
    if (known != std::end(knownOptions)) {
      const std::string expected(known->expected);
      const std::string value = expected.empty() || at == arguments.end() ? "" : *at++;
      if (known->take(value, options)) continue;
      wrong = word + ": expected " + expected + ", not \"" + value + "\"";
    } else if (word == "--") {
      options.program.assign(at, arguments.end());
      at = arguments.end();
      if (options.program.empty()) wrong = "no program given after --";
    } else if (word.starts_with('-')) {
      wrong = "unknown option \"" + word + "\"; see --help";
    } else if (const auto camera = cameraDescriptionFrom(word, wrong)) {
      options.cameras.push_back(*camera);
    }
  }
  return wrong.empty() ? lackOf(options) : wrong;
}

}  // namespace qvx::simulator
