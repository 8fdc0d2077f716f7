#include "simulator/platform/world.h"

#include <utility>

namespace qvx::simulator {

namespace {

Clock& newClock() {
  static auto* const all = new std::deque<Clock>;
  return all->emplace_back();
}

// Never destroyed: the library's globals may still need it when the process ends.
std::unique_ptr<World>& current() {
  static auto* const machine = new std::unique_ptr<World>(new World);
  return *machine;
}

}  // namespace

World::World() : clock(newClock()) {}

std::vector<std::string> World::takeJournal() {
  const std::lock_guard<std::mutex> lock(guard);
  return std::exchange(journal_, {});
}

std::uint64_t World::operations(Operation kind) const {
  const std::lock_guard<std::mutex> lock(guard);
  return operations_.contains(kind) ? operations_.at(kind) : 0;
}

void World::set(const Fault& fault) {
  const std::lock_guard<std::mutex> lock(guard);
  faults_.set(fault);
}

void World::count(OpenCounter counter, int change) {
  const std::lock_guard<std::mutex> lock(guard);
  open.*counter += change;
}

void World::write(std::string line) {
  const std::lock_guard<std::mutex> lock(guard);
  journal_.push_back(std::move(line));
}

// Whether the operation may succeed. Faults that spoil replies are left to the cameras.
bool World::proceeds(Operation kind) {
  Fault fault;
  {
    const std::lock_guard<std::mutex> lock(guard);
    ++operations_[kind];
    fault = faults_.next(kind);
  }
  if (fault.kind == Fault::stalls) {
    if (std::this_thread::get_id() == maker_) stalled_ms += fault.stall_ms;
    clock.sleep(fault.stall_ms);
  }
  if (fault.kind == Fault::unplugs) unplug();
  if (fault.kind == Fault::fails || fault.kind == Fault::unplugs) return false;
  return !permits || permits();
}

bool World::runsInline() const {
  constexpr std::uint64_t maxOperationsOfWorker = 32;
  const std::lock_guard<std::mutex> lock(guard);
  return workersInline && !faults_.stallsWithin(maxOperationsOfWorker) && clock.isAlone();
}

void World::pumpMessages(std::uint64_t milliseconds) {
  const std::uint64_t end_ms = clock.now_ms() + milliseconds;
  for (;;) {
    const auto next = std::ranges::min_element(timers, {}, &Timer::due_ms);
    const bool isDue = next != timers.end() && next->due_ms <= end_ms;
    const std::uint64_t until_ms = isDue ? next->due_ms : end_ms, now_ms = clock.now_ms();
    if (until_ms > now_ms) clock.sleep(until_ms - now_ms);
    if (!isDue) return;
    // Missed ticks are not made up for.
    next->due_ms = std::max(next->due_ms, clock.now_ms()) + next->period_ms;
    const std::function<void()> run = next->run;
    run();
  }
}

World& world() {
  return *current();
}

void resetWorld() {
  world().clock.waitForOthers();
  current() = std::make_unique<World>();
}

}  // namespace qvx::simulator
