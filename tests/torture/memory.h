// Memory that runs out, that stays in use, and that is no longer there.
#pragma once

#include <cstdint>

namespace qvx::tests {

// Counts the calling thread's allocations from now on and refuses the n-th, and only that one; 0
// refuses none.
void refuseAllocation(std::uint64_t n);
std::uint64_t allocations();

// What all threads hold at the moment.
std::uint64_t bytesAllocated();

// Whether a write to the stack frame of a function that has returned is seen, as a late worker
// might make one. Calls take twice as long.
void watchStack(bool on);

}  // namespace qvx::tests
