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

// A variable of the process's environment as it now is, empty when it is not set. Characters beyond
// ASCII become question marks.
std::string environmentVariable(const char* name);

// Shows a line to whoever debugs the process.
void tellDebugger(const std::string& line);

// The calling thread's last error code.
std::uint32_t lastError();
void setLastError(std::uint32_t code);

}  // namespace qvx::platform
