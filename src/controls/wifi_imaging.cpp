#include "controls/wifi_imaging.h"

#include <array>

#include "models/families.h"
#include "platform/files.h"
#include "state/device_state.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

constexpr VideoMode modesOf7xxx[] = {
    {640, 480, 1}, {1280, 960, 0}, {1600, 1200, 2}, {2048, 1536, 3}, {2592, 1944, 4}};
constexpr VideoMode modesOf7xxxR4[] = {{640, 480, 1}, {1280, 960, 0}, {1600, 1200, 2}};
constexpr VideoMode modesOf3xxx[] = {{640, 480, 0}};
constexpr VideoMode modesOf4xxx[] = {{640, 480, 0}, {1280, 1024, 3}};

int is3xxx(int pid) {
  return isVR3xxxSeries(pid) || isVK3xxxR4Series(pid);
}

int is4xxx(int pid) {
  return isVK4xxxSeries(pid) || isVR4xxxSeries(pid);
}

// In this order: the last family asks the camera.
constexpr struct {
  int (*belongs)(int pid);
  std::span<const VideoMode> modes;
} families[] = {
    {isVK7xxxSeries, modesOf7xxx},
    {isVK7xxxR4Series, modesOf7xxxR4},
    {is3xxx, modesOf3xxx},
    {is4xxx, modesOf4xxx},
};

// The file's parts as they come. Neither a camera that stops nor a full disk is told: the file has
// what there was.
void copy(platform::InternetHandle request, platform::FileHandle file) {
  std::array<char, 2000> part;
  std::uint32_t received = 0;
  do {
    platform::readUrl(request, part.data(), static_cast<std::uint32_t>(part.size()), received);
    platform::writeFile(file, part.data(), received);
  } while (received != 0);
}

}  // namespace

bool saveWifiImage(const std::string& path) {
  const platform::InternetHandle session = platform::openDirectInternetSession(downloadAgent);
  const platform::InternetHandle request =
      openCameraUrl(session, wifiBaseUrl() + "?action=snapshot");
  // The session stays open: the channel leaves it to the process.
  if (request == nullptr) return true;
  const platform::FileHandle file = platform::createFile(widen(path));
  if (file != nullptr) {
    copy(request, file);
    platform::closeFile(file);
  }
  platform::closeInternetHandle(session);
  platform::closeInternetHandle(request);
  return file != nullptr;
}

bool setWifiVideoMode(std::int32_t width, std::int32_t height) {
  if (VideoDeviceIndex != wifiDeviceIndex) return false;
  std::string url;
  // Every family is asked, and the last one that fits counts.
  for (const auto& family : families) {
    if (!family.belongs(nPid)) continue;
    for (const VideoMode& mode : family.modes) {
      if (mode.width != width || mode.height != height) continue;
      url = commandUrl(wifiBaseUrl(), 0, WifiGroup::videoMode, mode.command);
    }
  }
  if (!url.empty()) loadUrlwWininet(url);
  return !url.empty();
}

std::span<const VideoMode> wifiVideoModes() {
  for (const auto& family : families) {
    if (family.belongs(nPid)) return family.modes;
  }
  return {};
}

}  // namespace qvx
