// Registers of the image sensors, by the sensor's I2C address.
#pragma once

#include <cstdint>

namespace qvx {

// 16-bit addresses.
namespace sensor78 {
enum : std::uint32_t {
  exposureHigh = 0x3500,  // bits 19 to 16, 15 to 8 and 7 to 0 of the exposure in 1/16 lines
  exposureMiddle = 0x3501,
  exposureLow = 0x3502,
  manualExposure = 0x3503,  // bits 0 to 2: what is set by hand
  longestExposureHigh = 0x350C,
  longestExposureLow = 0x350D,
  // The brightness at which automatic exposure rests, and the wider one at which it starts to move.
  restHigh = 0x3A0F,
  restLow = 0x3A10,
  targetHigh = 0x3A1B,
  targetLow = 0x3A1E,
  mainsFrequency = 0x3C00,
  mainsDetection = 0x3C01,
};
}  // namespace sensor78

// 16-bit addresses.
namespace sensor48 {
enum : std::uint32_t {
  exposureHigh = 0x0015,
  exposureLow = 0x0016,
  mainsFrequency = 0x0120,     // bit 0: 60 Hz
  automaticExposure = 0x0380,  // bit 0: on
  target = 0x038E,
  applyTarget = 0x085C,
};
}  // namespace sensor48

// 8-bit addresses.
namespace sensor42 {
enum : std::uint32_t {
  exposureHigh = 0x08,
  exposureMode = 0x0E,
  exposureLow = 0x10,
  automaticControls = 0x13,  // bit 0: exposure
  mainsFrequency = 0x22,
  mainsBands = 0x23,
  target = 0x25,
  extraExposureLow = 0x2D,
  extraExposureHigh = 0x2E,
};
}  // namespace sensor42

// 16-bit addresses, behind the bridge only.
namespace sensor34 {
enum : std::uint32_t {
  shutterHigh = 0x0202,
  shutterLow = 0x0203,
  frameLinesHigh = 0x0340,
  frameLinesLow = 0x0341,
};
}  // namespace sensor34

}  // namespace qvx
