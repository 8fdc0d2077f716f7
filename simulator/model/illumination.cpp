#include "simulator/model/illumination.h"

#include <algorithm>

#include "simulator/model/controller.h"
#include "simulator/model/product.h"

namespace qvx::simulator {

namespace {

namespace reg = controller_register;

constexpr std::uint8_t quadrantKind = 4;
constexpr std::uint8_t everyQuadrantByItself = 49;

bool isWithin(std::uint8_t value, std::uint8_t first) {
  return value >= first && value <= first + coarsestLight;
}

double part(int steps, std::uint8_t full) {
  return static_cast<double>(steps) / full;
}

}  // namespace

Illumination::Illumination(std::uint16_t productId)
    : hasController_(productFor(productId).lights.kind != erased),
      hasQuadrants_(productFor(productId).lights.kind == quadrantKind),
      hasAxialSwitch_((productId >= 0x9C0 && productId <= 0x9C7) ||
                      (productId >= 0x9E0 && productId <= 0x9EF)),
      axialOn_(!hasAxialSwitch_) {}

void Illumination::take(std::uint8_t target, std::uint8_t value) {
  if (target == reg::lightSwitch) takeSwitch(value);
  if (target == reg::lightLevel) takeLevel(value);
  if (target < reg::quadrant1Level || target > reg::quadrant4Level || value > finestLight) return;
  quadrantLevels_[static_cast<std::size_t>(target - reg::quadrant1Level)] =
      part(value, finestLight);
}

void Illumination::takeSwitch(std::uint8_t value) {
  if (value <= everySegment) segments_ = value;
  if (value == noSegment) segments_ = 0;
  if (hasAxialSwitch_ && (value == axialOn || value == axialOff)) axialOn_ = value == axialOn;
  if (value == aimOn || value == aimOff) aimOn_ = value == aimOn;
}

void Illumination::takeLevel(std::uint8_t value) {
  if (value == everyQuadrantByItself) {
    ringLevel_ = 1;
  } else if (!hasAxialSwitch_ && isWithin(value, plainAxial)) {
    axialLevel_ = part(value - plainAxial, coarsestLight);
  } else if (hasAxialSwitch_ && isWithin(value, switchedAxial)) {
    axialLevel_ = part(value - switchedAxial, coarsestLight);
  } else if (isWithin(value, brightestAim)) {
    aimLevel_ = part(brightestAim + coarsestLight - value, coarsestLight);
  } else if (value <= fullRing()) {
    ringLevel_ = part(value, fullRing());
  }
}

std::array<double, 4> Illumination::quadrants() const {
  std::array<double, 4> lit{};
  for (std::size_t i = 0; i < lit.size(); ++i) {
    if ((segments_ >> i & 1) != 0) lit[i] = ringLevel_ * quadrantLevels_[i];
  }
  return lit;
}

double Illumination::ring() const {
  double sum = 0;
  for (const double lit : quadrants()) sum += lit;
  return sum / static_cast<double>(quadrantLevels_.size());
}

double Illumination::ofPins(std::uint8_t levels) const {
  // Other levels than these choose modes.
  enum Pins : std::uint8_t { firstLight = 1, secondOfRing = 2, secondLight = 4 };
  if (levels == firstLight) return ringShare;
  return levels == secondLight || (levels == secondOfRing && hasController_) ? axialShare : 0;
}

double Illumination::brightness(std::uint8_t pinLevels) const {
  const double sum =
      ringShare * ring() + axialShare * axial() + aimShare * aim() + ofPins(pinLevels);
  return std::min(sum, 1.0);
}

}  // namespace qvx::simulator
