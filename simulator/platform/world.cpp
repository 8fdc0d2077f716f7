#include "simulator/platform/world.h"

namespace qvx::simulator {

namespace {

Clock& newClock() {
  static auto* const all = new std::vector<std::unique_ptr<Clock>>;
  return *all->emplace_back(std::make_unique<Clock>());
}

// Not destroyed at the end of the process: the library's globals may still need it.
std::unique_ptr<World>& current() {
  static auto* const machine = new std::unique_ptr<World>(new World);
  return *machine;
}

}  // namespace

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

World& world() {
  return *current();
}

void resetWorld() {
  world().clock.waitForOthers();
  current() = std::make_unique<World>();
}

World::World() : World(newClock()) {}

}  // namespace qvx::simulator
