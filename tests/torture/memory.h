// Memory that runs out, that stays in use, and that is no longer there.
#pragma once

#include <cstdint>

namespace qvx::tests {

// Counts the calling thread's allocations and refuses the n-th, and only that one, for as long as
// it lives.
class MemoryFault {
 public:
  explicit MemoryFault(std::uint64_t n);
  ~MemoryFault();
  MemoryFault(const MemoryFault&) = delete;
  MemoryFault& operator=(const MemoryFault&) = delete;

  std::uint64_t allocations() const;  // since it was made
};

// What all threads hold at the moment.
std::uint64_t bytesAllocated();

// Whether a write to the stack frame of a function that has returned is seen, as a late worker
// might make one. Calls take twice as long.
void watchStack(bool on);

}  // namespace qvx::tests
