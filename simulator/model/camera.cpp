#include "simulator/model/camera.h"

#include "simulator/model/product.h"

namespace qvx::simulator {

std::string inWords(bool isWrite, const std::string& target, Bytes data) {
  std::string line = (isWrite ? "write " : "read  ") + target + (isWrite ? " <-" : " ->");
  for (const std::uint8_t byte : data) line += ' ' + hex(byte, 2);
  return line;
}

std::string inWords(bool isWrite, std::uint8_t address, Bytes subAddress, Bytes data,
                    bool acknowledged) {
  const bool isController = address == controllerAddress;
  std::string target = isController ? "controller" : "I2C " + hex(address, 2);
  std::uint32_t reg = 0;
  for (const std::uint8_t byte : subAddress) reg = reg << 8 | byte;
  if (!subAddress.empty()) target += ' ' + hex(reg, 2 * static_cast<int>(subAddress.size()));
  if (!acknowledged) return (isWrite ? "write " : "read  ") + target + ": no answer";
  const bool isRegister = isController && subAddress.size() == 1 && data.size() == 1;
  const std::string meaning = isRegister ? "  " + meaningOf(subAddress[0], data[0]) : "";
  return inWords(isWrite, target, data) + meaning;
}

Camera::Camera(std::uint16_t productId)
    : productId_(productId),
      calibration_(calibrationFor(productFor(productId).magnification)),
      controller_(productId, violations_),
      gpio_(productId, violations_),
      lens_(productId, controller_, violations_),
      sensor_(productId, violations_),
      video_(productId) {
  bus_ = {{controllerAddress, 1, &controller_},
          {lensControllerAddress, 0, lens_.driverAt(lensControllerAddress)},
          {voiceCoilAddress, 1, lens_.driverAt(voiceCoilAddress)}};
  if (const SensorKind* const kind = sensorFor(productId)) {
    bus_.push_back({kind->slave, kind->addressBytes, &sensor_});
  }
  turnRing();
}

std::optional<BusPlace> Camera::placeAt(std::uint8_t address) const {
  for (const BusPlace& place : bus_) {
    if (place.address == address && place.device != nullptr) return place;
  }
  return std::nullopt;
}

bool Camera::write(const BusPlace& place, Bytes subAddress, Bytes data) const {
  const bool done = tap_.losesWrites || place.device->write(subAddress, data);
  if (tap_.tell) tap_.tell(inWords(true, place.address, subAddress, data, done));
  return done;
}

bool Camera::read(const BusPlace& place, Bytes subAddress, Room data) const {
  const bool done = place.device->read(subAddress, data);
  if (tap_.tell) tap_.tell(inWords(false, place.address, subAddress, data, done));
  return done;
}

void Camera::advanceTo(std::uint64_t now_ms) {
  now_ms_ = now_ms;
  turnRing();
}

void Camera::setZoom(const ZoomMotion& motion) {
  motion_ = motion;
  motionStart_ms_ = now_ms_;
  turnRing();
}

bool Camera::hasZoomRing() const {
  return calibration_.form != CalibrationForm::none;
}

double Camera::magnification() const {
  return hasZoomRing() ? magnificationAt(calibration_, quarters_) : 0;
}

void Camera::turnRing() {
  if (!hasZoomRing()) return;
  constexpr int fractionStep = 0x40;
  quarters_ = quartersFor(calibration_, magnificationAt(motion_, now_ms_ - motionStart_ms_));
  controller_.set(controller_register::encoderPosition,
                  static_cast<std::uint8_t>(quarters_ / quartersPerUnit));
  controller_.set(controller_register::encoderFraction,
                  static_cast<std::uint8_t>(quarters_ % quartersPerUnit * fractionStep));
}

}  // namespace qvx::simulator
