#include "simulator/model/controller.h"

#include "simulator/model/product.h"

namespace qvx::simulator {

namespace {

namespace reg = controller_register;

bool always(const Product& /*product*/) {
  return true;
}

bool lightsOnController(const Product& product) {
  return product.lights.kind != erased;
}

bool dimmableQuadrants(const Product& product) {
  constexpr std::uint8_t quadrantRing = 4;
  return product.lights.kind == quadrantRing;
}

bool voiceCoil(const Product& product) {
  return product.lens == Lens::voiceCoil;
}

// Which registers there are. Those for a part that a camera lacks are there and erased, except what
// drives the part.
constexpr struct {
  std::uint8_t first, last;
  RegisterAccess access;
  bool (*exists)(const Product&);
} blocks[] = {
    {reg::modelByte, reg::encoderFraction, RegisterAccess::read, always},
    {reg::lightLevel, reg::lightSwitch, RegisterAccess::readWrite, lightsOnController},
    {reg::lensDirection, reg::lensDirection, RegisterAccess::readWrite, voiceCoil},
    {reg::quadrant1Level, reg::quadrant4Level, RegisterAccess::readWrite, dimmableQuadrants},
    {reg::threePoints, reg::threePointsEnd, RegisterAccess::read, always},
    {reg::lensZeroAt50, reg::lensZeroAt50, RegisterAccess::read, always},
    {reg::fineOffsetBackward, reg::fineOffsetForward, RegisterAccess::read, always},
    {reg::fourPointsY, reg::fourPointsEnd, RegisterAccess::read, always},
    {reg::features, reg::reserved81, RegisterAccess::read, always},
    {reg::lightingKind, reg::lightingBoard, RegisterAccess::read, always},
    {reg::opticsKind, reg::calibrationDegree, RegisterAccess::read, always},
    {reg::lensDriverKind, reg::lensDriverKind, RegisterAccess::read, always},
};

// The lens as the controller describes it. The voice coil rests at the middle of a byte.
constexpr struct {
  Lens lens;
  std::uint8_t zeroRegister, zero, driverKind, wideRange, fineOffsetForward;
} lenses[] = {
    {Lens::zeroAt40, reg::lensZeroAt40, 110, 1, 0, erased},
    {Lens::zeroAt40Wide, reg::lensZeroAt40, 110, 1, 1, erased},
    {Lens::zeroAt50, reg::lensZeroAt50, 118, 1, 0, erased},
    {Lens::voiceCoil, reg::lensZeroAt50, 128, 2, 0, 12},
};

void storeLens(Lens fitted, Registers& values) {
  for (const auto& lens : lenses) {
    if (lens.lens != fitted) continue;
    values[lens.zeroRegister] = lens.zero;
    values[reg::lensDriverKind] = lens.driverKind;
    values[reg::wideLensRange] = lens.wideRange;
    values[reg::fineOffsetForward] = lens.fineOffsetForward;
  }
}

void storeWorkingRegisters(Registers& values) {
  constexpr std::uint8_t allLightsOff = 0x10, forward = 1, brightest = 31;
  values[reg::encoderPosition] = 0;
  values[reg::encoderFraction] = 0;
  values[reg::lightLevel] = 0;
  values[reg::lightSwitch] = allLightsOff;
  values[reg::lensDirection] = forward;
  for (std::size_t quadrant = reg::quadrant1Level; quadrant <= reg::quadrant4Level; ++quadrant) {
    values[quadrant] = brightest;
  }
}

void grantAccess(const Product& product, std::array<RegisterAccess, 256>& access) {
  for (const auto& block : blocks) {
    if (!block.exists(product)) continue;
    for (std::size_t i = block.first; i <= block.last; ++i) access[i] = block.access;
  }
}

bool isDirection(std::uint8_t value) {
  return value == 1 || value == 2;
}

}  // namespace

ControllerContents controllerFor(std::uint16_t productId) {
  const Product& product = productFor(productId);
  ControllerContents contents{};
  contents.values.fill(erased);
  contents.values[reg::modelByte] = static_cast<std::uint8_t>(productId);
  contents.values[reg::features] = product.features;
  contents.values[reg::lightingKind] = product.lights.kind;
  contents.values[reg::lightingBoard] = product.lights.board;
  contents.values[reg::opticsKind] = product.opticsKind;
  storeWorkingRegisters(contents.values);
  storeLens(product.lens, contents.values);
  store(calibrationFor(product.magnification), contents.values);
  grantAccess(product, contents.access);
  return contents;
}

Controller::Controller(std::uint16_t productId, Violations& violations)
    : contents_(controllerFor(productId)), lights_(productId), violations_(violations) {}

bool Controller::write(std::span<const std::uint8_t> subAddress,
                       std::span<const std::uint8_t> data) {
  if (!isWellFormed(subAddress, data.size())) return false;
  if (data.size() != 1) return refuse("write of several bytes from register ", subAddress[0]);
  const std::uint8_t target = subAddress[0];
  switch (contents_.access[target]) {
    case RegisterAccess::none:
      return refuse("write of unknown register ", target);
    case RegisterAccess::read:
      return refuse("write of read-only register ", target);
    case RegisterAccess::readWrite:
      break;
  }
  if (target == reg::lensDirection && !isDirection(data[0])) {
    return refuse("unknown lens direction ", data[0]);
  }
  contents_.values[target] = data[0];
  lights_.take(target, data[0]);
  return true;
}

bool Controller::read(std::span<const std::uint8_t> subAddress, std::span<std::uint8_t> data) {
  if (!isWellFormed(subAddress, data.size())) return false;
  std::uint8_t source = subAddress[0];
  for (std::uint8_t& byte : data) {
    if (contents_.access[source] == RegisterAccess::none) {
      return refuse("read of unknown register ", source);
    }
    byte = take(source++);
  }
  return true;
}

bool Controller::isWellFormed(std::span<const std::uint8_t> subAddress, std::size_t dataBytes) {
  if (subAddress.size() != 1) {
    return refuse("bytes of register address: ", static_cast<std::uint8_t>(subAddress.size()));
  }
  return dataBytes != 0 || refuse("no data for register ", subAddress[0]);
}

std::uint8_t Controller::take(std::uint8_t source) {
  if (source == reg::encoderPosition) heldFraction_ = at(reg::encoderFraction);
  if (source != reg::encoderFraction || !heldFraction_) return at(source);
  const std::uint8_t fraction = *heldFraction_;
  heldFraction_.reset();
  return fraction;
}

bool Controller::refuse(std::string_view what, std::uint8_t number) {
  violations_.add({"controller: ", what, hex(number, 2)});
  return false;
}

}  // namespace qvx::simulator
