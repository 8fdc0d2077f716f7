#include "simulator/model/illumination.h"

#include <algorithm>

#include "simulator/model/controller.h"
#include "simulator/model/product.h"

namespace qvx::simulator {

namespace {

namespace reg = controller_register;

constexpr std::uint8_t everyQuadrantByItself = 49;

bool isWithin(std::uint8_t value, std::uint8_t first) {
  return value >= first && value <= first + coarsestLight;
}

double part(int steps, std::uint8_t full) {
  return static_cast<double>(steps) / full;
}

}  // namespace

Illumination::Illumination(std::uint16_t productId)
    : hasController(productFor(productId).hasLightingRegisters()),
      hasQuadrants(productFor(productId).hasQuadrants()),
      hasAxialSwitch((productId >= 0x9C0 && productId <= 0x9C7) ||
                     (productId >= 0x9E0 && productId <= 0x9EF)),
      axialOn_(!hasAxialSwitch) {}

void Illumination::take(std::uint8_t target, std::uint8_t value) {
  if (target == reg::lightSwitch) takeSwitch(value);
  if (target == reg::lightLevel) takeLevel(value);
  if (target < reg::quadrant1Level || target > reg::quadrant4Level || value > finestLight) return;
  quadrantLevels_[static_cast<std::size_t>(target - reg::quadrant1Level)] =
      part(value, finestLight);
}

void Illumination::takeSwitch(std::uint8_t value) {
  if (value <= everySegment) segments = value;
  if (value == noSegment) segments = 0;
  if (hasAxialSwitch && (value == axialOn || value == axialOff)) axialOn_ = value == axialOn;
  if (value == aimOn || value == aimOff) aimOn_ = value == aimOn;
}

void Illumination::takeLevel(std::uint8_t value) {
  if (value == everyQuadrantByItself) {
    ringLevel = 1;
  } else if (isWithin(value, darkestAxial())) {
    axialLevel_ = part(value - darkestAxial(), coarsestLight);
  } else if (isWithin(value, brightestAim)) {
    aimLevel_ = part(brightestAim + coarsestLight - value, coarsestLight);
  } else if (value <= fullRing()) {
    ringLevel = part(value, fullRing());
  }
}

std::array<double, 4> Illumination::quadrants() const {
  std::array<double, 4> lit{};
  for (std::size_t i = 0; i < lit.size(); ++i) {
    if ((segments >> i & 1) != 0) lit[i] = ringLevel * quadrantLevels_[i];
  }
  return lit;
}

double Illumination::ofPins(std::uint8_t levels) const {
  // All other levels select modes.
  enum Pins : std::uint8_t { firstLight = 1, secondOfRing = 2, secondLight = 4 };
  if (levels == firstLight) return ringShare;
  return levels == secondLight || (levels == secondOfRing && hasController) ? axialShare : 0;
}

}  // namespace qvx::simulator
