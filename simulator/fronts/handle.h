// System handles that close automatically.
#pragma once

#include <windows.h>

#include <memory>

namespace qvx::simulator {

template <auto close>
struct Closing {
  void operator()(auto handle) const { close(handle); }
};
using Handle = std::unique_ptr<void, Closing<CloseHandle>>;

// A manual-reset event.
inline Handle makeEvent() {
  return Handle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

}  // namespace qvx::simulator
