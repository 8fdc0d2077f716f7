// Registers of the camera's microcontroller, over whichever transport the camera has, and the model
// families that one of them distinguishes.
#pragma once

#include <cstdint>

namespace qvx {

// In the order of their addresses.
namespace controller {
enum Register : std::uint8_t {
  noZeroPosition = 0x00,  // read in place of a zero position on models without a lens
  encoderPosition = 0x01,
  encoderFraction = 0x02,
  lightLevel = 0x03,  // of whichever light the switch register was last used for
  lightSwitch = 0x04,
  lensDirection = 0x08,
  quadrant1Level = 0x12,  // those of quadrants 2 to 4 follow
  lensZero40 = 0x40,      // a model has its lens here,
  threePoints = 0x40,     // or a calibration, whose layout calibrationKind gives
  lensZero50 = 0x50,
  fineOffsetBackward = 0x5E,
  fineOffsetForward = 0x5F,
  fourPointsY = 0x60,  // four two-byte values, low byte first
  fourPointsX = 0x68,
  features = 0x80,
  lightingKind = 0x83,
  lightingBoard = 0x84,
  opticsKind = 0xC0,
  wideLens = 0xC2,  // 1: yes
  calibrationKind = 0xC3,
  calibrationDegree = 0xC5,
  lensDriver = 0xCA,
};

constexpr std::uint32_t notPresent = 255;  // what a register of a calibration holds without one

// In `lightingKind`: a ring whose quadrants are dimmed one by one.
constexpr std::uint32_t dimmableQuadrants = 4;
}  // namespace controller

// The register's byte. A failed read gives 0, or 255 on USB 3.
std::uint32_t ReadFromPIC(int deviceNumber, std::uint32_t reg);

// The same from the Wi-Fi camera, whichever device is current.
std::uint32_t ReadPIC(std::uint32_t reg);

// Writes any controller register, not only those of the segmented light it is named after. Returns
// 0 for Wi-Fi; the error of the last failed open for USB 3; else 1, or 0 when the bridge refused.
// Nothing is sent to a model without such a controller, and the result is 1.
int WriteToSEG(int deviceNumber, std::uint32_t reg, std::uint32_t value);

// The families below read the camera at every call, whatever the product id, and leave what they
// read where their callers look for it. The camera sees these reads: neither their number nor
// their order may change.

// These read `ul80`. isVk4xx7Series, with a small k, is another: the same range, without the read.
int isVR4xxxSeries(int pid);
int isVK4xx7Series(int pid);

// These read `ul80` and then `ul84`, and distinguish hardware variants of one product id by `ul80`.
int isVR4xxx_2Series(int pid);
int isVR4xxx_3Series(int pid);
int isVR3xxx_2Series(int pid);
int isVR3xxx_3Series(int pid);
int isVk4xx7_2Series(int pid);
int isVk4xx7_3Series(int pid);

}  // namespace qvx
