#include "transport/sensor.h"

#include "base/bytes.h"
#include "models/families.h"
#include "state/device_state.h"
#include "transport/camera_bus.h"
#include "transport/controller.h"
#include "transport/usb3.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

std::uint32_t readSensorOverUsb3(std::uint32_t reg) {
  sendUsb3(Usb3Selector::sensorRead, {chip::sensor78.address, highByte(reg), lowByte(reg)});
  return fetchUsb3(Usb3Selector::sensorRead);
}

void writeOverUsb3(std::uint32_t reg, std::uint32_t value) {
  sendUsb3(Usb3Selector::busWrite,
           {chip::sensor78.address, highByte(reg), lowByte(reg), lowByte(value)});
}

std::uint32_t readOverBridge(int deviceNumber, const BusChip& sensor, std::uint32_t reg,
                             BusSpeed speed) {
  selectCameraBus(deviceNumber, speed);
  return readBus(deviceNumber, sensor, reg);
}

void writeOverBridge(int deviceNumber, const BusChip& sensor, std::uint32_t reg,
                     std::uint32_t value) {
  selectCameraBus(deviceNumber);
  writeBus(deviceNumber, sensor, reg, value);
}

bool has8BitRegisters(int pid) {
  return isVK3xxxR4Series(pid) || isVR3xxxSeries(pid);
}

// Null for any other family.
const BusChip* sensorOf3xxxAnd4xxx(int pid) {
  if (has8BitRegisters(pid)) return &chip::sensor42;
  return isVK4xxxSeries(pid) || isVR4xxxSeries(pid) ? &chip::sensor48 : nullptr;
}

BusChip wifiSensor() {
  BusChip sensor = has8BitRegisters(nPid) ? chip::sensor42 : chip::sensor48;
  if (isVK7xxxSeries(nPid) || isVK7xxxR4_3Series(nPid)) sensor.address = chip::sensor78.address;
  return sensor;
}

}  // namespace

std::uint32_t ReadEmpia_Sensor(std::uint32_t reg) {
  const auto answer = fetchRegister(wifiReadUrl(wifiBaseUrl(), wifiSensor(), reg));
  // The camera's text ends at its first NUL.
  return answer ? static_cast<std::uint32_t>(resultIn(answer->c_str())) : 0;
}

void WriteEmpia_Sensor(std::uint32_t reg, std::uint32_t value) {
  sendUnread(wifiWriteUrl(wifiBaseUrl(), wifiSensor(), reg, value));
}

void writeSensor34(int deviceNumber, std::uint32_t reg, int value) {
  writeBus(deviceNumber, chip::sensor34, reg, static_cast<std::uint32_t>(value));
}

int readSensor34(int deviceNumber, std::uint32_t reg) {
  return readBus(deviceNumber, chip::sensor34, reg);
}

std::uint32_t ReadFrom90x(int deviceNumber, std::uint32_t reg) {
  if (deviceNumber == wifiDeviceIndex) return ReadEmpia_Sensor(reg);
  if (isVK73xxxSeries(nPid)) return readSensorOverUsb3(reg);
  return readOverBridge(deviceNumber, chip::sensor78, reg, BusSpeed::standard);
}

bool WriteTo90x(int deviceNumber, std::uint32_t reg, std::uint32_t value) {
  if (deviceNumber == wifiDeviceIndex) {
    writeWifiBus(chip::sensor78, reg, value);
    return false;
  }
  if (isVK73xxxSeries(nPid)) {
    writeOverUsb3(reg, value);
    return ec != 0;
  }
  writeOverBridge(deviceNumber, chip::sensor78, reg, value);
  return false;
}

std::uint32_t ReadFrom88x(int deviceNumber, std::uint32_t reg) {
  nTmpIdx = deviceNumber;
  if (deviceNumber == wifiDeviceIndex && sensorOf3xxxAnd4xxx(nPid) != nullptr) {
    return ReadEmpia_Sensor(reg);
  }
  nPid = productIdOf(deviceNumber);
  if (nPid == 0) nPid = nCurrPid;
  const BusChip* const sensor = sensorOf3xxxAnd4xxx(nPid);
  if (sensor == nullptr) return 0;
  // This one read is made at the fast speed; writes to the same sensor are not.
  const bool isFast = sensor == &chip::sensor42;
  return readOverBridge(deviceNumber, *sensor, reg, isFast ? BusSpeed::fast : BusSpeed::standard);
}

int WriteTo88x(int deviceNumber, std::uint32_t reg, std::uint32_t value) {
  nTmpIdx = deviceNumber;
  if (nPid == 0) nPid = nCurrPid;
  const bool isWifi = deviceNumber == wifiDeviceIndex;
  if (!isWifi) nPid = productIdOf(deviceNumber);
  const BusChip* const sensor = sensorOf3xxxAnd4xxx(nPid);
  if (sensor == nullptr) return 0;
  if (isWifi) {
    writeWifiBus(*sensor, reg, value);
  } else {
    writeOverBridge(deviceNumber, *sensor, reg, value);
  }
  return 0;
}

}  // namespace qvx
