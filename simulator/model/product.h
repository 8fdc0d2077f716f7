// What is built into the camera of a product id: one table for everything that differs.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simulator/model/calibration.h"

namespace qvx::simulator {

// The value of a controller's register that was never programmed.
constexpr std::uint8_t erased = 0xFF;

// The feature register.
namespace feature {
enum : std::uint8_t {
  lens = 0x80,
  magnification = 0x40,
  aimingLight = 0x10,
  secondRing = 0x08,
  variant2 = 0x06,  // which lights: both variant bits, or
  variant3 = 0x02,  // the lower one alone
  lightingController = 0x01,
};
}  // namespace feature

enum class Lens : std::uint8_t {
  none,
  zeroAt40,      // position register; zero position in controller register 0x40
  zeroAt40Wide,  // the same with a wider range
  zeroAt50,      // position register; zero position in controller register 0x50
  voiceCoil,     // direction switch and 10-bit value; zero position in controller register 0x50
};

// How the lights hang on the controller, as its registers say it.
struct Lights {
  std::uint8_t kind;   // 4 = ring with dimmable quadrants
  std::uint8_t board;  // 5 = segments that a command switches on
};

struct Product {
  std::uint16_t first, last;  // product ids
  std::uint8_t features;      // erased: a controller from before there were features
  CalibrationForm magnification;
  Lens lens;
  Lights lights;
  std::uint8_t opticsKind = erased;  // 0, 5, 6 or 8

  bool hasLightingRegisters() const { return lights.kind != erased; }
  bool hasQuadrants() const { return lights.kind == 4; }
  bool hasVoiceCoil() const { return lens == Lens::voiceCoil; }
};

const Product& productFor(std::uint16_t productId);

// The row of a table, by product ids or the like, that holds one; null for none.
template <class Row, std::size_t count>
constexpr const Row* rowFor(unsigned number, const Row (&table)[count]) {
  for (const Row& row : table) {
    if (number >= row.first && number <= row.last) return &row;
  }
  return nullptr;
}

}  // namespace qvx::simulator
