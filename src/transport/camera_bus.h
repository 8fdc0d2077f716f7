// The I2C bus inside a camera, and the chips on it. Values are not checked: a bridge sends
// their low byte, the Wi-Fi channel the whole number.
#pragma once

#include <cstdint>
#include <string>

namespace qvx {

struct BusChip {
  std::uint8_t address;        // in its 8-bit write form
  std::uint8_t registerBytes;  // of a register's address; 0 for a chip of a single register
};

namespace chip {
constexpr BusChip voiceCoil = {0x18, 1};
constexpr BusChip sensor34 = {0x34, 2};
constexpr BusChip sensor42 = {0x42, 1};
constexpr BusChip lensController = {0x46, 0};
constexpr BusChip sensor48 = {0x48, 2};
constexpr BusChip controller = {0x62, 1};
constexpr BusChip sensor78 = {0x78, 2};
}  // namespace chip

// Behind a bridge. The bus must be selected before it is used, and stays selected until the other
// one is. Accesses to a device that is not there fail.
enum class BusSpeed : std::uint32_t { standard = 0, fast = 1 };
void selectCameraBus(int deviceNumber, BusSpeed speed = BusSpeed::standard);

// The register's byte, 0 when the read fails.
std::uint8_t readBus(int deviceNumber, const BusChip& chip, std::uint32_t reg);

// Returns the call layer's status: negative when the write failed.
std::int32_t writeBus(int deviceNumber, const BusChip& chip, std::uint32_t reg,
                      std::uint32_t value);

// The Wi-Fi camera's bus: the command that reads a register's byte, and a write.
std::string wifiReadUrl(const std::string& base, const BusChip& chip, std::uint32_t reg);
std::string wifiWriteUrl(const std::string& base, const BusChip& chip, std::uint32_t reg,
                         std::uint32_t value);
void writeWifiBus(const BusChip& chip, std::uint32_t reg, std::uint32_t value);

}  // namespace qvx
