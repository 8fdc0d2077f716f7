#include "platform/process.h"

#include <float.h>
#include <windows.h>

#include <cstring>

#include "platform/windows/module.h"

namespace qvx::platform {

std::uint32_t floatingPointControl(std::uint32_t value, std::uint32_t mask) {
  return _controlfp(value, mask);
}

std::string modulePath() {
  char path[MAX_PATH] = "";
  GetModuleFileNameA(ownModule(), path, MAX_PATH);
  path[MAX_PATH - 1] = '\0';
  return path;
}

std::string environmentVariable(const char* name) {
  const std::wstring wideName(name, name + std::strlen(name));
  std::wstring value(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
  const DWORD length =
      GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size()));
  // Another thread may have made it longer in between, which leaves the buffer as it was.
  if (length < value.size()) value.resize(length);
  std::string narrow;
  for (const wchar_t character : value)
    narrow += character < 0x80 ? static_cast<char>(character) : '?';
  return narrow;
}

void tellDebugger(const std::string& line) {
  OutputDebugStringA(line.c_str());
}

std::uint32_t lastError() {
  return GetLastError();
}

void setLastError(std::uint32_t code) {
  SetLastError(code);
}

}  // namespace qvx::platform
