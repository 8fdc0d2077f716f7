// Every export behind one signature, with what a test may expect of it: the one table for tests
// that loop over all of them. Uses only the public header: it serves native tests and those of the
// DLL itself. Times and accesses are not here but in the header, see promises.h.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "qvx64/api.h"

namespace qvx::tests {

// What a call is given; each export takes what it has a parameter for.
struct Arguments {
  int index = 0;  // device index, or the first number of exports that take no device
  qvx_long value = 0;
  qvx_long second = 0;  // the level of SetESEG, the height of SetWiFiVideoRes
  double magnification = 50;
  const char* file = "still.jpg";
  void (*callback)() = nullptr;
};

// The results of a call on some of the paths to a camera that tests/torture/rig.h has.
struct Outcomes {
  const char* path = "";                 // part of their names; a row holds where none before does
  std::string healthy = {};              // with nothing wrong
  std::string dead = {};                 // when everything is refused, from the first operation on
  std::vector<std::string> partly = {};  // further ones, when some of it works
};

struct ExportedCall {
  const char* name;
  // Calls it and returns the result, then what was written through pointers, separated by blanks:
  // "1 44 -15". "-7" stands for an output that was left alone, "null" for a null text. Empty for no
  // result.
  std::string (*call)(const Arguments& arguments);

  Arguments busiest = {};               // those with which it does most
  std::optional<int> firstNumber = {};  // of busiest, for an export that takes no device

  // The results that the header allows, whatever cameras and callers do, as a regular expression;
  // null where that is any.
  const char* allowed = nullptr;

  std::vector<Outcomes> outcomes = {};  // empty where the camera makes no difference
};

constexpr qvx_long leftAlone = -7;

// In the order of the header.
std::span<const ExportedCall> everyExport();

const ExportedCall& exportNamed(const std::string& name);

// The busiest call to a device.
Arguments busiestArguments(const ExportedCall& call, int deviceIndex);

bool isAllowed(const ExportedCall& call, const std::string& result);

}  // namespace qvx::tests
