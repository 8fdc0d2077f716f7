#include "transport/camera_bus.h"

#include <array>

#include "base/bytes.h"
#include "etlib2/etLib2.h"
#include "state/device_state.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

constexpr std::uint8_t cameraBus = 2;  // bus 1 is the bridge's own

std::array<std::uint8_t, 2> registerAddress(const BusChip& chip, std::uint32_t reg) {
  if (chip.registerBytes == 1) return {lowByte(reg)};
  return highByteFirst(reg);
}

}  // namespace

void selectCameraBus(int deviceNumber, BusSpeed speed) {
  etLib2_SelectI2cBus_DevNum(static_cast<std::uint32_t>(deviceNumber), cameraBus,
                             static_cast<std::uint32_t>(speed));
}

std::uint8_t readBus(int deviceNumber, const BusChip& chip, std::uint32_t reg) {
  auto address = registerAddress(chip, reg);
  std::uint8_t value = 0;
  etLib2_I2cRead_DevNum(static_cast<std::uint32_t>(deviceNumber), chip.address, chip.registerBytes,
                        address.data(), 1, &value);
  return value;
}

std::int32_t writeBus(int deviceNumber, const BusChip& chip, std::uint32_t reg,
                      std::uint32_t value) {
  auto address = registerAddress(chip, reg);
  const std::uint8_t data = lowByte(value);
  return static_cast<std::int32_t>(etLib2_I2cWrite_DevNum(static_cast<std::uint32_t>(deviceNumber),
                                                          chip.address, chip.registerBytes,
                                                          address.data(), 1, &data));
}

std::string wifiReadUrl(const std::string& base, const BusChip& chip, std::uint32_t reg) {
  return CMD_I2C_R(base, chip.address, static_cast<int>(reg), chip.registerBytes, 1);
}

std::string wifiWriteUrl(const std::string& base, const BusChip& chip, std::uint32_t reg,
                         std::uint32_t value) {
  return CMD_I2C_W(base, chip.address, static_cast<int>(reg), chip.registerBytes,
                   static_cast<int>(value), 1);
}

void writeWifiBus(const BusChip& chip, std::uint32_t reg, std::uint32_t value) {
  loadUrlwWininet(wifiWriteUrl(s_mainhttp, chip, reg, value));
}

}  // namespace qvx
