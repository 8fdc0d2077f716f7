#include "simulator/platform/clock.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace qvx::simulator {

std::uint64_t Clock::now_ms() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return now_ms_;
}

void Clock::sleep(std::uint64_t milliseconds) {
  waitFor(milliseconds, [] { return false; });
}

bool Clock::waitFor(std::uint64_t limit_ms, const std::function<bool()>& ready) {
  std::unique_lock<std::mutex> lock(mutex_);
  if (ready()) return true;
  Waiter waiter{now_ms_ + std::min(limit_ms, forever - now_ms_), ready};
  waiters_.push_back(&waiter);
  settle();
  wake_.wait(lock, [&waiter] { return waiter.woken; });
  return ready();
}

void Clock::change(const std::function<void()>& change) {
  const std::lock_guard<std::mutex> lock(mutex_);
  change();
  settle();
}

void Clock::startThread(std::function<void()> body) {
  change([this] { ++threads_; });
  std::thread([this, body = std::move(body)]() mutable {
    body();
    body = nullptr;
    change([this] { --threads_; });
  }).detach();
}

void Clock::waitForOthers() {
  waitFor(forever, [this] { return threads_ == 1; });
}

bool Clock::isAlone() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return threads_ == 1;
}

// Wakes the threads whose condition holds. If all threads wait, advances the time to the earliest
// deadline and wakes its thread; of several, the one that has waited longest. A woken thread counts
// as running from here on, so that the time cannot advance before it runs.
void Clock::settle() {
  std::erase_if(waiters_, [](Waiter* waiter) { return waiter->woken = waiter->ready(); });
  if (waiters_.size() == threads_) {
    const auto next = std::ranges::min_element(waiters_, {}, &Waiter::deadline);
    if ((*next)->deadline == forever) {
      std::fputs("simulated clock: every thread waits for another\n", stderr);
      std::abort();
    }
    now_ms_ = std::max(now_ms_, (*next)->deadline);
    (*next)->woken = true;
    waiters_.erase(next);
  }
  wake_.notify_all();
}

}  // namespace qvx::simulator
