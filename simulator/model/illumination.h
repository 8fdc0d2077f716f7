// The lights as the registers of the lighting controller set them: a ring of four segments, an
// axial light and an aiming light.
#pragma once

#include <array>
#include <cstdint>

namespace qvx::simulator {

// Brightness has 31 steps, or 6.
constexpr std::uint8_t finestLight = 31, coarsestLight = 6;

enum LightSwitch : std::uint8_t {
  everySegment = 15,
  noSegment = 16,
  axialOn = 24,
  axialOff = 32,
  aimOn = 40,
  aimOff = 48,
};

// Values of the level register; those of the aiming light count backwards.
constexpr std::uint8_t brightestAim = 70;

class Illumination {
 public:
  explicit Illumination(std::uint16_t productId);

  // A write to the controller. Registers that drive no light and values without a meaning are
  // ignored.
  void take(std::uint8_t reg, std::uint8_t value);

  const bool hasController;
  const bool hasQuadrants;    // that can be dimmed individually
  const bool hasAxialSwitch;  // and separate levels for the axial light

  // The darkest value for the axial light in the level register; the ring's values start at 0.
  std::uint8_t fullRing() const { return hasQuadrants ? finestLight : coarsestLight; }
  std::uint8_t darkestAxial() const { return hasAxialSwitch ? 32 : 7; }

  double ringLevel = 0;       // of the lit segments, from 0 to 1
  std::uint8_t segments = 0;  // one bit for each lit segment

  // From 0 (dark) to 1. The first quadrant is at the upper right, the others follow clockwise.
  std::array<double, 4> quadrants() const;
  double axial() const { return axialOn_ ? axialLevel_ : 0; }
  double aim() const { return aimOn_ ? aimLevel_ : 0; }

  // The light of each on the object at full brightness.
  static constexpr double ringShare = 0.9, axialShare = 0.6, aimShare = 0.1;

  // The light that the light pins switch on at these levels.
  double ofPins(std::uint8_t levels) const;

 private:
  void takeSwitch(std::uint8_t value);
  void takeLevel(std::uint8_t value);

  bool axialOn_, aimOn_ = false;
  double axialLevel_ = 0, aimLevel_ = 1;
  std::array<double, 4> quadrantLevels_{1, 1, 1, 1};
};

}  // namespace qvx::simulator
