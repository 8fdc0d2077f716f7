#include "simulator/model/lens.h"

namespace qvx::simulator {

namespace {

std::uint8_t zeroOf(Lens lens, const Controller& controller) {
  const bool at40 = lens == Lens::zeroAt40 || lens == Lens::zeroAt40Wide;
  return controller.at(at40 ? controller_register::lensZeroAt40
                            : controller_register::lensZeroAt50);
}

// The lens controller knows its one position under these registers, and without any.
bool isPosition(Bytes reg) {
  return reg.empty() || (reg.size() == 1 && (reg[0] == 0x00 || reg[0] == 0x40 || reg[0] == 0x50));
}

}  // namespace

FocusLens::FocusLens(std::uint16_t productId, const Controller& controller, Violations& violations)
    : controller_(controller),
      violations_(violations),
      kind_(productFor(productId).lens),
      zero_(zeroOf(kind_, controller)),
      position_(zero_),
      lensController_(*this, &FocusLens::takePosition),
      voiceCoil_(*this, &FocusLens::takeCoilWord) {}

I2cDevice* FocusLens::driverAt(std::uint8_t address) {
  if (address == lensControllerAddress && isFitted()) return &lensController_;
  if (address == voiceCoilAddress && kind_ == Lens::voiceCoil) return &voiceCoil_;
  return nullptr;
}

bool FocusLens::takePosition(Bytes reg, Bytes data) {
  if (data.size() != 1) return refuse("bytes of position: ", data.size());
  if (!isPosition(reg)) return refuse("unknown register ", reg[0]);
  position_ = data[0];
  offset_ = static_cast<double>(position_) - static_cast<double>(zero_);
  return true;
}

// The value's ten bits stand above a nibble that is always 1; the two bits above them are ignored.
bool FocusLens::takeCoilWord(Bytes first, Bytes second) {
  constexpr unsigned mark = 1, valueBits = 0x3FF;
  constexpr std::uint8_t backward = 2;
  if (first.size() != 1 || second.size() != 1) {
    return refuse("bytes of coil word: ", first.size() + second.size());
  }
  if ((second[0] & 0x0F) != mark) return refuse("coil word without its mark: ", second[0]);
  const unsigned word = static_cast<unsigned>(first[0]) << 8 | second[0];
  const int value = static_cast<int>(word >> 4 & valueBits);
  const bool isBackward = controller_.at(controller_register::lensDirection) == backward;
  coilSteps_ = isBackward ? -value : value;
  offset_ = coilSteps_ / coilStepsPerUnit;
  return true;
}

bool FocusLens::refuse(const char* what, std::size_t number) {
  violations_.push_back(std::string("lens: ") + what + hex(static_cast<std::uint32_t>(number), 2));
  return false;
}

bool FocusLens::Driver::read(Bytes /*subAddress*/, Room data) {
  return lens_.refuse("read of bytes: ", data.size());
}

}  // namespace qvx::simulator
