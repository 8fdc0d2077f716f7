#include "text.h"

#include <windows.h>

namespace qvxctl {

namespace {

std::wstring widen(UINT codePage, std::string_view text) {
  const int length = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), needed);
  return wide;
}

std::string narrow(UINT codePage, std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  const int needed =
      WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(codePage, 0, text.data(), length, bytes.data(), needed, nullptr, nullptr);
  return bytes;
}

}  // namespace

std::string utf8(std::wstring_view text) {
  return narrow(CP_UTF8, text);
}

std::wstring wide(std::string_view utf8Text) {
  return widen(CP_UTF8, utf8Text);
}

std::string utf8FromOem(std::string_view text) {
  return utf8(widen(CP_OEMCP, text));
}

std::string ansi(std::string_view utf8Text) {
  return narrow(CP_ACP, widen(CP_UTF8, utf8Text));
}

}  // namespace qvxctl
