// What a camera's lights were told, in short, as rules of lights are written:
//
//   4=15      controller register 4 set to 15, whatever the transport
//   128?      controller register 0x80 read
//   p, P      a pause of 50 or 100 ms
//   R80=F1    the bridge's register 0x80
//   F2 1      the firmware's function 0xF2 switched on; F2 0: asked for
//   pins7=6   the Wi-Fi camera's light pins under mask 7
//   bus       the chip's I2C switch set to the camera's bus
//
// Anything else stays as the journal has it.
#pragma once

#include <cstdio>
#include <string>

#include "tests/support/library.h"

namespace qvx::tests {

enum class Reads { hidden, shown };  // with them, the bus switch

class LightTraffic {
 public:
  static std::string in(const Journal& journal, Reads reads = Reads::hidden) {
    std::string all;
    for (const std::string& line : journal) {
      const std::string part = shortened(line, reads);
      if (!part.empty()) all += (all.empty() ? "" : " ") + part;
    }
    return all;
  }

 private:
  // Empty for what is left out. Of a pause the longer number stands first: 10 begins 100.
  static std::string shortened(const std::string& line, Reads reads) {
    static constexpr struct {
      const char *start, *form;
    } fixed[] = {
        {"pause 100", "P"}, {"pause 50", "p"}, {"pause 10", ""},          {"pause 5", ""},
        {"get ", ""},       {"usb A1 81", ""}, {"set 5A215226/26: ", ""},
    };
    for (const auto& row : fixed) {
      if (line.starts_with(row.start)) return row.form;
    }
    static constexpr struct {
      const char* pattern;
      int numbers;
      const char* form;
      bool isRead = false;
    } patterns[] = {
        {"set 5A215226/20: 00 62 %*x 01 %x", 1, "%u?", true},
        {"set 5A215226/21: 00 62 %*x 01 %x 01 %x", 2, "%u=%u"},
        {"set 5A215226/27: 06 00 01 %x", 1, "bus", true},
        {"set 5A215226/27: 80 00 01 %x", 1, "R80=%02X"},
        {"set C66D125B/2: F0 %x %x", 2, "%02X %u"},
        {"usb 21 01 0300 0300 3: 62 %x %x", 2, "%u=%u"},
        {"usb 21 01 0303 0300 2: 62 %x", 1, "%u?", true},
        {"GET http://127.0.0.1:8080/?action=commandcontrol&dest=0plugin=0&id=1029&group=4&value=%u",
         1, "pins5=%u"},
        {"GET http://127.0.0.1:8080/?action=commandcontrol&dest=0plugin=0&id=1031&group=4&value=%u",
         1, "pins7=%u"},
    };
    for (const auto& row : patterns) {
      unsigned first = 0, second = 0;
      if (std::sscanf(line.c_str(), row.pattern, &first, &second) != row.numbers) continue;
      return row.isRead && reads == Reads::hidden ? "" : text(row.form, first, second);
    }
    return wifiRegister(line, reads);
  }

  static std::string wifiRegister(const std::string& line, Reads reads) {
    int id = 0, value = 0;
    std::sscanf(line.c_str(),
                "GET http://127.0.0.1:8080/?action=commandcontrol&dest=0plugin=0&id=%d&group=5"
                "&value=%d",
                &id, &value);
    const unsigned reg = static_cast<unsigned>(value) >> 16;
    if (id == 5474) return text("%u=%u", reg, static_cast<unsigned>(value) & 0xFFFF);
    if (id != 1378) return line;
    return reads == Reads::hidden ? "" : text("%u?", reg, 0);
  }

  static std::string text(const char* form, unsigned first, unsigned second) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, form, first, second);
    return buffer;
  }
};

}  // namespace qvx::tests
