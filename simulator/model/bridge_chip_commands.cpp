#include "simulator/model/bridge_chip_commands.h"

namespace qvx::simulator {

BridgeCommandData BridgeCommands::read(const BridgeCommandData& request) {
  BridgeCommandData reply{};
  if (request[0] == parameters) {
    const std::uint8_t* const parameter = parameterOf(request);
    if (parameter != nullptr) reply[0] = *parameter;
    return reply;
  }
  reply[0] = request[0];
  const bool* const flag = flagOf(request[0]);
  if (flag != nullptr) reply[2] = *flag ? 1 : 0;
  return reply;
}

void BridgeCommands::write(const BridgeCommandData& request) {
  if (request[0] == parameters) {
    std::uint8_t* const parameter = parameterOf(request);
    if (parameter != nullptr) *parameter = request[4];
    return;
  }
  bool* const flag = flagOf(request[0]);
  if (flag == nullptr) return;
  if (flag == &buttonLatched_) {
    if (request[2] == 1) buttonLatched_ = false;
  } else if (request[1] == 1) {
    *flag = true;
  }
}

bool* BridgeCommands::flagOf(std::uint8_t function) {
  if (function == segmentRing) return &ringOn_;
  if (function == segmentPower) return &powerOn_;
  if (function == touchButton) return &buttonLatched_;
  violations_.add({"bridge: unknown custom command ", hex(function, 2)});
  return nullptr;
}

std::uint8_t* BridgeCommands::parameterOf(const BridgeCommandData& request) {
  const bool known = request[0] == 0 && request[1] == 0 && request[2] < parameters_.size();
  if (known && request[3] == 1) return &parameters_[request[2]];
  violations_.add({"bridge: unknown parameter ", hex(request[2], 2)});
  return nullptr;
}

}  // namespace qvx::simulator
