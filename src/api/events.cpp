#include "api/events.h"

#include "controls/magnification.h"
#include "platform/timers.h"
#include "state/device_state.h"

namespace qvx {

namespace {

constexpr std::uintptr_t magnificationTimer = 999;
constexpr std::uint32_t timerPeriod_ms = 250;

}  // namespace

void Timer2MAGProc(void* /*window*/, unsigned /*message*/, std::uintptr_t /*identifier*/,
                   std::uint32_t /*time*/) noexcept {
  try {
    if (bWait == 1) Count890Rate();
  } catch (...) {
    // A sample that could not be taken leaves the rate as it was.
  }
}

void startMagnificationTimer() {
  platform::startThreadTimer(magnificationTimer, timerPeriod_ms, Timer2MAGProc);
}

}  // namespace qvx
