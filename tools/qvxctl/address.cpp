#include "address.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "text.h"

namespace qvxctl {

namespace {

// Read by the library at each Init and at its first use.
constexpr wchar_t addressVariable[] = L"QVX64_WIFI_CAMERA";
constexpr char defaultPort[] = ":8080";

}  // namespace

std::string notAnAddress(const std::string& text) {
  std::array<unsigned, 4> part{};
  unsigned port = 1;
  const int count = std::sscanf(text.c_str(), "%3u.%3u.%3u.%3u:%5u", &part[0], &part[1], &part[2],
                                &part[3], &port);
  std::string printed;  // again, since leading zeros are refused
  for (const unsigned number : part)
    printed += (printed.empty() ? "" : ".") + std::to_string(number);
  if (count > 4) printed += ':' + std::to_string(port);
  const bool inRange = std::ranges::max(part) <= 255 && port >= 1 && port <= 65535;
  return count >= 4 && inRange && printed == text ? "" : '"' + text + "\" is no IPV4[:PORT]";
}

void useAddress(const std::string& text) {
  SetEnvironmentVariableW(addressVariable, wide(text).c_str());
}

std::string wifiCameraAddress() {
  wchar_t given[64] = {};
  const DWORD length = GetEnvironmentVariableW(addressVariable, given, std::size(given));
  if (length == 0) return QVXCTL_CAMERA_ADDRESS + std::string(defaultPort);
  if (length >= std::size(given)) return "QVX64_WIFI_CAMERA, which is no address";
  const std::string address = utf8(given);
  return address.find(':') == std::string::npos ? address + defaultPort : address;
}

}  // namespace qvxctl
