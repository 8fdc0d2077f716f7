#include "platform/timers.h"

#include <windows.h>

namespace qvx::platform {

void pause(std::uint32_t milliseconds) {
  Sleep(milliseconds);
}

void startThreadTimer(std::uintptr_t identifier, std::uint32_t period_ms,
                      TimerProcedure procedure) {
  // The two signatures differ only in the names of their types.
  SetTimer(nullptr, identifier, period_ms,
           reinterpret_cast<TIMERPROC>(reinterpret_cast<void (*)()>(procedure)));
}

}  // namespace qvx::platform
