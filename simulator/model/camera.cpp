#include "simulator/model/camera.h"

#include "simulator/model/product.h"

namespace qvx::simulator {

Camera::Camera(std::uint16_t productId)
    : productId_(productId),
      calibration_(calibrationFor(productFor(productId).magnification)),
      controller_(productId, violations_),
      gpio_(productId, violations_),
      lens_(productId, controller_, violations_),
      sensor_(productId, violations_),
      video_(productId) {
  bus_.emplace_back(controllerAddress, controller_, tap_);
  for (const std::uint8_t address : {lensControllerAddress, voiceCoilAddress}) {
    if (I2cDevice* const driver = lens_.driverAt(address))
      bus_.emplace_back(address, *driver, tap_);
  }
  if (const SensorKind* const kind = sensorFor(productId)) {
    bus_.emplace_back(kind->slave, sensor_, tap_);
  }
  turnRing();
}

I2cDevice* Camera::deviceAt(std::uint8_t address) {
  for (TappedDevice& device : bus_) {
    if (device.address() == address) return &device;
  }
  return nullptr;
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
