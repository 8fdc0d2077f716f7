// Stills and video modes of the Wi-Fi camera.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace qvx {

// One picture size that a camera offers, and the number by which it is chosen.
struct VideoMode {
  std::int16_t width, height;
  int command;
};

// Saves what the camera sees as a file (JPEG, as the camera sends it). Each character of the path
// is one of its 8-bit code. False only when the file cannot be created; true, and no file, when the
// camera cannot be reached.
bool saveWifiImage(const std::string& path);

// Chooses a video mode; false, and nothing sent, when the current device is not the Wi-Fi camera or
// the camera `nPid` does not offer the size.
bool setWifiVideoMode(std::int32_t width, std::int32_t height);

// The modes of the camera `nPid`, empty when it is no Wi-Fi camera.
std::span<const VideoMode> wifiVideoModes();

}  // namespace qvx
