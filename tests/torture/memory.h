// Memory that runs out: the allocations of the calling thread, counted and refused.
#pragma once

#include <cstdint>

namespace qvx::tests {

// Refuses the n-th allocation from now on, and only that one, for as long as it lives.
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

}  // namespace qvx::tests
