// What a camera of a model has, so that nothing is asked of a camera that it lacks: there it would
// do nothing, or something else.
#pragma once

#include <optional>

#include "qvx64/api.h"

namespace qvxctl {

struct Range {
  qvx_long lower, upper;
  bool holds(qvx_long value) const { return lower <= value && value <= upper; }
};

enum class ExposureTime { none, fixed, perhapsFixed, untold, settable };
enum class Flicker { none, chosen, detected };

struct ExposureFamily {
  int first, last;  // product ids
  ExposureTime time;
  Range target;  // of automatic exposure
  Flicker flicker;
};

struct Model {
  int device;
  std::optional<int> productId;  // told by the device path; the Wi-Fi camera's is not
  qvx_long features;             // see GetConfig
  const ExposureFamily& exposure;

  bool has(qvx_long feature) const { return (features & feature) != 0; }
  bool hasLens() const;
  bool returnsLens() const;  // its zero position can be read
  bool hasLights() const;    // that levels can be set of; all others have switches
  bool hasAim() const;
  qvx_long brightestRing() const {
    return has(QVX_FEATURE_QUADRANTS) ? QVX_QUADRANT_LEVEL_FULL : QVX_LEVEL_FULL;
  }
};

// Of a camera that is open.
Model modelOf(int device);

bool isUsb3(const std::optional<int>& productId);

}  // namespace qvxctl
