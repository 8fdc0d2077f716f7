#include "message_loop.h"

#include <windows.h>

#include <algorithm>
#include <atomic>

namespace qvxctl {

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

// Global, because the console calls the handler on a thread of its own and passes only the kind of
// event.
HANDLE stopRequested = nullptr;
std::atomic<bool> stopping = false;

BOOL WINAPI onConsoleEvent(DWORD kind) {
  if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) return FALSE;
  if (stopping.exchange(true)) return FALSE;
  return SetEvent(stopRequested);
}

// Only one message: with a slow camera, the library's timers are due again as soon as they have
// run, and emptying the queue would never end.
void dispatchMessage() {
  MSG message;
  if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

// In steps, because the system's maximum wait is shorter than the maximum limit.
DWORD waitUntil(std::optional<Clock::time_point> deadline) {
  constexpr double maxStep_ms = 60'000;
  if (!deadline) return INFINITE;
  const Milliseconds left = *deadline - Clock::now();
  return static_cast<DWORD>(std::clamp(left.count(), 0.0, maxStep_ms));
}

}  // namespace

MessageLoop::MessageLoop() {
  stopRequested = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

// The event stays: the handler may be running.
MessageLoop::~MessageLoop() {
  SetConsoleCtrlHandler(onConsoleEvent, FALSE);
}

void MessageLoop::run(std::optional<std::chrono::duration<double>> limit,
                      const std::function<void()>& afterMessages) {
  std::optional<Clock::time_point> deadline;
  if (limit) deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(*limit);
  afterMessages();
  while (!deadline || Clock::now() < *deadline) {
    const DWORD woken = MsgWaitForMultipleObjectsEx(1, &stopRequested, waitUntil(deadline),
                                                    QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    if (woken == WAIT_OBJECT_0 || woken == WAIT_FAILED) return;
    dispatchMessage();
    afterMessages();
  }
}

}  // namespace qvxctl
