// The Wi-Fi command channel: every register and pin of the Wi-Fi camera is reached by an HTTP GET
// to a small server on the camera, which answers "res:" and a decimal integer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "transport/wifi_address.h"

namespace qvx {

// What a command is about.
enum class WifiGroup { picture = 1, videoMode = 2, gpio = 4, i2c = 5 };

// A complete command URL on a base URL.
std::string commandUrl(const std::string& base, int id, WifiGroup group, int value);

// The two numbers of a register or pin command. Device addresses are in their 8-bit write form.
int CTRL_ID_I2C_R(int device, int regBytes, int dataBytes);
int CTRL_ID_I2C_W(int device, int regBytes, int dataBytes);
int CTRL_VAL_I2C(int reg, int data);
int CTRL_ID_GPIO_R(int port);
int CTRL_ID_GPIO_W(int port, int mask);

// Complete command URLs on a base URL. Note that a write takes its data before the data's width.
std::string CMD_I2C_R(std::string base, int device, int reg, int regBytes, int dataBytes);
std::string CMD_I2C_W(std::string base, int device, int reg, int regBytes, int data, int dataBytes);
std::string CMD_GPIO_R(std::string base, int port);
std::string CMD_GPIO_W(std::string base, int port, int mask, int levels);

// printf-style text, cut to 511 characters.
[[gnu::format(printf, 1, 2)]] std::string format(const char* pattern, ...);

// Sends a command after a pause of 10 ms and returns the integer of its answer, 0 on any failure.
int loadUrlwWininet(std::string url);

// Sends a command that reads a register, and pauses for 5 ms once it is answered. Returns the
// answer, nothing when no byte came.
std::optional<std::string> fetchRegister(const std::string& url);

// Sends a command and leaves its answer unread.
void sendUnread(const std::string& url);

// What atoi gives, with defined results beyond the range of an int.
int decimalAt(const char* text);

// The integer after "res:" in an answer.
int resultIn(const std::string& answer);

// A growing receive buffer on the C heap, and the callback that appends to it in the form HTTP
// client libraries call. Part of the channel's toolkit; no operation installs it.
struct MemoryStruct {
  char* memory;
  std::uint64_t size;
};
std::uint64_t WriteMemoryCallback(void* contents, std::uint64_t size, std::uint64_t count,
                                  void* userData);

}  // namespace qvx
