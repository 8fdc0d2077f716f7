// The focus lens. A camera has one of two drivers for it: a lens controller that takes an 8-bit
// position, or a voice coil that takes a direction and a 10-bit value. Positions count from the
// zero position that the camera's controller holds.
#pragma once

#include <cstdint>

namespace qvx {

struct LensRange {
  std::int32_t lower, upper;
};

// Brings the lens to its zero position.
void resetLens(int deviceIndex);

// Coarse and fine position; each is cut to its range. The fine position exists on voice coils that
// are not in a Wi-Fi camera; other lenses go to position 0, and those of Wi-Fi cameras stay where
// they are.
void moveLens(int deviceIndex, std::int32_t position);
void moveLensFine(int deviceIndex, std::int32_t position);

// The ranges of the two. Asking brings the lens to its zero position. Here every negative index is
// the Wi-Fi camera.
LensRange lensLimits(int deviceIndex);
LensRange fineLensLimits(int deviceIndex);

}  // namespace qvx
