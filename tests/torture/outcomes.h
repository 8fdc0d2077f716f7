// What calls may give while something is wrong, and how long they may take.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/torture/rig.h"

namespace qvx::tests {

struct Outcomes {
  std::string healthy;              // with nothing wrong
  std::string dead;                 // with everything refused from the first operation on
  std::vector<std::string> partly;  // besides these two, when some of it works

  bool allows(const std::string& result) const;
};

// `healthy` for calls whose result does not depend on the camera.
Outcomes outcomesOf(const ExportedCall& call, const Path& path, const std::string& healthy);

// What the header promises at worst.
struct Promise {
  std::uint64_t pauses_ms = 0, accesses = 0;
  bool lists = false;  // the system's video inputs
};
Promise promiseOf(const ExportedCall& call);

}  // namespace qvx::tests
