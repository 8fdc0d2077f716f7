// The simulated machine on which the library runs natively. Tests plug cameras into it, run the
// library, and read in its journal what a camera would have seen.
#pragma once

#include <atomic>
#include <deque>
#include <thread>
#include <typeindex>

#include "simulator/model/fault.h"
#include "simulator/platform/clock.h"
#include "simulator/platform/furniture.h"

namespace qvx::simulator {

// The number of open objects of each kind.
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

  Clock& clock;  // outlives the machine: a finishing worker may still use it

  // ---- Operations and faults

  std::vector<std::string> takeJournal();
  bool keepsJournal = true;  // switched off in long runs
  std::uint64_t operations(Operation kind = Operation::access) const;
  std::uint64_t stalled_ms = 0;  // total delay of the thread that created the machine

  // Takes effect with the next operation.
  void set(const Fault& fault);

  // All cameras are plugged and unplugged together; objects opened before stay dead afterwards. The
  // number is odd while they are unplugged.
  unsigned connection() const { return connection_; }
  bool pluggedIn() const { return connection_ % 2 == 0; }
  void unplug() { connection_ += pluggedIn() ? 1 : 0; }
  void plugIn() { connection_ += pluggedIn() ? 0 : 1; }

  // For fuzzing: decides for every operation whether it may succeed; may throw.
  std::function<bool()> permits;

  // For the platform's functions: `note` adds a line to the journal; `operate` also returns whether
  // the operation may succeed. The line is built only if it is kept.
  template <class... Words>
  void note(const Words&... words) {
    if (!keepsJournal) return;
    std::string line;
    (line.append(inWords(words)), ...);
    write(std::move(line));
  }
  template <class... Words>
  bool operate(const Words&... words) {
    note(words...);
    return proceeds(Operation::access);
  }
  bool grants() { return proceeds(Operation::systemCall); }

  // Guards the whole machine except the clock; never held while waiting.
  mutable std::mutex guard;

  // ---- Message loop

  struct Timer {
    std::uint64_t period_ms, due_ms;
    std::function<void()> run;
  };
  std::vector<Timer> timers;

  // Dispatches the timers that become due in that time.
  void pumpMessages(std::uint64_t milliseconds);

  // ---- Workers

  std::atomic<int> threadsStarted = 0;

  // For long runs: workers run on the caller's thread, which makes no difference unless something
  // stalls. When a stall is near they still get threads.
  bool workersInline = false;
  bool runsInline() const;

  // For fuzzing, with workersInline: decides for every worker whether it misses its limit; may
  // throw.
  std::function<bool()> workerIsLate;

  // ---- Objects that the library has opened: the machine owns them, as the system does

  OpenCounts open;
  void count(OpenCounter counter, int change);

  // For long runs: keeps at most that many objects of each kind that the library leaves open;
  // further ones are only counted.
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
  // Null for an unknown handle; `drop` then returns false. Searches from the newest, which is
  // wanted most often.
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

  static std::string_view inWords(std::string_view text) { return text; }
  static std::string inWords(std::integral auto number) { return std::to_string(number); }
  static std::string inWords(Bytes bytes) { return hex(bytes); }
  static std::string inWords(const UsbSetup& setup) { return simulator::inWords(setup); }
  static std::string inWords(const PropertyId& property) { return simulator::inWords(property); }
  void write(std::string line);
  bool proceeds(Operation kind);

  const std::thread::id maker_ = std::this_thread::get_id();
  std::vector<std::string> journal_;
  FaultCounter faults_;
  std::map<Operation, std::uint64_t> operations_;
  std::atomic<unsigned> connection_ = 0;
  std::map<std::type_index, std::deque<Opened>> opened_;
};

// The machine of this process.
World& world();

// Counts as an open object while it lives.
inline std::shared_ptr<void> openObject(OpenCounter counter) {
  world().count(counter, 1);
  return {nullptr, [counter](void*) { world().count(counter, -1); }};
}

// An object opened on a camera: it stays dead once the camera was unplugged.
class CameraConnection {
 public:
  bool isThere() const { return number_ == world().connection(); }

 private:
  unsigned number_ = world().connection();
};

// Waits for late workers, then replaces the machine by a new, empty one.
void resetWorld();

}  // namespace qvx::simulator
