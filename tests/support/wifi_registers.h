// A minimal Wi-Fi camera: it answers reads of controller registers, and 0 to everything else.
#pragma once

#include <cstdio>
#include <map>
#include <string>

#include "tests/support/traffic.h"

namespace qvx::tests {

class WifiRegisters {
 public:
  std::map<int, int> values;      // by register; others read 0
  std::string deviceList = "[]";  // what usbdevlist.json holds

  simulator::HttpAnswer answer(const std::string& url) const {
    unsigned reg = 0;
    if (url.ends_with("usbdevlist.json")) return {true, {deviceList}};
    if (std::sscanf(trafficIn({"GET " + url}).c_str(), "r62.%x", &reg) != 1)
      return {true, {"res:0"}};
    const auto found = values.find(static_cast<int>(reg));
    return {true, {"res:" + std::to_string(found == values.end() ? 0 : found->second)}};
  }

  simulator::HttpServer server() const {
    return [this](const std::string& url) { return answer(url); };
  }
};

}  // namespace qvx::tests
