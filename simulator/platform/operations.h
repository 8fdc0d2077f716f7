// What is done to the simulated machine and its cameras: noted, counted, and at times refused.
#pragma once

#include <atomic>
#include <concepts>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "simulator/model/fault.h"
#include "simulator/platform/clock.h"

namespace qvx::simulator {

class Operations {
 public:
  explicit Operations(Clock& machineClock) : clock(machineClock) {}

  Clock& clock;  // outlives the machine: a worker's last step may still be on its way out of it

  // What happened.
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

  // For the platform's functions: notes what is done, and says whether it may succeed.
  template <std::invocable Line>
  void note(const Line& line) {
    if (keepsJournal) write(line());
  }
  template <std::invocable Line>
  bool operate(const Line& line) {
    note(line);
    return proceeds(Operation::access);
  }
  bool grants() { return proceeds(Operation::systemCall); }

  // Guards everything on the machine but the clock; never held across a wait.
  mutable std::mutex guard;

 protected:
  // Whether a worker that begins now may meet a stall.
  bool stallIsNear() const;

 private:
  void write(std::string line);
  bool proceeds(Operation kind);

  const std::thread::id maker_ = std::this_thread::get_id();
  std::vector<std::string> journal_;
  FaultCounter faults_;
  std::map<Operation, std::uint64_t> operations_;
  std::atomic<unsigned> connection_ = 0;
};

}  // namespace qvx::simulator
