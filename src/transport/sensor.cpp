#include "transport/sensor.h"

#include <array>
#include <optional>
#include <string>

#include "etlib2/bytes.h"
#include "etlib2/etLib2.h"
#include "models/families.h"
#include "state/device_state.h"
#include "transport/controller.h"
#include "transport/usb3.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

struct Sensor {
  std::uint8_t address;
  std::uint8_t registerBytes;
};

constexpr Sensor sensor78 = {0x78, 2};
constexpr Sensor sensor48 = {0x48, 2};
constexpr Sensor sensor42 = {0x42, 1};

enum BusSpeed : std::uint32_t { standard = 0, fast = 1 };

std::array<std::uint8_t, 2> registerAddress(const Sensor& sensor, std::uint32_t reg) {
  if (sensor.registerBytes == 1) return {lowByte(reg)};
  return highByteFirst(reg);
}

std::uint32_t readOverBridge(int deviceNumber, const Sensor& sensor, std::uint32_t reg,
                             BusSpeed speed) {
  const auto device = static_cast<std::uint32_t>(deviceNumber);
  auto address = registerAddress(sensor, reg);
  std::uint8_t value = 0;
  etLib2_SelectI2cBus_DevNum(device, cameraBus, speed);
  etLib2_I2cRead_DevNum(device, sensor.address, sensor.registerBytes, address.data(), 1, &value);
  return value;
}

void writeOverBridge(int deviceNumber, const Sensor& sensor, std::uint32_t reg,
                     std::uint32_t value) {
  const auto device = static_cast<std::uint32_t>(deviceNumber);
  auto address = registerAddress(sensor, reg);
  const std::uint8_t data = lowByte(value);
  etLib2_SelectI2cBus_DevNum(device, cameraBus, standard);
  etLib2_I2cWrite_DevNum(device, sensor.address, sensor.registerBytes, address.data(), 1, &data);
}

void writeOverWifi(const Sensor& sensor, std::uint32_t reg, std::uint32_t value) {
  loadUrlwWininet(CMD_I2C_W(s_mainhttp, sensor.address, static_cast<int>(reg), sensor.registerBytes,
                            static_cast<int>(value), 1));
}

std::uint32_t readOverUsb3(std::uint32_t reg) {
  sendUsb3(Usb3Selector::sensorRead, {sensor78.address, highByte(reg), lowByte(reg)});
  return fetchUsb3(Usb3Selector::sensorRead);
}

void writeOverUsb3(std::uint32_t reg, std::uint32_t value) {
  sendUsb3(Usb3Selector::busWrite, {sensor78.address, highByte(reg), lowByte(reg), lowByte(value)});
}

bool has8BitRegisters(int pid) {
  return isVK3xxxR4Series(pid) || isVR3xxxSeries(pid);
}

// Null for any other family.
const Sensor* sensorOf3xxxAnd4xxx(int pid) {
  if (has8BitRegisters(pid)) return &sensor42;
  return isVK4xxxSeries(pid) || isVR4xxxSeries(pid) ? &sensor48 : nullptr;
}

Sensor wifiSensor() {
  Sensor sensor = has8BitRegisters(nPid) ? sensor42 : sensor48;
  if (isVK7xxxSeries(nPid) || isVK7xxxR4_3Series(nPid)) sensor.address = sensor78.address;
  return sensor;
}

}  // namespace

std::uint32_t ReadEmpia_Sensor(std::uint32_t reg) {
  const Sensor sensor = wifiSensor();
  const std::optional<std::string> answer = fetchRegister(
      CMD_I2C_R(wifiBaseUrl(), sensor.address, static_cast<int>(reg), sensor.registerBytes, 1));
  // The camera's text ends at its first NUL.
  return answer ? static_cast<std::uint32_t>(resultIn(answer->c_str())) : 0;
}

void WriteEmpia_Sensor(std::uint32_t reg, std::uint32_t value) {
  const Sensor sensor = wifiSensor();
  sendUnread(CMD_I2C_W(wifiBaseUrl(), sensor.address, static_cast<int>(reg), sensor.registerBytes,
                       static_cast<int>(value), 1));
}

std::uint32_t ReadFrom90x(int deviceNumber, std::uint32_t reg) {
  if (deviceNumber == wifiDeviceIndex) return ReadEmpia_Sensor(reg);
  if (isVK73xxxSeries(nPid)) return readOverUsb3(reg);
  return readOverBridge(deviceNumber, sensor78, reg, standard);
}

bool WriteTo90x(int deviceNumber, std::uint32_t reg, std::uint32_t value) {
  if (deviceNumber == wifiDeviceIndex) {
    writeOverWifi(sensor78, reg, value);
    return false;
  }
  if (isVK73xxxSeries(nPid)) {
    writeOverUsb3(reg, value);
    return ec != 0;
  }
  writeOverBridge(deviceNumber, sensor78, reg, value);
  return false;
}

std::uint32_t ReadFrom88x(int deviceNumber, std::uint32_t reg) {
  nTmpIdx = deviceNumber;
  if (deviceNumber == wifiDeviceIndex && sensorOf3xxxAnd4xxx(nPid) != nullptr) {
    return ReadEmpia_Sensor(reg);
  }
  nPid = productIdOf(deviceNumber);
  if (nPid == 0) nPid = nCurrPid;
  const Sensor* const sensor = sensorOf3xxxAnd4xxx(nPid);
  if (sensor == nullptr) return 0;
  // This one read is made at the fast speed; writes to the same sensor are not.
  return readOverBridge(deviceNumber, *sensor, reg, sensor == &sensor42 ? fast : standard);
}

int WriteTo88x(int deviceNumber, std::uint32_t reg, std::uint32_t value) {
  nTmpIdx = deviceNumber;
  if (nPid == 0) nPid = nCurrPid;
  const bool isWifi = deviceNumber == wifiDeviceIndex;
  if (!isWifi) nPid = productIdOf(deviceNumber);
  const Sensor* const sensor = sensorOf3xxxAnd4xxx(nPid);
  if (sensor == nullptr) return 0;
  if (isWifi) {
    writeOverWifi(*sensor, reg, value);
  } else {
    writeOverBridge(deviceNumber, *sensor, reg, value);
  }
  return 0;
}

}  // namespace qvx
