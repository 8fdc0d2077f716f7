#include "simulator/model/lens.h"

namespace qvx::simulator {

namespace {

// The lens controller takes its one position at these registers, and without a register.
bool isPosition(Bytes reg) {
  return reg.empty() || (reg.size() == 1 && (reg[0] == 0x00 || reg[0] == 0x40 || reg[0] == 0x50));
}

}  // namespace

FocusLens::FocusLens(std::uint16_t productId, const Controller& controller, Violations& violations)
    : kind(productFor(productId).lens),
      zero(controller.lensZero()),
      controller_(controller),
      violations_(violations),
      lensController_(*this, &FocusLens::takePosition),
      voiceCoil_(*this, &FocusLens::takeCoilWord) {}

I2cDevice* FocusLens::driverAt(std::uint8_t address) {
  if (address == lensControllerAddress && kind != Lens::none) return &lensController_;
  if (address == voiceCoilAddress && kind == Lens::voiceCoil) return &voiceCoil_;
  return nullptr;
}

bool FocusLens::takePosition(Bytes reg, Bytes data) {
  if (data.size() != 1)
    return violate(violations_, "lens: bytes of position: " + hex(data.size(), 2));
  if (!isPosition(reg)) return violate(violations_, "lens: unknown register " + hex(reg[0], 2));
  offset = data[0] - zero;
  return true;
}

// Ten bits of value above a nibble that is always 1; the two topmost bits are ignored.
bool FocusLens::takeCoilWord(Bytes first, Bytes second) {
  constexpr unsigned mark = 1, valueBits = 0x3FF;
  constexpr std::uint8_t backward = 2;
  const std::size_t size = first.size() + second.size();
  if (first.size() != 1 || second.size() != 1) {
    return violate(violations_, "lens: bytes of coil word: " + hex(size, 2));
  }
  if ((second[0] & 0x0F) != mark) {
    return violate(violations_, "lens: coil word without its mark: " + hex(second[0], 2));
  }
  const unsigned word = static_cast<unsigned>(first[0]) << 8 | second[0];
  const int value = static_cast<int>(word >> 4 & valueBits);
  const bool isBackward = controller_.at(controller_register::lensDirection) == backward;
  offset = (isBackward ? -value : value) / coilStepsPerUnit;
  return true;
}

bool FocusLens::Driver::read(Bytes /*subAddress*/, Room data) {
  return violate(lens_.violations_, "lens: read of bytes: " + hex(data.size(), 2));
}

}  // namespace qvx::simulator
