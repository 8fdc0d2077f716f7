// What the Wi-Fi camera serves besides the commands for its registers and pins.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "transport/control_document.h"

namespace qvx {

// Whether its web server can be reached within 2 s.
bool wifiCameraAnswers();

// Reads the list of the cameras in it, which leaves the product id of the last one in `nCurrPid`
// and `nPid`.
void readWifiDeviceList();

// Fills the read commands that the state keeps.
void buildReadUrls();

// The pins that some lights are on: sets those of the mask to the levels.
void setLightPins(int mask, int levels);

// Picture properties. The camera has the first six.
bool isWifiProperty(platform::PictureProperty property);
void setWifiProperty(platform::PictureProperty property, std::int32_t value);

// Nothing when the camera does not answer, or does not describe the property.
std::optional<PictureControl> askWifiProperty(platform::PictureProperty property);

// Chooses one of the video modes by its number.
void chooseWifiVideoMode(int number);

// Saves what the camera sees as a file (JPEG, as the camera sends it). Each character of the path
// is one of its 8-bit code. False only when the file cannot be created; true, and no file, when the
// camera cannot be reached.
bool saveWifiImage(const std::string& path);

}  // namespace qvx
