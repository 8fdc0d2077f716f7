#include "simulator/platform/clock.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <utility>

namespace qvx::simulator {

namespace {

const std::function<bool()> never = [] { return false; };

std::uint64_t later(std::uint64_t now_ms, std::uint64_t by_ms) {
  return by_ms > Clock::forever - now_ms ? Clock::forever : now_ms + by_ms;
}

}  // namespace

std::uint64_t Clock::now_ms() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return now_ms_;
}

void Clock::sleep(std::uint64_t milliseconds) {
  waitFor(milliseconds, never);
}

bool Clock::waitFor(std::uint64_t limit_ms, const std::function<bool()>& ready) {
  std::unique_lock<std::mutex> lock(mutex_);
  if (ready()) return true;
  Waiter waiter{later(now_ms_, limit_ms), &ready, false, {}};
  block(lock, waiter);
  return ready();
}

void Clock::change(const std::function<void()>& change) {
  const std::lock_guard<std::mutex> lock(mutex_);
  change();
  wakeReady();
}

void Clock::startThread(std::function<void()> body) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++threads_;
    ++running_;
  }
  std::thread([this, body = std::move(body)]() mutable {
    body();
    body = nullptr;
    const std::lock_guard<std::mutex> lock(mutex_);
    --threads_;
    --running_;
    wakeReady();
    moveOnIfAllWait();
  }).detach();
}

void Clock::waitForOthers() {
  waitFor(forever, [this] { return threads_ == 1; });
}

bool Clock::isAlone() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return threads_ == 1;
}

void Clock::block(std::unique_lock<std::mutex>& lock, Waiter& waiter) {
  waiters_.push_back(&waiter);
  --running_;
  moveOnIfAllWait();
  waiter.wake.wait(lock, [&waiter] { return waiter.woken; });
  waiters_.remove(&waiter);
}

// The woken thread counts as running from here on, so that the time cannot move before it does.
void Clock::wake(Waiter& waiter) {
  waiter.woken = true;
  ++running_;
  waiter.wake.notify_one();
}

void Clock::wakeReady() {
  for (Waiter* waiter : waiters_) {
    if (!waiter->woken && (*waiter->ready)()) wake(*waiter);
  }
}

// Moves the time to the earliest deadline and wakes the one that waits for it; of several, the one
// that has waited longest.
void Clock::moveOnIfAllWait() {
  if (running_ != 0 || waiters_.empty()) return;
  const auto next =
      std::min_element(waiters_.begin(), waiters_.end(),
                       [](const Waiter* a, const Waiter* b) { return a->deadline < b->deadline; });
  if ((*next)->deadline == forever) {
    std::fputs("simulated clock: every thread waits for another\n", stderr);
    std::abort();
  }
  now_ms_ = std::max(now_ms_, (*next)->deadline);
  wake(**next);
}

}  // namespace qvx::simulator
