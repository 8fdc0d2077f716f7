// Device traffic in short, so that a table can hold what a call does to a camera:
//
//   b               the bridge's I2C switch set to the camera's bus
//   r62.80          I2C read of slave 0x62, register 0x80; r62.80f at the fast speed
//   w78.3500=0F     I2C write; w46=6E one without a register
//   r1700.2, w1700=8000   bridge register of two bytes; w0080=F0 one of one byte
//   cmd1E:0001      custom command 0x1E with its data, without the zeros at the end
//   pins7=6         the Wi-Fi camera's light pins under mask 7
//   p50             a pause
//
// I2C looks the same whatever carries it. Anything else stays as the journal has it.
#pragma once

#include <cstdio>
#include <regex>
#include <string>
#include <unordered_map>

#include "tests/support/library.h"

namespace qvx::tests {

struct ShortForm {
  const char* line;
  int numbers;  // in the line; 0: it starts like this
  const char* form;
};

constexpr ShortForm shortForms[] = {
    {"get ", 0, ""},  // belongs to the set before it
    {"usb A1 81", 0, ""},
    {"set 5A215226/26: 00 00 04", 0, ""},  // how the switch stands is part of setting it
    {"set 5A215226/26: 06 00 01", 0, ""},
    {"set 5A215226/27: 06 00 01 04", 0, "b"},
    {"pause %u", 1, "p%u"},
    {"set 5A215226/20: 00 %x 00 01 %x", 2, "r%02X.%02X"},
    {"set 5A215226/20: 00 %x 01 01 %x", 2, "r%02X.%02Xf"},
    {"set 5A215226/20: 00 %x 00 02 %x %x", 3, "r%02X.%02X%02X"},
    {"set 5A215226/21: 00 %x 00 01 %x 01 %x", 3, "w%02X.%02X=%02X"},
    {"set 5A215226/21: 00 %x 01 01 %x 01 %x", 3, "w%02X.%02X=%02Xf"},
    {"set 5A215226/21: 00 %x 00 02 %x %x 01 %x", 4, "w%02X.%02X%02X=%02X"},
    {"set 5A215226/21: 00 %x 01 00 01 %x", 2, "w%02X=%02Xf"},
    {"set 5A215226/26: %x %x %x", 3, "r%2$02X%1$02X.%3$X"},
    {"set 5A215226/27: %x %x 01 %x", 3, "w%2$02X%1$02X=%3$02X"},
    {"set 5A215226/27: %x %x 02 %x %x", 4, "w%2$02X%1$02X=%4$02X%3$02X"},
    {"usb 21 01 0303 0300 2: %x %x", 2, "r%02X.%02X"},
    {"usb 21 01 0300 0300 3: %x %x %x", 3, "w%02X.%02X=%02X"},
    {"usb 21 01 0301 0300 3: %x %x %x", 3, "r%02X.%02X%02X"},
    {"usb 21 01 0300 0300 4: %x %x %x %x", 4, "w%02X.%02X%02X=%02X"},
    {"usb 21 01 0302 0300 3: %x %x %x", 3, "w%02X.%02X=%02X"},
    {"usb 21 01 0304 0300 2: %x %x", 2, "w%02X=%02X"},
};

// Light commands in still shorter form: switches and levels in decimal, p and P for pauses of 50
// and 100 ms, R80 for the bridge's register 0x80, F2 and F3 for the firmware's light functions.
constexpr ShortForm lightForms[] = {
    {"p100", 0, "P"},
    {"p50", 0, "p"},
    {"p10", 0, ""},
    {"p5", 0, ""},
    {"w62.%x=%x", 2, "%u=%u"},
    {"r62.%2x", 1, "%u?"},
    {"w0080=%x", 1, "R80=%02X"},
    {"cmdF0:F2%2x", 1, "F2 %u"},
    {"cmdF0:F3%2x", 1, "F3 %u"},
    {"cmdF0:F2", 0, "F2 0"},
    {"cmdF0:F3", 0, "F3 0"},
};

template <class... Numbers>
std::string formatted(const char* form, Numbers... numbers) {
  char text[64];
  std::snprintf(text, sizeof text, form, numbers...);
  return text;
}

template <std::size_t count>
std::string shortened(const std::string& line, const ShortForm (&forms)[count]) {
  for (const ShortForm& row : forms) {
    unsigned a = 0, b = 0, c = 0, d = 0;
    const bool fits = row.numbers == 0
                          ? line.starts_with(row.line)
                          : std::sscanf(line.c_str(), row.line, &a, &b, &c, &d) == row.numbers;
    if (fits) return formatted(row.form, a, b, c, d);
  }
  return line;
}

inline std::string shortenedCommand(const std::string& line) {
  std::string digits = line.substr(line.find(": ") + 2);
  std::erase(digits, ' ');
  while (digits.size() > 4 && digits.ends_with("00")) digits.erase(digits.size() - 2);
  return "cmd" + digits.insert(2, ":");
}

inline std::string shortenedWifi(const std::string& line) {
  unsigned id = 0, value = 0;
  int group = 0;
  std::sscanf(line.c_str(),
              "GET http://127.0.0.1:8080/?action=commandcontrol&dest=0plugin=0&id=%u&group=%d"
              "&value=%u",
              &id, &group, &value);
  if (group == 4 && id >> 4 == 0x40) return formatted("pins%u=%u", id & 0xF, value);
  if (group != 5 || (id & 0xFFFFE300) != 0x100) return line;
  const bool isWrite = (id & 0x1000) != 0;
  const std::string access =
      formatted(isWrite ? "w%02X.%0*X" : "r%02X.%0*X", id & 0xFF, (id >> 10 & 3) * 2, value >> 16);
  return isWrite ? access + formatted("=%02X", value & 0xFFFF) : access;
}

// The same lines come again and again: each is taken apart once.
inline const std::string& shortenedLine(const std::string& line, bool ofLights) {
  thread_local std::unordered_map<std::string, std::string> known[2];
  const auto [found, isNew] = known[ofLights ? 1 : 0].try_emplace(line);
  if (!isNew) return found->second;
  found->second = ofLights ? shortened(shortenedLine(line, false), lightForms)
                  : line.starts_with("set C66D125B/2") ? shortenedCommand(line)
                  : line.starts_with("GET ")           ? shortenedWifi(line)
                                                       : shortened(line, shortForms);
  return found->second;
}

inline std::string trafficIn(const Journal& journal, bool ofLights = false) {
  std::string all;
  for (const std::string& line : journal) {
    const std::string& part = shortenedLine(line, ofLights);
    if (!part.empty()) all += (all.empty() ? "" : " ") + part;
  }
  return all;
}

// Every byte that goes to a bridge: "27[32] 00 17 02" sets selector or report 27 to 32 bytes, of
// which those not shown are 0, a report without its id; "get 27 32" fetches as many.
inline std::string bytesIn(const Journal& journal) {
  static const std::regex prefix("5A215226/|feature "), set("set ([^: ]+):? (.*?)((?: 00)*)");
  std::string all;
  for (const std::string& line : journal) {
    const std::string bare = std::regex_replace(line, prefix, "");
    std::smatch parts;
    const bool isSet = std::regex_match(bare, parts, set);
    all += all.empty() ? "" : ", ";
    all += !isSet
               ? bare
               : parts.str(1) + '[' + std::to_string((parts.length(2) + parts.length(3) + 1) / 3) +
                     "] " + parts.str(2);
  }
  return all;
}

}  // namespace qvx::tests
