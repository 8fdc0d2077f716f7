#include "platform/process.h"

#include <float.h>
#include <windows.h>

#include <cstring>

#include "platform/system.h"
#include "platform/windows/module.h"

namespace qvx::platform {

namespace {

template <class... Numbers>
std::string formatted(const char* form, Numbers... numbers) {
  char text[64];
  std::snprintf(text, sizeof text, form, numbers...);
  return text;
}

// GetVersion would report the version that the application was built for.
std::string systemVersion() {
  using Query = LONG(WINAPI*)(OSVERSIONINFOW*);
  const auto query = reinterpret_cast<Query>(reinterpret_cast<void (*)()>(
      GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion")));
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  if (query == nullptr || query(&version) != 0) return "unknown";
  return formatted("%lu.%lu.%lu", version.dwMajorVersion, version.dwMinorVersion,
                   version.dwBuildNumber);
}

std::string utcTime() {
  SYSTEMTIME now;
  GetSystemTime(&now);
  return formatted("%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", now.wYear, now.wMonth, now.wDay,
                   now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
}

}  // namespace

std::uint32_t floatingPointControl(std::uint32_t value, std::uint32_t mask) {
  return _controlfp(value, mask);
}

std::string modulePath() {
  char path[MAX_PATH] = "";
  GetModuleFileNameA(ownModule(), path, MAX_PATH);
  path[MAX_PATH - 1] = '\0';
  return path;
}

Surroundings surroundings() {
  return {systemVersion(), utcTime(), pathOf(ownModule()), usbLibraryPath()};
}

std::uint32_t processId() {
  return GetCurrentProcessId();
}

std::uint32_t threadId() {
  return GetCurrentThreadId();
}

std::wstring environmentVariable(const char* name) {
  const std::wstring wideName(name, name + std::strlen(name));
  std::wstring value(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
  const DWORD length =
      GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size()));
  // Another thread may have made it longer in between, which leaves the buffer as it was.
  if (length < value.size()) value.resize(length);
  return value;
}

void system::tellDebugger(const std::string& line) {
  OutputDebugStringA(line.c_str());
}

std::uint32_t lastError() {
  return GetLastError();
}

void setLastError(std::uint32_t code) {
  SetLastError(code);
}

}  // namespace qvx::platform
