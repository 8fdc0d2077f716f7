#include "api/call.h"

#include <cstdio>

#include "platform/text.h"

namespace qvx {

std::string textOf(double number) {
  char digits[32];
  const int length = std::snprintf(digits, sizeof digits, "%.9g", number);
  return {digits, static_cast<std::size_t>(length)};
}

std::string textOf(const char* ansi) {
  return ansi == nullptr ? "null" : trace::quoted(platform::wideToUtf8(platform::ansiToWide(ansi)));
}

std::string textOf(const wchar_t* text) {
  return text == nullptr ? "null" : trace::quoted(platform::wideToUtf8(text));
}

std::string textOf(const qvx_long* output) {
  return output == nullptr ? "null" : std::to_string(*output);
}

std::string textOf(const short* array) {
  return array == nullptr ? "null" : "array";
}

std::string textOf(void (*function)()) {
  return function == nullptr ? "null" : "function";
}

}  // namespace qvx
