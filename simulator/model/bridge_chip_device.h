// A whole camera behind a bridge chip: what every front of such a camera drives.
#pragma once

#include <cstdint>

#include "simulator/model/bridge_chip.h"
#include "simulator/model/camera.h"
#include "simulator/model/eeprom.h"

namespace qvx::simulator {

class BridgeDevice {
 public:
  BridgeDevice(std::uint16_t productId, const BridgeSetup& setup);

  // Presses the button by itself, once per period; 0 for never.
  void setButtonPeriod(std::uint32_t period_ms);

  // Moves the clock of camera and button. Times count from power-up and never go back.
  void advanceTo(std::uint64_t now_ms);

  void pressButton();
  void releaseButton();

  Camera camera;
  Eeprom eeprom;
  BridgeChip chip;

 private:
  std::uint32_t buttonPeriod_ms_ = 0;
  std::uint64_t presses_ = 0;
  std::uint64_t now_ms_ = 0;
};

}  // namespace qvx::simulator
