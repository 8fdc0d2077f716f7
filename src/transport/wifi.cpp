#include "transport/wifi.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "platform/timers.h"
#include "transport/http_request.h"

namespace qvx {

namespace {

// There is no "&" between "dest=0" and "plugin=0": the camera's server expects them run together.
constexpr char commandTemplate[] = "?action=commandcontrol&dest=0plugin=0&id=%d&group=%d&value=%d";

constexpr int i2cWriteFlag = 0x1000;
constexpr int gpioWriteFlag = 0x400;
constexpr std::uint32_t pauseBeforeCommand_ms = 10;
constexpr std::uint32_t pauseAfterRegister_ms = 5;

// The camera's firmware takes addresses and masks as signed bytes: one of 0x80 or more sets every
// upper bit of the id.
int signedByte(int value) {
  return static_cast<std::int8_t>(value);
}

int shiftLeft(int value, int bits) {
  return static_cast<int>(static_cast<unsigned>(value) << bits);
}

// What one read of the answer gives, nothing when no byte came.
std::optional<std::string> fetchOnce(const std::string& url, std::uint32_t pauseBefore_ms) {
  HttpRequest request;
  if (pauseBefore_ms != 0) platform::pause(pauseBefore_ms);
  request.open(url);
  std::string answer = request.read();
  if (answer.empty()) return std::nullopt;
  request.leaveOpen();
  return answer;
}

}  // namespace

std::string commandUrl(const std::string& base, int id, WifiGroup group, int value) {
  return base + format(commandTemplate, id, static_cast<int>(group), value);
}

int CTRL_ID_I2C_R(int device, int regBytes, int dataBytes) {
  return (regBytes & 3) << 10 | (dataBytes & 3) << 8 | signedByte(device);
}

int CTRL_ID_I2C_W(int device, int regBytes, int dataBytes) {
  return CTRL_ID_I2C_R(device, regBytes, dataBytes) | i2cWriteFlag;
}

int CTRL_VAL_I2C(int reg, int data) {
  return shiftLeft(reg, 16) | data;
}

int CTRL_ID_GPIO_R(int port) {
  return shiftLeft(port, 8);
}

int CTRL_ID_GPIO_W(int port, int mask) {
  return shiftLeft(port, 8) | gpioWriteFlag | signedByte(mask);
}

std::string CMD_I2C_R(std::string base, int device, int reg, int regBytes, int dataBytes) {
  return commandUrl(base, CTRL_ID_I2C_R(device, regBytes, dataBytes), WifiGroup::i2c,
                    CTRL_VAL_I2C(reg, 0));
}

std::string CMD_I2C_W(std::string base, int device, int reg, int regBytes, int data,
                      int dataBytes) {
  return commandUrl(base, CTRL_ID_I2C_W(device, regBytes, dataBytes), WifiGroup::i2c,
                    CTRL_VAL_I2C(reg, data));
}

std::string CMD_GPIO_R(std::string base, int port) {
  return commandUrl(base, CTRL_ID_GPIO_R(port), WifiGroup::gpio, 0);
}

std::string CMD_GPIO_W(std::string base, int port, int mask, int levels) {
  return commandUrl(base, CTRL_ID_GPIO_W(port, mask), WifiGroup::gpio, levels);
}

std::string format(const char* pattern, ...) {
  char text[512] = "";
  va_list arguments;
  va_start(arguments, pattern);
  std::vsnprintf(text, sizeof text, pattern, arguments);
  va_end(arguments);
  return text;
}

std::optional<std::string> fetchRegister(const std::string& url) {
  std::optional<std::string> answer = fetchOnce(url, 0);
  if (answer) platform::pause(pauseAfterRegister_ms);
  return answer;
}

void sendUnread(const std::string& url) {
  HttpRequest request;
  request.open(url);
  request.leaveRequestOpen();
}

int decimalAt(const char* text) {
  const long long value = std::strtoll(text, nullptr, 10);
  return static_cast<int>(std::clamp<long long>(value, std::numeric_limits<int>::min(),
                                                std::numeric_limits<int>::max()));
}

int resultIn(const std::string& answer) {
  constexpr std::size_t markerLength = 4;
  // Without the marker the sum wraps to 3: such an answer is read from its fourth character.
  const std::size_t start = answer.find("res:") + markerLength;
  return start < answer.size() ? decimalAt(answer.c_str() + start) : 0;
}

int loadUrlwWininet(std::string url) {
  const std::optional<std::string> answer = fetchOnce(url, pauseBeforeCommand_ms);
  // The camera's text ends at its first NUL.
  return answer ? resultIn(answer->c_str()) : 0;
}

std::uint64_t WriteMemoryCallback(void* contents, std::uint64_t size, std::uint64_t count,
                                  void* userData) {
  auto& buffer = *static_cast<MemoryStruct*>(userData);
  const std::uint64_t added = size * count;
  // A buffer that cannot grow is dropped, and the bytes are still reported as taken.
  const bool fits = count == 0 || added / count == size;
  const std::uint64_t needed = buffer.size + added + 1;
  buffer.memory =
      fits && needed > added ? static_cast<char*>(std::realloc(buffer.memory, needed)) : nullptr;
  if (buffer.memory != nullptr) {
    if (added != 0) std::memcpy(buffer.memory + buffer.size, contents, added);
    buffer.size += added;
    buffer.memory[buffer.size] = '\0';
  }
  return added;
}

}  // namespace qvx
