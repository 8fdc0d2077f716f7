// The touch button and the two timers. The timers run on the thread that started them, from its
// message loop, and never stop: each start adds one.
#pragma once

#include <cstdint>

namespace qvx {

using EventCallback = void (*)();

inline EventCallback OnEvent = nullptr;  // the application's callback
inline int m_MT = 0;  // edge detection of the button, in a sense of each transport's own

namespace timer_2_proc {  // what Timer2Proc keeps between calls
inline int barry = -1;    // USB 3: -1 idle, 0 first sample seen, 1 press confirmed once
}  // namespace timer_2_proc

// Stores the callback, null for none, and starts the button timer.
void setEventCallback(EventCallback callback);

// Calls the application back, if it has asked for that.
void fireEvent();

// Starts polling the button when `enable` is exactly 1, stops it otherwise. Returns 1 or 0.
int enablePressKey(int enable);

// Timer procedures; the arguments are the system's and not used. The button timer polls the current
// camera; the magnification timer takes a sample unless another operation is using the controller.
void Timer2Proc(void* window, unsigned message, std::uintptr_t identifier,
                std::uint32_t time) noexcept;
void Timer2MAGProc(void* window, unsigned message, std::uintptr_t identifier,
                   std::uint32_t time) noexcept;

// Starts the magnification timer.
void startMagnificationTimer();

}  // namespace qvx
