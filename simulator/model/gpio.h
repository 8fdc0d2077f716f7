// The camera's pins: the lights on port 0, the touch button on port 1.
#pragma once

#include <optional>

#include "simulator/model/i2c_device.h"

namespace qvx::simulator {

enum : std::uint8_t {
  lightPort = 0,
  buttonPort = 1,
};

enum : std::uint8_t {
  lightPins = 0x07,
  buttonTouched = 0x08,  // 7xxx: set until the button is released and acknowledged
  buttonLatched = 0x10,  // 7xxx: set by a touch until the client clears it
  buttonPin = 0x80,      // all others: set while touched
};

class Gpio {
 public:
  Gpio(std::uint16_t productId, Violations& violations)
      : violations_(violations), latching_(productId >= 0x960 && productId <= 0x99F) {}

  // Returns nothing for a port that does not exist.
  std::optional<std::uint8_t> read(std::uint8_t port) {
    if (port == lightPort) return lights_;
    if (port == buttonPort) return buttonLevels();
    violations_.push_back("gpio: read of unknown port " + hex(port, 1));
    return std::nullopt;
  }

  // Sets the pins in the mask; false if a pin is not an output or a level lies outside the mask.
  bool write(std::uint8_t port, std::uint8_t mask, std::uint8_t levels) {
    std::uint8_t outputs = 0;
    if (port == lightPort) outputs = lightPins;
    if (port == buttonPort && latching_) outputs = buttonLatched;
    if (mask == 0 || (mask & ~outputs) != 0) {
      return violate(violations_,
                     "gpio: no outputs on port " + hex(port, 1) + ": pins " + hex(mask, 2));
    }
    if ((levels & ~mask) != 0) {
      return violate(violations_,
                     "gpio: levels " + hex(levels, 2) + " outside the mask " + hex(mask, 2));
    }
    if (port == lightPort) lights_ = static_cast<std::uint8_t>((lights_ & ~mask) | levels);
    if (port == buttonPort) latched_ = latched_ && levels != 0;
    return true;
  }

  std::uint8_t lights() const { return lights_; }
  void setLights(std::uint8_t levels) { lights_ = levels & lightPins; }

  void touch(bool touched) {
    touched_ = touched;
    latched_ = latched_ || touched;
  }
  bool buttonIsTouched() const { return touched_; }

 private:
  std::uint8_t buttonLevels() const {
    if (!latching_) return touched_ ? buttonPin : 0;
    const int levels = (touched_ || latched_ ? buttonTouched : 0) | (latched_ ? buttonLatched : 0);
    return static_cast<std::uint8_t>(levels);
  }

  Violations& violations_;
  bool latching_;
  bool touched_ = false, latched_ = false;
  std::uint8_t lights_ = 0;
};

}  // namespace qvx::simulator
