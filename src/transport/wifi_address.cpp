#include "transport/wifi_address.h"

#include <algorithm>

#include "platform/process.h"
#include "platform/text.h"

namespace qvx {

namespace {

constexpr char builtInBaseUrl[] = "http://" QVX_CAMERA_ADDRESS ":8080/";
constexpr std::string_view usualPort = "8080";

bool isNumber(std::string_view text, int min, int max) {
  const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
  if (text.empty() || text.size() > 5 || !std::all_of(text.begin(), text.end(), isDigit) ||
      (text.size() > 1 && text.front() == '0')) {
    return false;
  }
  int value = 0;
  for (const char digit : text) value = value * 10 + (digit - '0');
  return value >= min && value <= max;
}

bool isIpv4(std::string_view text) {
  for (int dots = 3; dots > 0; --dots) {
    const std::size_t dot = text.find('.');
    if (dot == std::string_view::npos || !isNumber(text.substr(0, dot), 0, 255)) return false;
    text.remove_prefix(dot + 1);
  }
  return isNumber(text, 0, 255);
}

}  // namespace

std::optional<std::string> baseUrlOf(std::string_view address) {
  const std::size_t colon = address.find(':');
  const bool namesPort = colon != std::string_view::npos;
  const std::string_view host = address.substr(0, colon);
  const std::string_view port = namesPort ? address.substr(colon + 1) : usualPort;
  if (!isIpv4(host) || !isNumber(port, 1, 65535)) return std::nullopt;
  return "http://" + std::string(host) + ":" + std::string(port) + "/";
}

void readWifiAddress() {
  const std::string address =
      platform::wideToUtf8(platform::environmentVariable(wifiCameraVariable));
  wifiBase = address.empty() ? builtInBaseUrl : baseUrlOf(address).value_or("");
  if (wifiBase->empty()) {
    platform::tellDebugger(
        "QVX64: no Wi-Fi camera is looked for: " + std::string(wifiCameraVariable) +
        " is not IPV4 or IPV4:PORT but \"" + address + "\"\n");
  }
}

std::string wifiBaseUrl() {
  if (!wifiBase) readWifiAddress();
  return *wifiBase;
}

}  // namespace qvx
