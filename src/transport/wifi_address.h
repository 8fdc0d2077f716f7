// Where the Wi-Fi camera is: at the address built in, unless the environment names another.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qvx {

// Holds IPV4 or IPV4:PORT; empty is the same as not set.
inline constexpr char wifiCameraVariable[] = "QVX64_WIFI_CAMERA";

// The base URL for an address as the environment variable has it: "http://", address, ":", port,
// "/". The port is 8080 where none is named. Nothing for anything else: a leading zero, which some
// readers take as octal, a blank, a name.
std::optional<std::string> baseUrlOf(std::string_view address);

// As read last. Nothing until the first use; empty when the environment names no address.
inline std::optional<std::string> wifiBase;

// Reads the environment anew. What is no address goes to the debugger's output, and no camera is
// reached until it is read again.
void readWifiAddress();

// "http://", the camera's address, ":8080/"; the environment is read at the first use, unless it
// has been before. Empty when it names no address.
std::string wifiBaseUrl();

}  // namespace qvx
