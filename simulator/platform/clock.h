// A clock that advances only when all participating threads wait: a pause of seconds costs nothing,
// and the order of events does not depend on the speed of the machine.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <limits>
#include <mutex>
#include <vector>

namespace qvx::simulator {

class Clock {
 public:
  static constexpr std::uint64_t forever = std::numeric_limits<std::uint64_t>::max();

  std::uint64_t now_ms() const;

  // Waits for that time.
  void sleep(std::uint64_t milliseconds);

  // Waits until `ready` returns true or the limit has passed; returns the last result. `ready` is
  // called under the clock's lock by any thread that changes something, and must be quick.
  bool waitFor(std::uint64_t limit_ms, const std::function<bool()>& ready);

  // Changes a state that other threads may wait for.
  void change(const std::function<void()>& change);

  // Runs the body on a new participating thread.
  void startThread(std::function<void()> body);

  // Waits until the calling thread is the only participant.
  void waitForOthers();
  bool isAlone() const;

 private:
  struct Waiter {
    std::uint64_t deadline;
    const std::function<bool()>& ready;
    bool woken = false;
  };

  void settle();

  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::vector<Waiter*> waiters_;  // not woken yet; all other threads are running
  std::uint64_t now_ms_ = 0;
  std::size_t threads_ = 1;  // the creating thread participates
};

}  // namespace qvx::simulator
