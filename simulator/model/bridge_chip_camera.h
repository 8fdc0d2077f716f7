// A whole camera behind a bridge chip: what every front of such a camera drives.
#pragma once

#include <cstdint>

#include "simulator/model/bridge_chip.h"
#include "simulator/model/camera.h"
#include "simulator/model/eeprom.h"

namespace qvx::simulator {

class BridgeCamera {
 public:
  BridgeCamera(std::uint16_t productId, const BridgeSetup& setup);

  Camera camera;
  Eeprom eeprom;
  BridgeChip chip;
};

}  // namespace qvx::simulator
