#include <algorithm>

#include "cameras.h"
#include "commands.h"
#include "failure.h"
#include "json.h"
#include "numbers.h"
#include "output.h"
#include "readings.h"
#include "text.h"

namespace qvxctl {

namespace {

std::string jsonOf(const Size& size) {
  return json::object({{"width", json::number(size.width)}, {"height", json::number(size.height)}});
}

// "1280x960"
Size sizeIn(const std::string& text) {
  const std::size_t cross = text.find('x');
  if (cross == std::string::npos) {
    throw Failure(ExitCode::badUsage, "modes: " + quoted(text) + " is no size such as 1280x960");
  }
  constexpr qvx_long most = 32767;  // as the camera's list can tell
  return {numberWithin("width", text.substr(0, cross), 1, most),
          numberWithin("height", text.substr(cross + 1), 1, most)};
}

void choose(const Size& size, bool asJson) {
  if (!SetWiFiVideoRes(size.width, size.height)) {
    throw Failure(ExitCode::cameraFailed, "modes: this camera does not offer " + textOf(size));
  }
  printLine(asJson ? jsonOf(size) : "Video and stills of " + textOf(size) + " pixels");
}

void printOffered(bool asJson) {
  const std::vector<Size> sizes = sizesOffered();
  if (asJson) {
    std::vector<std::string> entries;
    for (const Size& size : sizes) entries.push_back(jsonOf(size));
    return printLine(json::object({{"modes", json::array(entries)}}));
  }
  if (sizes.empty()) printLine("This camera is not known to offer any.");
  for (const Size& size : sizes) printLine(textOf(size));
}

}  // namespace

std::string textOf(const Size& size) {
  return std::to_string(size.width) + 'x' + std::to_string(size.height);
}

std::vector<Size> sizesOffered() {
  constexpr std::size_t most = 5;
  short widths[most] = {}, heights[most] = {};
  qvx_long count = 0;
  GetWiFiVideoCaps(&count, widths, heights);
  std::vector<Size> sizes;
  for (qvx_long i = 0; i < count; ++i) sizes.push_back({widths[i], heights[i]});
  return sizes;
}

void listVideoModes(const Options& options) {
  const auto argument = onlyArgument(options);
  const auto size = argument ? std::optional(sizeIn(*argument)) : std::nullopt;
  openWifiCamera(options);
  if (size) return choose(*size, options.json);
  printOffered(options.json);
}

}  // namespace qvxctl
