// What the lighting controller makes of the registers that drive the lights: a ring of four
// segments, a light along the axis and one to aim with.
#pragma once

#include <array>
#include <cstdint>

namespace qvx::simulator {

// Lights are dimmed in 31 steps, or in 6.
constexpr std::uint8_t finestLight = 31, coarsestLight = 6;

enum LightSwitch : std::uint8_t {
  everySegment = 15,
  noSegment = 16,
  axialOn = 24,
  axialOff = 32,
  aimOn = 40,
  aimOff = 48,
};

// In the level register, where the aiming light counts backwards.
constexpr std::uint8_t brightestAim = 70;

class Illumination {
 public:
  explicit Illumination(std::uint16_t productId);

  // A write to the controller. Registers that drive no light, and values without a meaning, change
  // nothing.
  void take(std::uint8_t reg, std::uint8_t value);

  const bool hasController;
  const bool hasQuadrants;    // that can be dimmed one by one
  const bool hasAxialSwitch;  // and levels of its own for that light

  // In the level register: the ring begins with 0.
  std::uint8_t fullRing() const { return hasQuadrants ? finestLight : coarsestLight; }
  std::uint8_t darkestAxial() const { return hasAxialSwitch ? 32 : 7; }

  double ringLevel = 0;       // of the segments that are lit, from 0 to 1
  std::uint8_t segments = 0;  // a bit for each that is lit

  // From 0 (dark) to 1. The first quadrant is the upper right one, the others follow clockwise.
  std::array<double, 4> quadrants() const;
  double axial() const { return axialOn_ ? axialLevel_ : 0; }
  double aim() const { return aimOn_ ? aimLevel_ : 0; }

  // What each gives to the object when it is full.
  static constexpr double ringShare = 0.9, axialShare = 0.6, aimShare = 0.1;

  // What the light pins give when they stand at these levels.
  double ofPins(std::uint8_t levels) const;

 private:
  void takeSwitch(std::uint8_t value);
  void takeLevel(std::uint8_t value);

  bool axialOn_, aimOn_ = false;
  double axialLevel_ = 0, aimLevel_ = 1;
  std::array<double, 4> quadrantLevels_{1, 1, 1, 1};
};

}  // namespace qvx::simulator
