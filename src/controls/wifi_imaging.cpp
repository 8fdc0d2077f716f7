#include "controls/wifi_imaging.h"

#include <optional>

#include "controls/family_rows.h"
#include "transport/controller.h"
#include "transport/wifi_camera.h"

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
  Family belongs;
  std::span<const VideoMode> modes;
} families[] = {
    {isVK7xxxSeries, modesOf7xxx},
    {isVK7xxxR4Series, modesOf7xxxR4},
    {is3xxx, modesOf3xxx},
    {is4xxx, modesOf4xxx},
};

}  // namespace

bool setWifiVideoMode(std::int32_t width, std::int32_t height) {
  if (VideoDeviceIndex != wifiDeviceIndex) return false;
  std::optional<int> number;
  // Every family is asked, and the last one that fits counts.
  for (const auto& family : families) {
    if (!family.belongs(nPid)) continue;
    for (const VideoMode& mode : family.modes) {
      if (mode.width != width || mode.height != height) continue;
      number = mode.number;
    }
  }
  if (number) chooseWifiVideoMode(*number);
  return number.has_value();
}

std::span<const VideoMode> wifiVideoModes() {
  const auto* const family = rowFor(nPid, families);
  return family == nullptr ? std::span<const VideoMode>() : family->modes;
}

}  // namespace qvx
