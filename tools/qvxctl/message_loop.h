// The thread's message loop: the library's timers run from it.
#pragma once

#include <chrono>
#include <functional>
#include <optional>

namespace qvxctl {

// From construction on, the first Ctrl-C ends the loop instead of the process; a second one ends
// the process as usual. One at a time.
class MessageLoop {
 public:
  MessageLoop();
  ~MessageLoop();
  MessageLoop(const MessageLoop&) = delete;
  MessageLoop& operator=(const MessageLoop&) = delete;

  // Dispatches messages until Ctrl-C, or for a time. Calls `afterMessages` once at the start and
  // then whenever messages were dispatched.
  void run(std::optional<std::chrono::duration<double>> limit,
           const std::function<void()>& afterMessages);
};

}  // namespace qvxctl
