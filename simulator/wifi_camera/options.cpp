#include "simulator/wifi_camera/options.h"

#include <arpa/inet.h>

#include <algorithm>
#include <string_view>

#include "simulator/model/product.h"
#include "simulator/model/text.h"
#include "simulator/wifi_camera/number.h"

namespace qvx::wifi_camera {

const char helpText[] =
    R"(Usage: qvx-wifi-camera [OPTION]...
Simulates a Wi-Fi microscope camera: a web server that answers register and pin
commands as the camera does.

  --pid HEX         USB product id of the camera inside (default 0x970)
  --zoom MOTION     what the zoom ring does: 63 stands at x63; 1:200/10s turns
                    from x1 to x200 in 10 s, and back, for ever (default 50)
  --port N          TCP port (default 8080); 0 takes any free one
  --address IPV4    address to listen on (default 127.0.0.1)
  --log             print what every request means
  --fault KIND[:N]  go wrong from the N-th request on (default the first):
                      empty      an answer without a body
                      half       half an answer, then close the connection
                      no-marker  8192 bytes without "res:"
                      junk       binary bytes, NULs included
                      silent:MS  answer late by so many milliseconds
                      refuse     refuse connections
  --help            print this

Prints "ready on http://ADDRESS:PORT" once it listens. SIGUSR1 touches the
button on the camera's body, SIGUSR2 releases it; SIGINT and SIGTERM end the
program. Requests that a real camera would not understand are reported on
standard error as violations.

Exit status: 0 ended by a signal, 1 cannot listen, 2 wrong option.

Examples:
  qvx-wifi-camera --pid 0x970 --zoom 1:200/10s --log
  qvx-wifi-camera --pid 0x9C0 --port 0
  qvx-wifi-camera --fault silent:2500:4
)";

namespace {

using Setter = bool (*)(Options&, std::string_view);

template <class Number>
bool assign(Number& target, const std::optional<std::uint32_t>& value) {
  if (value) target = static_cast<Number>(*value);
  return value.has_value();
}

bool setProductId(Options& options, std::string_view text) {
  simulator::take(text, "0x") || simulator::take(text, "0X");
  return assign(options.productId, numberFrom(text, 1, 0xFFFF, 16));
}

bool setZoom(Options& options, std::string_view text) {
  options.zoom = simulator::zoomMotionFrom(text);
  return options.zoom.has_value();
}

bool setPort(Options& options, std::string_view text) {
  return assign(options.port, numberFrom(text, 0, 0xFFFF));
}

bool setAddress(Options& options, std::string_view text) {
  options.address = text;
  in_addr parsed{};
  return inet_pton(AF_INET, options.address.c_str(), &parsed) == 1;
}

bool setFault(Options& options, std::string_view text) {
  const std::optional<Fault> fault = faultFrom(text);
  if (fault) options.fault = *fault;
  return fault.has_value();
}

constexpr struct {
  std::string_view name;
  Setter set;
  std::string_view expected;
} valued[] = {
    {"--pid", setProductId, "a hexadecimal product id, such as 0x970"},
    {"--zoom", setZoom, "a magnification or a sweep, such as 63 or 1:200/10s"},
    {"--port", setPort, "a TCP port, 0 to 65535"},
    {"--address", setAddress, "an IPv4 address"},
    {"--fault", setFault, "KIND[:N], see --help"},
};

constexpr struct {
  std::string_view name;
  bool Options::*flag;
} flags[] = {
    {"--log", &Options::log},
    {"--help", &Options::help},
};

std::string fitting(const Options& options) {
  using simulator::CalibrationForm;
  const bool hasRing =
      simulator::productFor(options.productId).magnification != CalibrationForm::none;
  if (!options.zoom || hasRing) return {};
  return "--zoom: the camera " + std::string(simulator::hex(options.productId, 4).view()) +
         " has no zoom encoder";
}

// Reads one option and moves past it; returns what is wrong.
std::string takeOption(Options& options, std::span<const char* const>& arguments) {
  const std::string_view name = arguments.front();
  arguments = arguments.subspan(1);
  const auto flag = std::ranges::find(flags, name, [](const auto& row) { return row.name; });
  if (flag != std::end(flags)) {
    options.*flag->flag = true;
    return {};
  }
  const auto row = std::ranges::find(valued, name, [](const auto& option) { return option.name; });
  if (row == std::end(valued)) return "unknown option \"" + std::string(name) + "\"; see --help";
  if (!arguments.empty() && row->set(options, arguments.front())) {
    arguments = arguments.subspan(1);
    return {};
  }
  const std::string given = arguments.empty() ? "nothing" : "\"" + std::string(arguments[0]) + "\"";
  return std::string(name) + ": expected " + std::string(row->expected) + ", not " + given;
}

}  // namespace

std::variant<Options, std::string> optionsFrom(std::span<const char* const> arguments) {
  Options options;
  while (!arguments.empty()) {
    const std::string wrong = takeOption(options, arguments);
    if (!wrong.empty()) return wrong;
  }
  const std::string wrong = fitting(options);
  if (!wrong.empty()) return wrong;
  return options;
}

}  // namespace qvx::wifi_camera
