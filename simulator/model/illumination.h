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

// Where the lights stand in the level register; that of the aim counts backwards.
constexpr std::uint8_t plainAxial = 7, switchedAxial = 32, brightestAim = 70;

class Illumination {
 public:
  explicit Illumination(std::uint16_t productId);

  // A write to the controller. Registers that drive no light, and values without a meaning, change
  // nothing.
  void take(std::uint8_t reg, std::uint8_t value);

  bool hasQuadrants() const { return hasQuadrants_; }      // that can be dimmed one by one
  bool hasAxialSwitch() const { return hasAxialSwitch_; }  // and levels of its own for that light
  std::uint8_t fullRing() const { return hasQuadrants_ ? finestLight : coarsestLight; }

  double ringLevel() const { return ringLevel_; }      // of the segments that are lit, from 0 to 1
  std::uint8_t segments() const { return segments_; }  // a bit for each that is lit

  // From 0 (dark) to 1. The first quadrant is the upper right one, the others follow clockwise.
  std::array<double, 4> quadrants() const;
  double ring() const;
  double axial() const { return axialOn_ ? axialLevel_ : 0; }
  double aim() const { return aimOn_ ? aimLevel_ : 0; }

  // What each gives to the object when it is full.
  static constexpr double ringShare = 0.9, axialShare = 0.6, aimShare = 0.1;

  // What the light pins give when they stand at these levels.
  double ofPins(std::uint8_t levels) const;

  // What falls on the object, from 0 to about 1, when the light pins stand at these levels, too:
  // cameras without a lighting controller have only those.
  double brightness(std::uint8_t pinLevels) const;

 private:
  void takeSwitch(std::uint8_t value);
  void takeLevel(std::uint8_t value);

  bool hasController_, hasQuadrants_, hasAxialSwitch_;
  std::uint8_t segments_ = 0;
  bool axialOn_, aimOn_ = false;
  double ringLevel_ = 0, axialLevel_ = 0, aimLevel_ = 1;
  std::array<double, 4> quadrantLevels_{1, 1, 1, 1};
};

}  // namespace qvx::simulator
