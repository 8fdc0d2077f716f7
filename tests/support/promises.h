// What the header promises of every export at worst, read from its comments.
#pragma once

#include <cstdint>
#include <string>

#include "tests/support/every_export.h"

namespace qvx::tests {

struct Promise {
  std::string name = {};  // of the export
  std::uint64_t pauses_ms = 0, accesses = 0;
  bool lists = false;  // the system's video inputs

  std::uint64_t limit_ms(std::uint64_t access_ms) const { return pauses_ms + accesses * access_ms; }
};

// Throws when the header's exports are not those of the table, one by one, or when it makes a
// promise that cannot be read.
const Promise& promiseOf(const std::string& name);

}  // namespace qvx::tests
