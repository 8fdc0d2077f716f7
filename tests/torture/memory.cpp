#include "tests/torture/memory.h"

#include <malloc.h>

#include <cstddef>
#include <cstdlib>
#include <new>

// The sanitizer's own switch, which code compiled for it asks at every call, and its counter: both
// are missing in builds without it.
extern "C" [[gnu::weak]] int __asan_option_detect_stack_use_after_return;
extern "C" [[gnu::weak]] std::size_t __sanitizer_get_current_allocated_bytes();

namespace qvx::tests {

namespace {

thread_local std::uint64_t allocated = 0, refused = 0;

}  // namespace

void refuseAllocation(std::uint64_t n) {
  allocated = 0;
  refused = n;
}

std::uint64_t allocations() {
  return allocated;
}

std::uint64_t bytesAllocated() {
  const auto asan = &__sanitizer_get_current_allocated_bytes;
  return asan == nullptr ? mallinfo2().uordblks : asan();
}

void watchStack(bool on) {
  if (&__asan_option_detect_stack_use_after_return != nullptr)
    __asan_option_detect_stack_use_after_return = on ? 1 : 0;
}

void* allocate(std::size_t size) {
  if (++allocated == refused) throw std::bad_alloc();
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace qvx::tests

void* operator new(std::size_t size) {
  return qvx::tests::allocate(size);
}
void* operator new[](std::size_t size) {
  return qvx::tests::allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
