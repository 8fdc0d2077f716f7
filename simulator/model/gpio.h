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
  buttonTouched = 0x08,  // 7xxx: until it is released and acknowledged
  buttonLatched = 0x10,  // 7xxx: from the touch until the client clears it
  buttonPin = 0x80,      // all others: while it is touched
};

class Gpio {
 public:
  Gpio(std::uint16_t productId, Violations& violations);

  // Nothing for a port that does not exist.
  std::optional<std::uint8_t> read(std::uint8_t port);

  // Sets the pins in the mask; false when a pin is no output or a level lies outside the mask.
  bool write(std::uint8_t port, std::uint8_t mask, std::uint8_t levels);

  std::uint8_t lights() const { return lights_; }
  void setLights(std::uint8_t levels) { lights_ = levels & lightPins; }

  void touch(bool touched);
  bool buttonIsTouched() const { return touched_; }

 private:
  std::uint8_t outputsOf(std::uint8_t port) const;
  std::uint8_t buttonLevels() const;

  Violations& violations_;
  bool latching_;
  bool touched_ = false, latched_ = false;
  std::uint8_t lights_ = 0;
};

}  // namespace qvx::simulator
