// Device traffic in short, so that a table can hold what a call does to a camera:
//
//   bus2            the chip's I2C switch set to the camera's bus
//   r78 3500        I2C read of slave 0x78, register 0x3500; "fast" follows at the fast speed
//   w78 3500=0F     I2C write
//   r 1700, w 1700=8000   bridge register
//   cmd 1E 0001     custom command 0x1E: code and data, without the zeros at the end
//   http 6520 3500000F    Wi-Fi command: id, and value in hexadecimal
//
// Anything else stays as the journal has it.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "tests/support/library.h"

namespace qvx::tests {

class Accesses {
 public:
  static std::string in(const Journal& journal) {
    std::string all;
    for (const std::string& line : journal) {
      const std::string access = shortened(line);
      if (!access.empty()) all += (all.empty() ? "" : ", ") + access;
    }
    return all;
  }

 private:
  using Bytes = std::vector<unsigned>;

  static std::string shortened(const std::string& line) {
    unsigned selector = 0;
    int id = 0, value = 0;
    if (std::sscanf(line.c_str(), "set 5A215226/%u", &selector) == 1) {
      return ofRegisterSet(selector, bytesIn(line));
    }
    if (line.starts_with("set C66D125B/2")) return command(bytesIn(line));
    if (line.starts_with("get ")) return "";
    if (std::sscanf(line.c_str(),
                    "GET http://127.0.0.1:8080/?action=commandcontrol&dest=0plugin=0&id=%d"
                    "&group=5&value=%d",
                    &id, &value) == 2) {
      return text("http %d %08X", id, static_cast<unsigned>(value));
    }
    return line;
  }

  static std::string ofRegisterSet(unsigned selector, const Bytes& bytes) {
    const unsigned reg = bytes[1] << 8 | bytes[0];
    // Which chip it is and how its switch stands is part of setting the switch.
    const bool ofSwitch = reg == 0x0000 || reg == 0x0006;
    if (selector == 26) return ofSwitch ? "" : text("r %04X", reg);
    if (selector == 27 && ofSwitch) return (bytes[3] & 4) != 0 ? "bus2" : "bus1";
    if (selector == 27) return text("w %04X=%04X", reg, bytes[4] << 8 | bytes[3]);
    return ofI2c(selector == 21, bytes);
  }

  // {0, slave, speed, length, sub-address, 1, data}
  static std::string ofI2c(bool isWrite, const Bytes& bytes) {
    std::string access = text(isWrite ? "w%02X " : "r%02X ", bytes[1]);
    for (unsigned i = 0; i < bytes[3]; ++i) access += text("%02X", bytes[4 + i]);
    if (isWrite) access += text("=%02X", bytes[4 + bytes[3] + 1]);
    return access + (bytes[2] != 0 ? " fast" : "");
  }

  static std::string command(Bytes bytes) {
    while (bytes.size() > 2 && bytes.back() == 0) bytes.pop_back();
    std::string access = text("cmd %02X ", bytes[0]);
    for (std::size_t i = 1; i < bytes.size(); ++i) access += text("%02X", bytes[i]);
    return access;
  }

  static Bytes bytesIn(const std::string& line) {
    Bytes bytes;
    unsigned byte = 0;
    int length = 0;
    const char* position = line.c_str() + line.find(": ") + 1;
    for (; std::sscanf(position, "%x%n", &byte, &length) == 1; position += length) {
      bytes.push_back(byte);
    }
    return bytes;
  }

  template <class... Numbers>
  static std::string text(const char* pattern, Numbers... numbers) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, pattern, numbers...);
    return buffer;
  }
};

}  // namespace qvx::tests
