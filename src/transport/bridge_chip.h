// The bridge chip itself: those of its registers that have a use in these cameras, and the commands
// of its firmware.
#pragma once

#include <array>
#include <cstdint>

namespace qvx {

struct BridgeRegister {
  std::uint16_t address;
  std::uint8_t bytes;
};

namespace bridge {
constexpr BridgeRegister lights = {0x0080, 1};
constexpr BridgeRegister button = {0x0085, 1};
constexpr BridgeRegister button4xx7 = {0x0608, 1};
constexpr BridgeRegister exposureMode4xx7 = {0x1700, 2};
}  // namespace bridge

// 0 when the read fails.
std::uint32_t readBridge(int deviceNumber, const BridgeRegister& reg);
void writeBridge(int deviceNumber, const BridgeRegister& reg, std::uint32_t value);

// The two functions that make up segment mode of the lights.
enum class SegmentFunction : std::uint8_t { ring = 0xF2, power = 0xF3 };

// Switches one of them on.
void sendSegmentCommand(int deviceNumber, SegmentFunction function);

// Whether the camera says that both are on.
bool saysSegmentMode(int deviceNumber);

// Whether the touch button was pressed; acknowledges the press.
bool takeButtonPress(int deviceNumber);

// The brightness target of automatic exposure and its bounds, where the firmware keeps them.
enum class ExposureParameter : std::uint8_t { target = 0, lowerBound = 1, upperBound = 2 };
void writeParameter(int deviceNumber, ExposureParameter parameter, std::int32_t value);
std::uint8_t readParameter(int deviceNumber, ExposureParameter parameter);

}  // namespace qvx
