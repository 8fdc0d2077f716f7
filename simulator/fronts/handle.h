// Handles of the system that close themselves.
#pragma once

#include <windows.h>

#include <memory>

namespace qvx::simulator {

template <auto close>
struct Closing {
  void operator()(auto handle) const { close(handle); }
};
using Handle = std::unique_ptr<void, Closing<CloseHandle>>;

// Set and reset by hand.
inline Handle makeEvent() {
  return Handle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

}  // namespace qvx::simulator
