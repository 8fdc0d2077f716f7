// Pauses and the thread timers that run from the application's message loop.
#pragma once

#include <cstdint>

namespace qvx::platform {

// The system's timer-callback signature: window, message, timer identifier, tick time.
using TimerProcedure = void (*)(void*, unsigned, std::uintptr_t, std::uint32_t);

void pause(std::uint32_t milliseconds);

// Microseconds since some moment in the past; never goes back.
std::uint64_t clock_us();

// Starts a timer with no window. The procedure runs on the calling thread, whenever that thread
// dispatches messages and the period has passed, until the thread ends.
void startThreadTimer(std::uintptr_t identifier, std::uint32_t period_ms, TimerProcedure procedure);

}  // namespace qvx::platform
