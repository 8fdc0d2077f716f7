// Workers and named mutexes on the simulated clock.
#include "platform/system.h"

#include <map>

#include "simulator/platform/world.h"

namespace qvx::platform {

namespace {

using simulator::world;

struct MutexState {
  std::thread::id owner;
  int depth = 0;
};

class SimulatedMutex final : public NamedMutex {
 public:
  explicit SimulatedMutex(std::shared_ptr<MutexState> state) : state_(std::move(state)) {}

  bool acquire(std::uint32_t limit_ms) override {
    const auto self = std::this_thread::get_id();
    return world().grants() && world().clock.waitFor(limit_ms, [this, self] {
      if (state_->owner == std::thread::id()) state_->owner = self;
      return state_->owner == self;
    }) && ++state_->depth > 0;
  }

  void release() override {
    world().clock.change([this] {
      if (--state_->depth == 0) state_->owner = std::thread::id();
    });
  }

 private:
  std::shared_ptr<MutexState> state_;
  std::shared_ptr<void> open_ = simulator::openObject(&simulator::OpenCounts::mutexHandles);
};

std::optional<std::uint32_t> runInline(const std::function<std::uint32_t()>& task,
                                       std::uint32_t limit_ms) {
  const bool late = world().workerIsLate && world().workerIsLate();
  const std::uint32_t result = task();
  if (!late) return result;
  world().clock.sleep(limit_ms);
  return std::nullopt;
}

}  // namespace

std::optional<std::uint32_t> system::runOnWorker(std::function<std::uint32_t()> task,
                                                 std::uint32_t limit_ms) {
  simulator::World& machine = world();
  if (!machine.grants() || !machine.threadsStart) return std::nullopt;
  ++machine.threadsStarted;
  if (machine.runsInline()) return runInline(task, limit_ms);
  auto result = std::make_shared<std::optional<std::uint32_t>>();
  machine.clock.startThread([&machine, result, task = std::move(task)]() mutable {
    const std::uint32_t value = task();
    task = nullptr;  // destroys what the task owns before its end is reported
    machine.clock.change([&] { *result = value; });
  });
  const bool inTime = machine.clock.waitFor(limit_ms, [&] { return result->has_value(); });
  return inTime ? *result : std::nullopt;
}

std::shared_ptr<NamedMutex> system::openNamedMutex(const char* name) {
  if (!world().grants()) return nullptr;
  static std::mutex guard;
  static std::map<std::string, std::weak_ptr<MutexState>> states;
  const std::lock_guard<std::mutex> lock(guard);
  std::shared_ptr<MutexState> state = states[name].lock();
  if (state == nullptr) states[name] = state = std::make_shared<MutexState>();
  return std::make_shared<SimulatedMutex>(state);
}

}  // namespace qvx::platform
