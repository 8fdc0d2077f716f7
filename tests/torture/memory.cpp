#include "tests/torture/memory.h"

#include <malloc.h>

#include <cstddef>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace qvx::tests {

namespace {

thread_local std::uint64_t allocated = 0, refused = 0;

}  // namespace

MemoryFault::MemoryFault(std::uint64_t n) {
  allocated = 0;
  refused = n;
}

MemoryFault::~MemoryFault() {
  refused = 0;
}

std::uint64_t MemoryFault::allocations() const {
  return allocated;
}

std::uint64_t bytesAllocated() {
#if defined(__SANITIZE_ADDRESS__)
  return __sanitizer_get_current_allocated_bytes();
#else
  return mallinfo2().uordblks;
#endif
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
