#include "simulator/model/lens.h"

#include "simulator/model/product.h"

namespace qvx::simulator {

namespace {

// The lens controller knows its one position under these registers, and without any.
constexpr std::uint8_t positionRegisters[] = {0x00, 0x40, 0x50};

std::uint8_t zeroOf(Lens lens, const Controller& controller) {
  const bool at40 = lens == Lens::zeroAt40 || lens == Lens::zeroAt40Wide;
  return controller.at(at40 ? controller_register::lensZeroAt40
                            : controller_register::lensZeroAt50);
}

bool isPositionRegister(std::uint8_t reg) {
  for (const std::uint8_t known : positionRegisters) {
    if (reg == known) return true;
  }
  return false;
}

}  // namespace

FocusLens::FocusLens(std::uint16_t productId, const Controller& controller, Violations& violations)
    : controller_(controller),
      violations_(violations),
      hasLens_(productFor(productId).lens != Lens::none),
      hasCoil_(productFor(productId).lens == Lens::voiceCoil),
      zero_(zeroOf(productFor(productId).lens, controller)),
      position_(zero_),
      lensController_(*this, &FocusLens::takePosition),
      voiceCoil_(*this, &FocusLens::takeCoilWord) {}

I2cDevice* FocusLens::driverAt(std::uint8_t address) {
  if (address == lensControllerAddress && hasLens_) return &lensController_;
  if (address == voiceCoilAddress && hasCoil_) return &voiceCoil_;
  return nullptr;
}

bool FocusLens::takePosition(std::span<const std::uint8_t> reg,
                             std::span<const std::uint8_t> data) {
  if (data.size() != 1)
    return refuse("bytes of position: ", static_cast<std::uint32_t>(data.size()));
  if (reg.size() > 1 || (reg.size() == 1 && !isPositionRegister(reg[0]))) {
    return refuse("unknown register ", reg[0]);
  }
  position_ = data[0];
  offset_ = static_cast<double>(position_) - static_cast<double>(zero_);
  return true;
}

// The value's ten bits stand above a nibble that is always 1; the two bits above them are ignored.
bool FocusLens::takeCoilWord(std::span<const std::uint8_t> first,
                             std::span<const std::uint8_t> second) {
  constexpr unsigned mark = 1, valueBits = 0x3FF;
  constexpr std::uint8_t backward = 2;
  if (first.size() != 1 || second.size() != 1) {
    return refuse("bytes of coil word: ", static_cast<std::uint32_t>(first.size() + second.size()));
  }
  if ((second[0] & 0x0F) != mark) return refuse("coil word without its mark: ", second[0]);
  const unsigned word = static_cast<unsigned>(first[0]) << 8 | second[0];
  const int value = static_cast<int>(word >> 4 & valueBits);
  const bool isBackward = controller_.at(controller_register::lensDirection) == backward;
  coilSteps_ = isBackward ? -value : value;
  offset_ = coilSteps_ / coilStepsPerUnit;
  return true;
}

bool FocusLens::refuse(std::string_view what, std::uint32_t number) {
  violations_.add({"lens: ", what, hex(number, 2)});
  return false;
}

bool FocusLens::Driver::read(std::span<const std::uint8_t> /*subAddress*/,
                             std::span<std::uint8_t> data) {
  return lens_.refuse("read of bytes: ", static_cast<std::uint32_t>(data.size()));
}

}  // namespace qvx::simulator
