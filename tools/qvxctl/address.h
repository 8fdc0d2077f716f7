// Where the library looks for the Wi-Fi camera.
#pragma once

#include <string>

namespace qvxctl {

// A check: says what is wrong with IPV4[:PORT]. Strict, because the library ignores an address that
// it does not understand, and then looks for a camera elsewhere.
std::string notAnAddress(const std::string& text);

// For this process, from the next Init on.
void useAddress(const std::string& text);

// With its port.
std::string wifiCameraAddress();

}  // namespace qvxctl
