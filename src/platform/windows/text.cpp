#include "platform/text.h"

#include <windows.h>

namespace qvx::platform {

namespace {

std::string toNarrow(UINT codePage, std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  const int needed =
      WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(codePage, 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
  return narrow;
}

}  // namespace

std::wstring ansiToWide(std::string_view text) {
  const int length = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), needed);
  return wide;
}

std::string wideToAnsi(std::wstring_view text) {
  return toNarrow(CP_ACP, text);
}

std::string wideToOem(std::wstring_view text) {
  return toNarrow(CP_OEMCP, text);
}

std::string wideToUtf8(std::wstring_view text) {
  return toNarrow(CP_UTF8, text);
}

}  // namespace qvx::platform
