#include "platform/timers.h"

#include <windows.h>

#include <mutex>
#include <vector>

#include "platform/windows/timers.h"

namespace qvx::platform {

namespace {

std::mutex guard;
std::vector<UINT_PTR> timers;

}  // namespace

void pause(std::uint32_t milliseconds) {
  Sleep(milliseconds);
}

void startThreadTimer(std::uintptr_t identifier, std::uint32_t period_ms,
                      TimerProcedure procedure) {
  // The two signatures differ only in the names of their types.
  const auto callback = reinterpret_cast<TIMERPROC>(reinterpret_cast<void (*)()>(procedure));
  const std::lock_guard<std::mutex> lock(guard);
  timers.reserve(timers.size() + 1);
  const UINT_PTR timer = SetTimer(nullptr, identifier, period_ms, callback);
  if (timer != 0) timers.push_back(timer);
}

void stopThreadTimers() {
  for (const UINT_PTR timer : timers) KillTimer(nullptr, timer);
}

}  // namespace qvx::platform
