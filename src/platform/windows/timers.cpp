#include "platform/system.h"

#include <windows.h>

namespace qvx::platform {

void system::pause(std::uint32_t milliseconds) {
  Sleep(milliseconds);
}

std::uint64_t clock_us() {
  constexpr std::uint64_t perSecond = 1000000;
  LARGE_INTEGER ticks, frequency;
  QueryPerformanceCounter(&ticks);
  QueryPerformanceFrequency(&frequency);
  const auto now = static_cast<std::uint64_t>(ticks.QuadPart);
  const auto rate = static_cast<std::uint64_t>(frequency.QuadPart);
  return now / rate * perSecond + now % rate * perSecond / rate;
}

void system::startThreadTimer(std::uintptr_t identifier, std::uint32_t period_ms,
                              TimerProcedure procedure) {
  // The two signatures differ only in the names of their types.
  SetTimer(nullptr, identifier, period_ms,
           reinterpret_cast<TIMERPROC>(reinterpret_cast<void (*)()>(procedure)));
}

}  // namespace qvx::platform
