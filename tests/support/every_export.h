// Every export behind one signature, for tests that loop over all of them. Uses only the public
// header: it serves native tests and those of the DLL itself.
#pragma once

#include <span>
#include <string>

#include "qvx64/api.h"

namespace qvx::tests {

// What a call is given; each export takes what it has a parameter for.
struct Arguments {
  int index = 0;  // device index, or the first number of exports that take no device
  qvx_long value = 0;
  qvx_long second = 0;  // the level of SetESEG, the height of SetWiFiVideoRes
  double magnification = 1;
  const char* file = "";
  void (*callback)() = nullptr;
};

struct ExportedCall {
  const char* name;
  // Calls it and says what came back: the result, then what was written through pointers, parted by
  // blanks: "1 44 -15". "-7" stands for an output that was left alone, "null" for a null text.
  // Empty for no result.
  std::string (*call)(const Arguments& arguments);
};

constexpr qvx_long leftAlone = -7;

// In the order of the header.
std::span<const ExportedCall> everyExport();

const ExportedCall& exportNamed(const std::string& name);

}  // namespace qvx::tests
