// A handle of the system that closes itself.
#pragma once

#include <windows.h>

#include <memory>

namespace qvx::simulator {

struct CloseHandleOf {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, CloseHandleOf>;

// Set and reset by hand.
inline Handle makeEvent() {
  return Handle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

}  // namespace qvx::simulator
