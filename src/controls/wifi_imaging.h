// Video modes of the Wi-Fi camera.
#pragma once

#include <cstdint>
#include <span>

namespace qvx {

// One picture size that a camera offers, and the number that it is chosen by.
struct VideoMode {
  std::int16_t width, height;
  int number;
};

// Chooses a video mode; false, and nothing sent, when the current device is not the Wi-Fi camera or
// the camera `nPid` does not offer the size.
bool setWifiVideoMode(std::int32_t width, std::int32_t height);

// The modes of the camera `nPid`, empty when it is no Wi-Fi camera.
std::span<const VideoMode> wifiVideoModes();

}  // namespace qvx
