#include "simulator/model/controller.h"

namespace qvx::simulator {

namespace {

namespace reg = controller_register;

// The registers that exist. Registers describing a part that the camera lacks exist but are erased;
// registers driving such a part do not exist. Only the driving registers are writable.
constexpr struct Block {
  std::uint8_t first, last;
  const char* meaning;
  bool (Product::*drivesPart)() const = nullptr;
} blocks[] = {
    {reg::modelByte, reg::modelByte, "model byte"},
    {reg::encoderPosition, reg::encoderPosition, "zoom encoder: position"},
    {reg::encoderFraction, reg::encoderFraction, "zoom encoder: quarters of the position"},
    {reg::lightLevel, reg::lightLevel, "light level", &Product::hasLightingRegisters},
    {reg::lightSwitch, reg::lightSwitch, "light switch", &Product::hasLightingRegisters},
    {reg::lensDirection, reg::lensDirection, "lens direction", &Product::hasVoiceCoil},
    {reg::quadrant1Level, reg::quadrant4Level, "level of one light quadrant",
     &Product::hasQuadrants},
    {reg::threePoints, reg::threePointsEnd, "calibration by three points, or the lens's zero"},
    {reg::lensZeroAt50, reg::lensZeroAt50, "lens: zero position"},
    {reg::fineOffsetBackward, reg::fineOffsetForward, "lens: fine offset"},
    {reg::fourPointsY, reg::fourPointsX - 1, "calibration by four points: magnifications"},
    {reg::fourPointsX, reg::fourPointsEnd, "calibration by four points: positions"},
    {reg::features, reg::features, "feature register"},
    {reg::reserved81, reg::reserved81, "reserved"},
    {reg::lightingKind, reg::lightingKind, "lighting kind"},
    {reg::lightingBoard, reg::lightingBoard, "lighting board"},
    {reg::opticsKind, reg::opticsKind, "optics kind"},
    {reg::reservedC1, reg::reservedC1, "reserved"},
    {reg::wideLensRange, reg::wideLensRange, "lens: wide range"},
    {reg::calibrationKind, reg::calibrationKind, "calibration kind"},
    {reg::reservedC4, reg::reservedC4, "reserved"},
    {reg::calibrationDegree, reg::calibrationDegree, "calibration degree"},
    {reg::lensDriverKind, reg::lensDriverKind, "lens driver"},
};

const Block* blockFor(std::uint8_t reg, const Product& product) {
  const Block* const block = rowFor(reg, blocks);
  const bool lacksPart = block != nullptr && block->drivesPart && !(product.*block->drivesPart)();
  return lacksPart ? nullptr : block;
}

constexpr struct {
  std::uint8_t reg, value;
  const char* meaning;
} namedValues[] = {
    {reg::lensDirection, 1, "lens direction: forward"},
    {reg::lensDirection, 2, "lens direction: backward"},
    {reg::lightingKind, 4, "lighting kind: ring with dimmable quadrants"},
    {reg::calibrationKind, 1, "calibration: three points in hundredths"},
    {reg::calibrationKind, 2, "calibration: stored coefficients, kind 2"},
    {reg::calibrationKind, 3, "calibration: stored coefficients, kind 3"},
    {reg::calibrationKind, 4, "calibration: stored coefficients, kind 4"},
    {reg::calibrationDegree, 1, "calibration: line through two points"},
    {reg::calibrationDegree, 2, "calibration: parabola through three points"},
    {reg::calibrationDegree, 3, "calibration: cubic through four points"},
    {reg::calibrationDegree, erased, "calibration: of the kind that register 0xC3 says"},
    {reg::lensDriverKind, 1, "lens driver: position register"},
    {reg::lensDriverKind, 2, "lens driver: voice coil"},
};

// The lens as the controller describes it. A voice coil rests at the middle of a byte's range.
constexpr struct {
  Lens lens;
  std::uint8_t zeroRegister, zero, driverKind, wideRange, fineOffsetForward;
} lenses[] = {
    {Lens::zeroAt40, reg::lensZeroAt40, 110, 1, 0, erased},
    {Lens::zeroAt40Wide, reg::lensZeroAt40, 110, 1, 1, erased},
    {Lens::zeroAt50, reg::lensZeroAt50, 118, 1, 0, erased},
    {Lens::voiceCoil, reg::lensZeroAt50, 128, 2, 0, 12},
};

}  // namespace

std::string meaningOf(std::uint8_t reg, std::uint8_t value) {
  for (const auto& row : namedValues) {
    if (row.reg == reg && row.value == value) return row.meaning;
  }
  const Block* const block = rowFor(reg, blocks);
  return block == nullptr ? "" : block->meaning;
}

Controller::Controller(std::uint16_t productId, Violations& violations)
    : product_(productFor(productId)), lights_(productId), violations_(violations) {
  program(productId);
}

void Controller::program(std::uint16_t productId) {
  constexpr std::uint8_t allLightsOff = 0x10, forward = 1, brightest = 31;
  values_.fill(erased);
  values_[reg::modelByte] = static_cast<std::uint8_t>(productId);
  values_[reg::encoderPosition] = 0;
  values_[reg::encoderFraction] = 0;
  values_[reg::lightLevel] = 0;
  values_[reg::lightSwitch] = allLightsOff;
  values_[reg::lensDirection] = forward;
  std::fill(&values_[reg::quadrant1Level], &values_[reg::quadrant4Level] + 1, brightest);
  values_[reg::features] = product_.features;
  values_[reg::lightingKind] = product_.lights.kind;
  values_[reg::lightingBoard] = product_.lights.board;
  values_[reg::opticsKind] = product_.opticsKind;
  for (const auto& lens : lenses) {
    if (lens.lens != product_.lens) continue;
    values_[lens.zeroRegister] = lensZero_ = lens.zero;
    values_[reg::lensDriverKind] = lens.driverKind;
    values_[reg::wideLensRange] = lens.wideRange;
    values_[reg::fineOffsetForward] = lens.fineOffsetForward;
  }
  store(calibrationFor(product_.magnification), values_);
}

bool Controller::write(Bytes subAddress, Bytes data) {
  if (!isWellFormed(subAddress, data.size())) return false;
  const std::uint8_t target = subAddress[0];
  if (data.size() != 1) return refuse("write of several bytes from register ", target);
  const Block* const block = blockFor(target, product_);
  if (block == nullptr) return refuse("write of unknown register ", target);
  if (block->drivesPart == nullptr) return refuse("write of read-only register ", target);
  if (target == reg::lensDirection && data[0] != 1 && data[0] != 2) {
    return refuse("unknown lens direction ", data[0]);
  }
  values_[target] = data[0];
  lights_.take(target, data[0]);
  return true;
}

bool Controller::read(Bytes subAddress, Room data) {
  if (!isWellFormed(subAddress, data.size())) return false;
  std::uint8_t source = subAddress[0];
  for (std::uint8_t& byte : data) {
    if (!blockFor(source, product_)) return refuse("read of unknown register ", source);
    byte = take(source++);
  }
  return true;
}

bool Controller::isWellFormed(Bytes subAddress, std::size_t dataBytes) {
  if (subAddress.size() != 1) return refuse("bytes of register address: ", subAddress.size());
  return dataBytes != 0 || refuse("no data for register ", subAddress[0]);
}

std::uint8_t Controller::take(std::uint8_t source) {
  if (source == reg::encoderPosition) heldFraction_ = at(reg::encoderFraction);
  if (source != reg::encoderFraction || !heldFraction_) return at(source);
  const std::uint8_t fraction = *heldFraction_;
  heldFraction_.reset();
  return fraction;
}

bool Controller::refuse(const char* what, std::size_t number) {
  return violate(violations_, std::string("controller: ") + what + hex(number, 2));
}

}  // namespace qvx::simulator
