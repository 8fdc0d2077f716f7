// What the library has opened on the simulated machine.
#pragma once

#include <algorithm>
#include <deque>
#include <limits>
#include <map>
#include <memory>
#include <typeindex>

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

// What makes an object one of those that are counted there.
template <OpenCounter place>
struct CountedAs {
  static constexpr OpenCounter counter = place;
};

// Kept reachable as the system keeps them. Each object names its `counter`.
class OpenedObjects {
  using Objects = std::deque<std::shared_ptr<void>>;

 public:
  OpenCounts open;

  // For long runs: of the objects that the library leaves open only so many of each kind are kept,
  // the others merely counted.
  std::size_t objectsKept = std::numeric_limits<std::size_t>::max();

  template <class Object>
  Object* keep(Object object) {
    ++(open.*object.counter);
    auto kept = std::make_shared<Object>(std::move(object));
    Objects& all = opened_[typeid(Object)];
    if (all.size() >= objectsKept) all.pop_front();
    all.push_back(kept);
    return kept.get();
  }
  // Null for what is none of them; so is a drop refused.
  template <class Object>
  Object* kept(const void* handle) {
    const auto found = find<Object>(handle);
    return found == opened_[typeid(Object)].rend() ? nullptr : static_cast<Object*>(found->get());
  }
  template <class Object>
  bool drop(const void* handle) {
    const auto found = find<Object>(handle);
    Objects& all = opened_[typeid(Object)];
    if (found == all.rend()) return false;
    --(open.*static_cast<Object*>(found->get())->counter);
    all.erase(std::next(found).base());
    return true;
  }

 private:
  // From the end: what was opened last is asked for most.
  template <class Object>
  Objects::reverse_iterator find(const void* handle) {
    Objects& all = opened_[typeid(Object)];
    return std::find_if(all.rbegin(), all.rend(),
                        [handle](const auto& object) { return object.get() == handle; });
  }

  std::map<std::type_index, Objects> opened_;
};

}  // namespace qvx::simulator
