#include "transport/controller.h"

#include <optional>

#include "etlib2/etLib2.h"
#include "models/families.h"
#include "state/device_state.h"
#include "transport/usb3.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

constexpr int usb3ControllerPid = 0x9B0;

std::uint32_t readOverUsb3(std::uint32_t reg) {
  sendUsb3(Usb3Selector::controllerRead, {controllerAddress, static_cast<std::uint8_t>(reg)});
  return fetchUsb3(Usb3Selector::controllerRead);
}

std::uint32_t readOverBridge(std::uint32_t deviceNumber, std::uint32_t reg) {
  auto address = static_cast<std::uint8_t>(reg);
  std::uint8_t value = 0;
  etLib2_SelectI2cBus_DevNum(deviceNumber, cameraBus, 1);
  etLib2_I2cRead_DevNum(deviceNumber, controllerAddress, 1, &address, 1, &value);
  return value;
}

std::int32_t writeOverBridge(std::uint32_t deviceNumber, std::uint32_t reg, std::uint32_t value) {
  auto address = static_cast<std::uint8_t>(reg);
  auto data = static_cast<std::uint8_t>(value);
  etLib2_SelectI2cBus_DevNum(deviceNumber, cameraBus, 0);
  return static_cast<std::int32_t>(
      etLib2_I2cWrite_DevNum(deviceNumber, controllerAddress, 1, &address, 1, &data));
}

bool hasBridgeController(int pid) {
  return isVK7xxxSeries(pid) || isVR3xxxSeries(pid) || isVR4xxxSeries(pid) || isVK4xx7Series(pid);
}

}  // namespace

std::uint32_t ReadFromPIC(int deviceNumber, std::uint32_t reg) {
  // -1 is not the Wi-Fi camera here, and only this one product id is read over USB 3, although the
  // whole block is written that way: applications rely on both.
  if (deviceNumber == wifiDeviceIndex) return ReadPIC(reg);
  if (nPid == usb3ControllerPid) return readOverUsb3(reg);
  return readOverBridge(static_cast<std::uint32_t>(deviceNumber), reg);
}

std::uint32_t ReadPIC(std::uint32_t reg) {
  const std::string url = CMD_I2C_R(wifiBaseUrl(), controllerAddress, static_cast<int>(reg), 1, 1);
  const std::optional<std::string> answer = fetchRegister(url);
  return answer ? static_cast<std::uint32_t>(resultIn(*answer)) : 0;
}

int WriteToSEG(int deviceNumber, std::uint32_t reg, std::uint32_t value) {
  nTmpIdx = deviceNumber;
  if (deviceNumber == wifiDeviceIndex || deviceNumber == chooseAutomatically) {
    loadUrlwWininet(CMD_I2C_W(s_mainhttp, controllerAddress, static_cast<int>(reg), 1,
                              static_cast<int>(value), 1));
    return 0;
  }
  nPid = productIdOf(deviceNumber);
  if (nPid == 0) nPid = nCurrPid;
  std::int32_t status = 0;
  if (hasBridgeController(nPid)) {
    status = writeOverBridge(static_cast<std::uint32_t>(deviceNumber), reg, value);
  }
  if (isVK73xxxSeries(nPid)) {
    sendUsb3(Usb3Selector::busWrite,
             {controllerAddress, static_cast<std::uint8_t>(reg), static_cast<std::uint8_t>(value)});
    return static_cast<int>(ec);
  }
  return status < 0 ? 0 : 1;
}

}  // namespace qvx
