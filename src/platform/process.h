// What the library asks of the process it is loaded into.
#pragma once

#include <cstdint>
#include <string>

namespace qvx::platform {

// Replaces the bits of the calling thread's floating-point control word that are set in `mask`
// by those of `value`. Returns the resulting word; a mask of 0 only reads it.
std::uint32_t floatingPointControl(std::uint32_t value, std::uint32_t mask);

// Full path of the library's own module, cut to 259 characters.
std::string modulePath();

// What a report of a fault should say of the process.
struct Surroundings {
  std::string system;       // version of Windows: "10.0.19045"
  std::string time;         // now, in UTC: "2026-03-01T12:00:00.123Z"
  std::wstring module;      // full path of the library's own module
  std::wstring usbLibrary;  // and of the libusbK.dll that is used at need; empty for none
};
Surroundings surroundings();

std::uint32_t processId();
std::uint32_t threadId();

// A variable of the process's environment as it now is, empty when it is not set.
std::wstring environmentVariable(const char* name);

// Shows a line to whoever debugs the process.
void tellDebugger(const std::string& line);

// The calling thread's last error code.
std::uint32_t lastError();
void setLastError(std::uint32_t code);

}  // namespace qvx::platform
