#include "simulator/platform/operations.h"

#include <utility>

namespace qvx::simulator {

std::vector<std::string> Operations::takeJournal() {
  const std::lock_guard<std::mutex> lock(guard);
  return std::exchange(journal_, {});
}

std::uint64_t Operations::operations(Operation kind) const {
  const std::lock_guard<std::mutex> lock(guard);
  const auto found = operations_.find(kind);
  return found == operations_.end() ? 0 : found->second;
}

void Operations::set(const Fault& fault) {
  const std::lock_guard<std::mutex> lock(guard);
  faults_.set(fault);
}

void Operations::write(std::string line) {
  const std::lock_guard<std::mutex> lock(guard);
  journal_.push_back(std::move(line));
}

bool Operations::stallIsNear() const {
  constexpr std::uint64_t mostOperationsOfWorker = 16;
  const std::lock_guard<std::mutex> lock(guard);
  return faults_.stallsWithin(mostOperationsOfWorker);
}

// Whether the operation may succeed. What spoils replies is a matter of the cameras.
bool Operations::proceeds(Operation kind) {
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

}  // namespace qvx::simulator
