// From floating point to integers.
#pragma once

#include <cstdint>
#include <limits>

namespace qvx {

// Toward zero. A value that an int cannot hold, NaN included, becomes the smallest int, which is
// what the processor's own conversion gives.
inline std::int32_t truncated(double value) {
  using Limits = std::numeric_limits<std::int32_t>;
  const bool fits = value > Limits::min() - 1.0 && value < Limits::max() + 1.0;
  return fits ? static_cast<std::int32_t>(value) : Limits::min();
}

}  // namespace qvx
