// The timers that run on the application's thread.
#pragma once

#include <cstdint>

namespace qvx {

// The magnification timer: takes a sample unless another operation is using the controller. The
// arguments are the system's and not used.
void Timer2MAGProc(void* window, unsigned message, std::uintptr_t identifier,
                   std::uint32_t time) noexcept;

// Starts the magnification timer on the calling thread. It is never stopped: another start is a
// further timer.
void startMagnificationTimer();

}  // namespace qvx
