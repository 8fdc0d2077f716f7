// A whole camera behind a bridge chip: what every front of such a camera drives.
#pragma once

#include <cstdint>

#include "simulator/model/bridge_chip.h"
#include "simulator/model/camera.h"
#include "simulator/model/eeprom.h"

namespace qvx::simulator {

// What a HID interface offers: a bridge's, or one that only looks a little like it.
enum class HidReports : std::uint8_t {
  bridge,
  extra,         // one feature report more than a bridge has
  withoutBlock,  // none for data blocks
  none,          // no feature report at all
};

// What goes wrong with the transfers to a camera, counted from the moment it is set.
struct BridgeFault {
  enum Kind : std::uint8_t { none, refuse, stall };

  Kind kind = none;
  std::uint32_t first = 1;     // the first transfer that suffers; all later ones do, too
  std::uint32_t stall_ms = 0;  // how late a stalled transfer is done
};

class BridgeDevice {
 public:
  BridgeDevice(std::uint16_t productId, const BridgeSetup& setup);

  // Presses the button by itself, once per period; 0 for never.
  void setButtonPeriod(std::uint32_t period_ms);
  void setFault(const BridgeFault& fault);

  // Moves the clock of camera and button. Times count from power-up and never go back.
  void advanceTo(std::uint64_t now_ms);

  // The levels of the lights' pins, which are the chip's; the camera's own when it has no chip.
  std::uint8_t lightPins() const;
  // What its lights give, from 0 to 1.
  double brightness() const { return camera.controller().lights().brightness(lightPins()); }

  // To be asked before each transfer: what the front has to do to it.
  BridgeFault::Kind nextTransfer();
  std::uint32_t stall_ms() const { return fault_.stall_ms; }

  Camera camera;
  Eeprom eeprom;
  BridgeChip chip;

 private:
  BridgeFault fault_;
  std::uint32_t transfers_ = 0;  // since the fault was set
  std::uint32_t buttonPeriod_ms_ = 0;
  std::uint64_t presses_ = 0;
  std::uint64_t now_ms_ = 0;
};

}  // namespace qvx::simulator
