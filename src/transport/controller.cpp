#include "transport/controller.h"

#include <optional>
#include <string>

#include "base/bytes.h"
#include "models/families.h"
#include "state/device_state.h"
#include "transport/camera_bus.h"
#include "transport/usb3.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

std::uint32_t readOverUsb3(std::uint32_t reg) {
  sendUsb3(Usb3Selector::controllerRead, {chip::controller.address, lowByte(reg)});
  return fetchUsb3(Usb3Selector::controllerRead);
}

bool hasBridgeController(int pid) {
  return isVK7xxxSeries(pid) || isVR3xxxSeries(pid) || isVR4xxxSeries(pid) || isVK4xx7Series(pid);
}

void refresh80() {
  ul80 = ReadFromPIC(nTmpIdx, controller::features);
}

constexpr Family vr4xxxVariants = within<range(0x9C0, 0x9C6)>;
constexpr Family vk4xx7Variants = within<range(0x9E0, 0x9E6)>;

int hasVariant(int pid, Family ids, std::uint32_t mask, std::uint32_t pattern) {
  refresh80();
  ul84 = ReadFromPIC(nTmpIdx, controller::lightingBoard);
  return ids(pid) && (ul80 & mask) == pattern;
}

}  // namespace

std::uint32_t ReadFromPIC(int deviceNumber, std::uint32_t reg) {
  // -1 is not the Wi-Fi camera here, and only one model is read over USB 3, although its whole
  // block is written that way: applications rely on both.
  if (deviceNumber == wifiDeviceIndex) return ReadPIC(reg);
  if (nPid == usb3ReadablePid) return readOverUsb3(reg);
  selectCameraBus(deviceNumber, BusSpeed::fast);
  return readBus(deviceNumber, chip::controller, reg);
}

std::uint32_t ReadPIC(std::uint32_t reg) {
  const auto answer = fetchRegister(wifiReadUrl(wifiBaseUrl(), chip::controller, reg));
  return answer ? static_cast<std::uint32_t>(resultIn(*answer)) : 0;
}

int WriteToSEG(int deviceNumber, std::uint32_t reg, std::uint32_t value) {
  nTmpIdx = deviceNumber;
  if (isWifiDevice(deviceNumber)) {
    writeWifiBus(chip::controller, reg, value);
    return 0;
  }
  nPid = productIdOf(deviceNumber);
  if (nPid == 0) nPid = nCurrPid;
  std::int32_t status = 0;
  if (hasBridgeController(nPid)) {
    selectCameraBus(deviceNumber);
    status = writeBus(deviceNumber, chip::controller, reg, value);
  }
  if (isVK73xxxSeries(nPid)) {
    sendUsb3(Usb3Selector::busWrite, {chip::controller.address, lowByte(reg), lowByte(value)});
    return static_cast<int>(ec);
  }
  return status < 0 ? 0 : 1;
}

int isVR4xxxSeries(int pid) {
  refresh80();
  return within<range(0x9C0, 0x9CF)>(pid);
}

int isVK4xx7Series(int pid) {
  refresh80();
  return isVk4xx7Series(pid);
}

int isVR4xxx_2Series(int pid) {
  return hasVariant(pid, vr4xxxVariants, 0x04, 0x04);
}

int isVR4xxx_3Series(int pid) {
  return hasVariant(pid, vr4xxxVariants, 0x06, 0x02);
}

int isVR3xxx_2Series(int pid) {
  return hasVariant(pid, within<range(0x9D0, 0x9D2), 0x9D7, 0x9D8>, 0x06, 0x06);
}

int isVR3xxx_3Series(int pid) {
  return hasVariant(pid, within<0x9D4>, 0x06, 0x02);
}

int isVk4xx7_2Series(int pid) {
  return hasVariant(pid, vk4xx7Variants, 0x06, 0x06);
}

int isVk4xx7_3Series(int pid) {
  return hasVariant(pid, vk4xx7Variants, 0x06, 0x02);
}

}  // namespace qvx
