// What the library has opened on the simulated machine.
#pragma once

#include <algorithm>
#include <deque>
#include <limits>
#include <map>
#include <memory>
#include <typeindex>
#include <utility>

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

// Kept reachable as the system keeps them.
class OpenedObjects {
 public:
  OpenCounts open;

  // For long runs: of the objects that the library leaves open only so many of each kind are kept,
  // the others merely counted.
  std::size_t objectsKept = std::numeric_limits<std::size_t>::max();

  template <class Object>
  Object* keep(Object object) {
    auto kept = std::make_shared<Object>(std::move(object));
    std::deque<std::shared_ptr<void>>& all = opened_[typeid(Object)];
    if (all.size() >= objectsKept) all.pop_front();
    all.push_back(kept);
    return kept.get();
  }
  template <class Object>
  Object* kept(const void* handle) {
    const auto& all = opened_[typeid(Object)];
    const auto found = std::find_if(
        all.rbegin(), all.rend(), [handle](const auto& object) { return object.get() == handle; });
    return found == all.rend() ? nullptr : static_cast<Object*>(found->get());
  }
  template <class Object>
  bool drop(const Object* object) {
    return std::erase_if(opened_[typeid(Object)],
                         [object](const auto& other) { return other.get() == object; }) != 0;
  }

 private:
  std::map<std::type_index, std::deque<std::shared_ptr<void>>> opened_;
};

}  // namespace qvx::simulator
