// What the cameras of a model have. A command for something that a camera lacks is not sent: it
// would do nothing, or something else.
#pragma once

#include <optional>

#include "qvx64/api.h"

namespace qvxctl {

struct Range {
  qvx_long min, max;
  bool holds(qvx_long value) const { return min <= value && value <= max; }
};

enum class ExposureTime { none, fixed, perhapsFixed, writeOnly, settable };
enum class Flicker { none, chosen, detected };

struct ExposureFamily {
  int first, last;  // product ids
  ExposureTime time;
  Range target;  // of automatic exposure
  Flicker flicker;
};

struct Model {
  int device;
  std::optional<int> productId;  // from the device path; unknown of the Wi-Fi camera
  qvx_long features;             // see GetConfig
  const ExposureFamily& exposure;

  bool has(qvx_long feature) const { return (features & feature) != 0; }
  bool hasLens() const;
  bool returnsLens() const;  // its zero position can be read
  bool hasLights() const;    // with levels; all others can only be switched
  bool hasAim() const;
  qvx_long maxRingLevel() const {
    return has(QVX_FEATURE_QUADRANTS) ? QVX_QUADRANT_LEVEL_FULL : QVX_LEVEL_FULL;
  }
};

// The camera must be open.
Model modelOf(int device);

bool isUsb3(const std::optional<int>& productId);

}  // namespace qvxctl
