// The message loop of the simulated machine, with its timers.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "simulator/platform/clock.h"

namespace qvx::simulator {

class MessageLoop {
 public:
  explicit MessageLoop(Clock& clock) : clock_(clock) {}

  struct Timer {
    std::uint64_t period_ms, due_ms;
    std::function<void()> run;
  };
  std::vector<Timer> timers;

  // Dispatches the timers that fall due in that time.
  void pumpMessages(std::uint64_t milliseconds);

 private:
  Clock& clock_;
};

}  // namespace qvx::simulator
