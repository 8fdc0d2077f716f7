// What the tables of LED states share: which camera a row is for.
#pragma once

#include <cstdint>

#include "controls/family_rows.h"

namespace qvx {

struct LedCamera {
  int pid;
  std::int32_t features;  // the feature word
};

namespace led_feature {
enum : std::int32_t { lightingController = 0x01, aimingLight = 0x10 };
}

using LedTest = bool (*)(const LedCamera& camera);

// In any of the families. They are asked in turn up to the first that fits: some ask on the wire.
template <Family... families>
bool in(const LedCamera& camera) {
  return ((families(camera.pid) != 0) || ...);
}

template <std::int32_t bit>
bool has(const LedCamera& camera) {
  return (camera.features & bit) != 0;
}

template <LedTest first, LedTest second>
bool either(const LedCamera& camera) {
  return first(camera) || second(camera);
}

template <LedTest first, LedTest second>
bool both(const LedCamera& camera) {
  return first(camera) && second(camera);
}

inline bool anyCamera(const LedCamera& /*camera*/) {
  return true;
}

// The LED states of the Wi-Fi camera: some are on its lighting controller, some on its pins.
void setWifiLeds(int deviceIndex, int state, const LedCamera& camera);

}  // namespace qvx
