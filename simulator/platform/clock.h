// A clock that moves only when every thread that takes part is waiting: a pause of seconds costs
// nothing, and what happens in which order does not depend on the machine.
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

  // Waits until the time has passed.
  void sleep(std::uint64_t milliseconds);

  // Waits until `ready` holds, at most so long; returns whether it does. `ready` is evaluated under
  // the clock's lock, by whichever thread changes something, and must be quick.
  bool waitFor(std::uint64_t limit_ms, const std::function<bool()>& ready);

  // Changes what others wait for.
  void change(const std::function<void()>& change);

  // Runs the body on a new thread that takes part.
  void startThread(std::function<void()> body);

  // Waits until the calling thread is the only one left.
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
  std::vector<Waiter*> waiters_;  // that nobody has woken yet: the other threads run
  std::uint64_t now_ms_ = 0;
  std::size_t threads_ = 1;  // the one that made the clock takes part
};

}  // namespace qvx::simulator
