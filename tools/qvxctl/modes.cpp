#include <vector>

#include "cameras.h"
#include "command_line.h"
#include "commands.h"
#include "failure.h"
#include "output.h"
#include "readings.h"

namespace qvxctl {

namespace {

Json::Value jsonOf(const Size& size) {
  return object({{"width", Json::Int(size.width)}, {"height", Json::Int(size.height)}});
}

void choose(const Options& options, const Size& size) {
  openWifiCamera(options);
  if (!SetWiFiVideoRes(size.width, size.height)) {
    throw Failure(ExitCode::cameraFailed, "modes: this camera does not offer " + textOf(size));
  }
  printResult(options, jsonOf(size), "Video and stills of " + textOf(size) + " pixels");
}

void printOffered(const Options& options) {
  openWifiCamera(options);
  Json::Value modes(Json::arrayValue);
  std::string text;
  for (const Size& size : sizesOffered()) {
    modes.append(jsonOf(size));
    text += (text.empty() ? "" : "\n") + textOf(size);
  }
  printResult(options, object({{"modes", modes}}),
              text.empty() ? "This camera is not known to offer any." : text);
}

}  // namespace

std::string textOf(const Size& size) {
  return std::to_string(size.width) + 'x' + std::to_string(size.height);
}

std::vector<Size> sizesOffered() {
  constexpr std::size_t maxCount = 5;
  short widths[maxCount] = {}, heights[maxCount] = {};
  qvx_long count = 0;
  GetWiFiVideoCaps(&count, widths, heights);
  std::vector<Size> sizes;
  for (qvx_long i = 0; i < count; ++i) sizes.push_back({widths[i], heights[i]});
  return sizes;
}

void defineModes(CLI::App& command, const Options& options) {
  constexpr qvx_long maxLength = 32767;  // that the camera's list can hold
  static std::vector<qvx_long> size;
  const CLI::Option* const given =
      addNumber(command, "WIDTHxHEIGHT", size, 1, maxLength)->delimiter('x')->expected(2);
  command.callback([&options, given] {
    if (given->empty()) return printOffered(options);
    choose(options, {size[0], size[1]});
  });
}

}  // namespace qvxctl
