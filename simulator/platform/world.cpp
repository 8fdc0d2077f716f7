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

World& world() {
  return *current();
}

void resetWorld() {
  world().clock.waitForOthers();
  current() = std::make_unique<World>();
}

World::World() : clock(newClock()) {}

std::vector<std::string> World::takeJournal() {
  const std::lock_guard<std::mutex> lock(guard);
  return std::exchange(journal_, {});
}

std::uint64_t World::operations(Operation kind) const {
  const std::lock_guard<std::mutex> lock(guard);
  const auto found = operations_.find(kind);
  return found == operations_.end() ? 0 : found->second;
}

void World::set(Fault fault) {
  const std::lock_guard<std::mutex> lock(guard);
  fault_ = fault;
  faultCounted_ = 0;
}

void World::write(std::string line) {
  const std::lock_guard<std::mutex> lock(guard);
  journal_.push_back(std::move(line));
}

// What this operation suffers.
Fault World::countedFault(Operation kind) {
  const std::lock_guard<std::mutex> lock(guard);
  ++operations_[kind];
  if (fault_.only && fault_.only != kind) return {};
  ++faultCounted_;
  const bool inRange = faultCounted_ >= fault_.first && faultCounted_ - fault_.first < fault_.count;
  return inRange && (fault_.percent >= 100 || dice_() % 100 < fault_.percent) ? fault_ : Fault{};
}

bool World::runsInline() const {
  constexpr std::uint64_t mostOperationsOfWorker = 16;
  const std::lock_guard<std::mutex> lock(guard);
  const bool stallIsNear =
      fault_.kind == Fault::stalls && faultCounted_ + mostOperationsOfWorker >= fault_.first &&
      faultCounted_ < fault_.first + std::min(fault_.count, Clock::forever - fault_.first);
  return workersInline && !stallIsNear && clock.isAlone();
}

bool World::proceeds(Operation kind) {
  const Fault fault = countedFault(kind);
  if (fault.kind == Fault::stalls) {
    if (std::this_thread::get_id() == maker_) stalled_ms += fault.stall_ms;
    clock.sleep(fault.stall_ms);
  }
  if (fault.kind == Fault::unplugs) unplug();
  if (fault.kind != Fault::none && fault.kind != Fault::stalls) return false;
  return !permits || permits();
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
