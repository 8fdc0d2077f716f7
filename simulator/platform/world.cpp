#include "simulator/platform/world.h"

#include <algorithm>
#include <utility>

namespace qvx::simulator {

namespace {

// Machines are never destroyed, not even at the end of the process: a worker's last step may still
// be on its way out of one.
std::vector<World*>& worlds() {
  static auto* const all = new std::vector<World*>{new World};
  return *all;
}

}  // namespace

World& world() {
  return *worlds().back();
}

void resetWorld() {
  world().clock.waitForOthers();
  worlds().push_back(new World);
}

std::vector<std::string> World::takeJournal() {
  const std::lock_guard<std::mutex> lock(guard);
  return std::exchange(journal_, {});
}

std::uint64_t World::operations() const {
  const std::lock_guard<std::mutex> lock(guard);
  return operations_;
}

void World::set(Fault fault) {
  const std::lock_guard<std::mutex> lock(guard);
  fault_ = fault;
  faultCounted_ = 0;
}

void World::note(std::string line) {
  const std::lock_guard<std::mutex> lock(guard);
  journal_.push_back(std::move(line));
}

bool World::operate(std::string line) {
  Fault fault;
  {
    const std::lock_guard<std::mutex> lock(guard);
    journal_.push_back(std::move(line));
    ++operations_;
    ++faultCounted_;
    if (faultCounted_ >= fault_.first && faultCounted_ - fault_.first < fault_.count)
      fault = fault_;
  }
  if (fault.kind == Fault::stalls) clock.sleep(fault.stall_ms);
  return fault.kind != Fault::fails;
}

void World::pumpMessages(std::uint64_t milliseconds) {
  const std::uint64_t end_ms = clock.now_ms() + milliseconds;
  for (;;) {
    const auto next =
        std::min_element(timers.begin(), timers.end(),
                         [](const Timer& a, const Timer& b) { return a.due_ms < b.due_ms; });
    if (next == timers.end() || next->due_ms > end_ms) break;
    const std::uint64_t now_ms = clock.now_ms();
    if (next->due_ms > now_ms) clock.sleep(next->due_ms - now_ms);
    // A tick that comes late is not made up for.
    next->due_ms = std::max(next->due_ms, clock.now_ms()) + next->period_ms;
    const std::function<void()> run = next->run;
    run();
  }
  const std::uint64_t now_ms = clock.now_ms();
  if (now_ms < end_ms) clock.sleep(end_ms - now_ms);
}

std::string hex(std::span<const std::uint8_t> bytes) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    if (!text.empty()) text += ' ';
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

}  // namespace qvx::simulator
