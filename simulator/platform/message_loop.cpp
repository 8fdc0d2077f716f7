#include "simulator/platform/message_loop.h"

#include <algorithm>

namespace qvx::simulator {

void MessageLoop::pumpMessages(std::uint64_t milliseconds) {
  const std::uint64_t end_ms = clock_.now_ms() + milliseconds;
  for (;;) {
    const auto next =
        std::min_element(timers.begin(), timers.end(),
                         [](const Timer& a, const Timer& b) { return a.due_ms < b.due_ms; });
    if (next == timers.end() || next->due_ms > end_ms) break;
    const std::uint64_t now_ms = clock_.now_ms();
    if (next->due_ms > now_ms) clock_.sleep(next->due_ms - now_ms);
    // A tick that comes late is not made up for.
    next->due_ms = std::max(next->due_ms, clock_.now_ms()) + next->period_ms;
    const std::function<void()> run = next->run;
    run();
  }
  const std::uint64_t now_ms = clock_.now_ms();
  if (now_ms < end_ms) clock_.sleep(end_ms - now_ms);
}

}  // namespace qvx::simulator
