// The component object model of the calling thread: its single-threaded apartment, or the
// multi-threaded one where the application has put the thread into that.
#pragma once

#include <cstdint>

namespace qvx::platform {

// Initialises COM for good.
void initializeCom();

// COM for a time: takes back, on its own thread, what it took. On a thread of the multi-threaded
// apartment it takes nothing, and on another thread than its own it gives nothing back.
class ComUse {
 public:
  ComUse();
  ~ComUse();
  ComUse(const ComUse&) = delete;
  ComUse& operator=(const ComUse&) = delete;

  // Leaves COM initialised after all.
  void keep() { thread_ = none; }

 private:
  static constexpr std::uint32_t none = 0;
  std::uint32_t thread_ = none;  // that is to give it back
};

}  // namespace qvx::platform
