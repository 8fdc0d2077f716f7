// The hardware behind each product id: one table for everything that differs between models.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simulator/model/calibration.h"

namespace qvx::simulator {

// The value of a controller register that was never programmed.
constexpr std::uint8_t erased = 0xFF;

// Bits of the feature register.
namespace feature {
enum : std::uint8_t {
  lens = 0x80,
  magnification = 0x40,
  aimingLight = 0x10,
  secondRing = 0x08,
  variant2 = 0x06,  // two bits select the lighting variant: both set, or
  variant3 = 0x02,  // only the lower one
  lightingController = 0x01,
};
}  // namespace feature

enum class Lens : std::uint8_t {
  none,
  zeroAt40,      // position register; its zero position is in controller register 0x40
  zeroAt40Wide,  // the same with a wider range
  zeroAt50,      // position register; its zero position is in controller register 0x50
  voiceCoil,  // direction switch and 10-bit value; its zero position is in controller register 0x50
};

// How the lights are wired to the controller, as its registers report it.
struct Lights {
  std::uint8_t kind;   // 4: ring with dimmable quadrants
  std::uint8_t board;  // 5: segments switched by a custom command
};

struct Product {
  std::uint16_t first, last;  // product ids
  std::uint8_t features;      // erased: a controller older than the feature register
  CalibrationForm magnification;
  Lens lens;
  Lights lights;
  std::uint8_t opticsKind = erased;  // 0, 5, 6 or 8

  bool hasLightingRegisters() const { return lights.kind != erased; }
  bool hasQuadrants() const { return lights.kind == 4; }
  bool hasVoiceCoil() const { return lens == Lens::voiceCoil; }
};

const Product& productFor(std::uint16_t productId);

// The row of a table of ranges (of product ids, for example) that contains the value; null for
// none.
template <class Row, std::size_t count>
constexpr const Row* rowFor(unsigned number, const Row (&table)[count]) {
  for (const Row& row : table) {
    if (number >= row.first && number <= row.last) return &row;
  }
  return nullptr;
}

}  // namespace qvx::simulator
