// The simulated machine: what src/platform finds when the library runs natively. Tests and tools
// furnish it with cameras, let the library run, and read in the journal what a camera would have
// seen.
#pragma once

#include <atomic>
#include <deque>
#include <thread>
#include <typeindex>

#include "simulator/model/fault.h"
#include "simulator/platform/clock.h"
#include "simulator/platform/furniture.h"

namespace qvx::simulator {

// Objects that are open at the moment.
struct OpenCounts {
  int internetSessions = 0, internetRequests = 0;
  int deviceLists = 0, usbHandles = 0;
  int hidDevices = 0, filters = 0;
  int mutexHandles = 0;
  int comInitializations = 0;
  int inputLists = 0, captureFilters = 0, filterGraphs = 0, captureBuilders = 0;
  int streamConfigs = 0, videoProcAmps = 0;
  int files = 0;

  bool operator==(const OpenCounts&) const = default;
};
using OpenCounter = int OpenCounts::*;

class World : public Furniture {
 public:
  World();

  Clock& clock;  // outlives the machine: a worker's last step may still be on its way out of it

  // ---- What happens

  std::vector<std::string> takeJournal();
  bool keepsJournal = true;  // not for long runs
  std::uint64_t operations(Operation kind = Operation::access) const;
  std::uint64_t stalled_ms = 0;  // what stalls have cost the thread that made the machine

  // From the next operation on.
  void set(const Fault& fault);

  // All cameras come and go together. What was opened while they were there stays dead afterwards.
  // Odd while they are gone.
  unsigned connection() const { return connection_; }
  bool pluggedIn() const { return connection_ % 2 == 0; }
  void unplug() { connection_ += pluggedIn() ? 1 : 0; }
  void plugIn() { connection_ += pluggedIn() ? 0 : 1; }

  // For fuzzing: asked at every operation whether it may succeed; may also throw.
  std::function<bool()> permits;

  // For the platform's functions: notes what is done, and says whether it may succeed. A line is
  // put together only where it is kept.
  template <class... Words>
  void note(const Words&... words) {
    if (keepsJournal) write((std::string() + ... + inWords(words)));
  }
  template <class... Words>
  bool operate(const Words&... words) {
    note(words...);
    return proceeds(Operation::access);
  }
  bool grants() { return proceeds(Operation::systemCall); }

  // Guards everything on the machine but the clock; never held across a wait.
  mutable std::mutex guard;

  // ---- Its message loop

  struct Timer {
    std::uint64_t period_ms, due_ms;
    std::function<void()> run;
  };
  std::vector<Timer> timers;

  // Dispatches the timers that fall due in that time.
  void pumpMessages(std::uint64_t milliseconds);

  // ---- Workers

  std::atomic<int> threadsStarted = 0;

  // For long runs: workers run on their caller's thread, which is the same as long as nothing
  // stalls. Where a stall is near they get threads all the same.
  bool workersInline = false;
  bool runsInline() const;

  // For fuzzing, with workersInline: asked at every worker whether it comes late; may also throw.
  std::function<bool()> workerIsLate;

  // ---- What the library has opened: kept reachable as the system keeps it

  OpenCounts open;
  void count(OpenCounter counter, int change);

  // For long runs: of the objects that the library leaves open only so many of each kind are kept,
  // the others merely counted.
  std::size_t objectsKept = std::numeric_limits<std::size_t>::max();

  template <class Object>
  Object* keep(OpenCounter counter, Object object) {
    count(counter, 1);
    auto kept = std::make_shared<Object>(std::move(object));
    std::deque<Opened>& all = opened_[typeid(Object)];
    if (all.size() >= objectsKept) all.pop_front();
    all.push_back({kept, counter});
    return kept.get();
  }
  // Null for what is none of them; so is a drop refused. What was opened last is asked for most.
  template <class Object>
  Object* kept(const void* handle) {
    const std::deque<Opened>& all = opened_[typeid(Object)];
    for (auto each = all.rbegin(); each != all.rend(); ++each) {
      if (each->object.get() == handle) return static_cast<Object*>(each->object.get());
    }
    return nullptr;
  }
  template <class Object>
  bool drop(const void* handle) {
    return std::erase_if(opened_[typeid(Object)], [&](const Opened& each) {
             const bool isIt = each.object.get() == handle;
             if (isIt) count(each.counter, -1);
             return isIt;
           }) != 0;
  }

 private:
  struct Opened {
    std::shared_ptr<void> object;
    OpenCounter counter;
  };

  static std::string inWords(const std::string& text) { return text; }
  static std::string inWords(std::integral auto number) { return std::to_string(number); }
  static std::string inWords(Bytes bytes) { return hex(bytes); }
  static std::string inWords(const UsbSetup& setup) { return simulator::inWords(setup); }
  void write(std::string line);
  bool proceeds(Operation kind);

  const std::thread::id maker_ = std::this_thread::get_id();
  std::vector<std::string> journal_;
  FaultCounter faults_;
  std::map<Operation, std::uint64_t> operations_;
  std::atomic<unsigned> connection_ = 0;
  std::map<std::type_index, std::deque<Opened>> opened_;
};

// The one machine of this process.
World& world();

// Counts as one of the open objects for as long as it lives.
inline std::shared_ptr<void> openObject(OpenCounter counter) {
  world().count(counter, 1);
  return {nullptr, [counter](void*) { world().count(counter, -1); }};
}

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
