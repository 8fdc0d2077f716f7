// Conversion between UTF-8, the encoding of camera descriptions, and the system's UTF-16.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace qvx::simulator {

inline std::wstring wide(std::string_view text) {
  const int length = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
  std::wstring result(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), needed);
  return result;
}

inline std::string narrow(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  const int needed =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), needed, nullptr, nullptr);
  return result;
}

}  // namespace qvx::simulator
