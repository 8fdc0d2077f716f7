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
  if (!subAddress.empty()) {
    target += ' ' + hex(numberIn(subAddress), 2 * static_cast<int>(subAddress.size()));
  }
  if (!acknowledged) return (isWrite ? "write " : "read  ") + target + ": no answer";
  const bool isRegister = isController && subAddress.size() == 1 && data.size() == 1;
  const std::string meaning = isRegister ? "  " + meaningOf(subAddress[0], data[0]) : "";
  return inWords(isWrite, target, data) + meaning;
}

Camera::Camera(std::uint16_t productId)
    : controller(productId, violations),
      gpio(productId, violations),
      lens(productId, controller, violations),
      sensor(productId, violations),
      video(productId),
      productId_(productId),
      calibration_(calibrationFor(productFor(productId).magnification)) {
  bus_ = {{controllerAddress, 1, &controller},
          {lensControllerAddress, 0, lens.driverAt(lensControllerAddress)},
          {voiceCoilAddress, 1, lens.driverAt(voiceCoilAddress)}};
  if (const SensorKind* const kind = sensorFor(productId)) {
    bus_.push_back({kind->slave, kind->addressBytes, &sensor});
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
  const bool done = tap.losesWrites || place.device->write(subAddress, data);
  if (tap.tell) tap.tell(inWords(true, place.address, subAddress, data, done));
  return done;
}

bool Camera::read(const BusPlace& place, Bytes subAddress, Room data) const {
  const bool done = place.device->read(subAddress, data);
  if (tap.tell) tap.tell(inWords(false, place.address, subAddress, data, done));
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
  controller.set(controller_register::encoderPosition,
                 static_cast<std::uint8_t>(quarters_ / quartersPerUnit));
  controller.set(controller_register::encoderFraction,
                 static_cast<std::uint8_t>(quarters_ % quartersPerUnit * fractionStep));
}

}  // namespace qvx::simulator
