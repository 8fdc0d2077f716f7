// What the compiler's checks call: the stack protector, the checked string functions, and the end
// of an exception that nobody catches. The toolchain's own versions would import ADVAPI32 and bring
// a demangler along.
#include <windows.h>
// The compiler's own headers follow windows.h.
#include <intrin.h>

#include <cstdint>
#include <cstdlib>

extern "C" {

std::uintptr_t __stack_chk_guard = 0;

// Before all other constructors: what runs before has no checks. From what differs at every load
// and cannot be seen from outside; the byte that lies first is 0 and stops a text that runs over.
__attribute__((constructor(101), no_stack_protector)) void startStackProtector() {
  FILETIME time;
  GetSystemTimeAsFileTime(&time);
  const std::uint64_t sources[] = {__rdtsc(), time.dwLowDateTime, GetCurrentProcessId(),
                                   GetCurrentThreadId(), reinterpret_cast<std::uintptr_t>(&time)};
  constexpr std::uint64_t oddMultiplier = 0x9E3779B97F4A7C15;
  for (const std::uint64_t source : sources) {
    __stack_chk_guard = (__stack_chk_guard ^ source) * oddMultiplier;
    __stack_chk_guard ^= __stack_chk_guard >> 29;
  }
  __stack_chk_guard &= ~std::uintptr_t{0xFF};
}

// Ends the process at once, by the interrupt that Windows has for it. No handler runs.
[[noreturn]] static void failFast(unsigned reason) {
  asm volatile("int $0x29" : : "c"(reason));
  __builtin_unreachable();
}

void __stack_chk_fail() {
  failFast(FAST_FAIL_STACK_COOKIE_CHECK_FAILURE);
}

void __chk_fail() {
  failFast(FAST_FAIL_RANGE_CHECK_FAILURE);
}

}  // extern "C"

namespace __gnu_cxx {

void __verbose_terminate_handler() {
  std::abort();
}

}  // namespace __gnu_cxx
