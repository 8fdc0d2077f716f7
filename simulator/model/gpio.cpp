#include "simulator/model/gpio.h"

namespace qvx::simulator {

Gpio::Gpio(std::uint16_t productId, Violations& violations)
    : violations_(violations), latching_(productId >= 0x960 && productId <= 0x99F) {}

std::optional<std::uint8_t> Gpio::read(std::uint8_t port) {
  if (port == lightPort) return lights_;
  if (port == buttonPort) return buttonLevels();
  violations_.push_back("gpio: read of unknown port " + hex(port, 1));
  return std::nullopt;
}

bool Gpio::write(std::uint8_t port, std::uint8_t mask, std::uint8_t levels) {
  if (mask == 0 || (mask & ~outputsOf(port)) != 0) {
    violations_.push_back("gpio: no outputs on port " + hex(port, 1) + ": pins " + hex(mask, 2));
    return false;
  }
  if ((levels & ~mask) != 0) {
    violations_.push_back("gpio: levels " + hex(levels, 2) + " outside the mask " + hex(mask, 2));
    return false;
  }
  if (port == lightPort) lights_ = static_cast<std::uint8_t>((lights_ & ~mask) | levels);
  if (port == buttonPort) latched_ = latched_ && levels != 0;
  return true;
}

void Gpio::touch(bool touched) {
  touched_ = touched;
  latched_ = latched_ || touched;
}

std::uint8_t Gpio::outputsOf(std::uint8_t port) const {
  if (port == lightPort) return lightPins;
  return port == buttonPort && latching_ ? buttonLatched : 0;
}

std::uint8_t Gpio::buttonLevels() const {
  if (!latching_) return touched_ ? buttonPin : 0;
  const int levels = (touched_ || latched_ ? buttonTouched : 0) | (latched_ ? buttonLatched : 0);
  return static_cast<std::uint8_t>(levels);
}

}  // namespace qvx::simulator
