// The simulated machine: what src/platform finds when the library runs natively. Tests and tools
// furnish it with cameras, let the library run, and read in the journal what a camera would have
// seen.
#pragma once

#include "simulator/platform/furniture.h"
#include "simulator/platform/opened_objects.h"
#include "simulator/platform/operations.h"

namespace qvx::simulator {

// The message loop, with its timers.
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

class World : public Furniture, public OpenedObjects, public Operations, public MessageLoop {
 public:
  World();

  int threadsStarted = 0;

  // For long runs: workers run on their caller's thread, which is the same as long as nothing
  // stalls. Where a stall is near they get threads all the same.
  bool workersInline = false;
  bool runsInline() const { return workersInline && !stallIsNear() && clock.isAlone(); }

  // For fuzzing, with workersInline: asked at every worker whether it comes late; may also throw.
  std::function<bool()> workerIsLate;

 private:
  explicit World(Clock& machineClock) : Operations(machineClock), MessageLoop(machineClock) {}
};

// The one machine of this process.
World& world();

// One of the objects that the machine counts as open, for as long as it lives.
class OpenObject {
 public:
  explicit OpenObject(OpenCounter counter) : counter_(counter) { count(1); }
  ~OpenObject() { count(-1); }
  OpenObject(const OpenObject&) = delete;
  OpenObject& operator=(const OpenObject&) = delete;

 private:
  void count(int change) const {
    const std::lock_guard<std::mutex> lock(world().guard);
    world().open.*counter_ += change;
  }

  OpenCounter counter_;
};

// What was opened on a camera, and stays dead when that was unplugged.
class CameraConnection {
 public:
  bool isThere() const { return number_ == world().connection(); }

 private:
  unsigned number_ = world().connection();
};

// Lets late workers finish and makes a new, empty machine; the old one is gone.
void resetWorld();

}  // namespace qvx::simulator
