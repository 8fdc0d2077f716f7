// The least of a Wi-Fi camera: it answers reads of controller registers, and everything else with
// 0.
#pragma once

#include <cstdio>
#include <map>
#include <string>

#include "simulator/platform/world.h"

namespace qvx::tests {

class WifiRegisters {
 public:
  std::map<int, int> values;      // by register; others read 0
  std::string deviceList = "[]";  // what usbdevlist.json holds

  simulator::HttpAnswer answer(const std::string& url) const {
    int reg = 0;
    if (url.ends_with("usbdevlist.json")) return {true, {deviceList}};
    if (isControllerRead(url, reg)) return {true, {"res:" + std::to_string(valueOf(reg))}};
    return {true, {"res:0"}};
  }

  simulator::HttpServer server() const {
    return [this](const std::string& url) { return answer(url); };
  }

 private:
  static bool isControllerRead(const std::string& url, int& reg) {
    int value = 0, end = 0;
    std::sscanf(url.c_str(),
                "http://127.0.0.1:8080/?action=commandcontrol&dest=0plugin=0&id=1378&group=5"
                "&value=%d%n",
                &value, &end);
    reg = value >> 16;
    return end == static_cast<int>(url.size());
  }

  int valueOf(int reg) const {
    const auto found = values.find(reg);
    return found == values.end() ? 0 : found->second;
  }
};

}  // namespace qvx::tests
