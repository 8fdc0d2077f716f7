// What is built into the camera of a product id: one table for everything that differs.
#pragma once

#include <cstdint>

#include "simulator/model/calibration.h"

namespace qvx::simulator {

// The feature register. Together the variant bits say which lights a camera has.
namespace feature {
enum : std::uint8_t {
  lens = 0x80,
  magnification = 0x40,
  aimingLight = 0x10,
  secondRing = 0x08,
  variant2 = 0x06,  // both variant bits
  variant3 = 0x02,
  lightingController = 0x01,
};
}  // namespace feature

enum class Lens : std::uint8_t {
  none,
  zeroAt40,   // position register, zero position in controller register 0x40
  zeroAt50,   // position register, zero position in controller register 0x50
  voiceCoil,  // direction switch and 10-bit value, zero position in controller register 0x50
};

struct Product {
  std::uint16_t first, last;      // product ids
  std::uint8_t features;          // 0xFF = a controller without the register
  CalibrationForm magnification;  // how the zoom encoder's calibration is stored
  Lens lens;
  std::uint8_t lightingKind;   // 4 = ring with dimmable quadrants
  std::uint8_t lightingBoard;  // 0xFF = none
  std::uint8_t opticsKind;
};

const Product& productFor(std::uint16_t productId);

// The calibration that the cameras with this form are given at the factory.
const Calibration& calibrationFor(CalibrationForm form);

}  // namespace qvx::simulator
