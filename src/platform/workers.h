// Short-lived threads and the system-wide mutex.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace qvx::platform {

// Runs the task on a new thread and waits for it at most `limit_ms`. Returns the task's result,
// or nothing when the thread could not be started or did not finish in time. A late task runs on
// to its end: it may touch only what it owns or shares ownership of. The task must not throw.
std::optional<std::uint32_t> runOnWorker(std::function<std::uint32_t()> task,
                                         std::uint32_t limit_ms);

// A mutex that is shared by name with every process of the session. Recursive for one thread.
class NamedMutex {
 public:
  virtual ~NamedMutex() = default;

  // Waits at most `limit_ms`. A mutex whose owner died counts as obtained.
  virtual bool acquire(std::uint32_t limit_ms) = 0;

  // To be called by the thread that acquired it.
  virtual void release() = 0;
};

// Opens the mutex, creating it unowned if need be. Null on failure.
std::shared_ptr<NamedMutex> openNamedMutex(const char* name);

}  // namespace qvx::platform
