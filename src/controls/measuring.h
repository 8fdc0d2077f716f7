// How exposure and magnification share the controller.
#pragma once

#include <utility>

#include "state/device_state.h"

namespace qvx {

// Runs an exposure operation while measuring rests; the operation itself says when it may go on.
// One that breaks off half-way leaves measuring as it was.
template <class Operation>
auto whileMeasuringRests(Operation operation) {
  const auto before = std::exchange(bWait, std::uint8_t{0});
  try {
    return operation();
  } catch (...) {
    bWait = before;
    throw;
  }
}

}  // namespace qvx
