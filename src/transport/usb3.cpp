#include "transport/usb3.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "models/families.h"
#include "platform/process.h"
#include "state/kept_state.h"

namespace qvx {

namespace {

constexpr std::uint32_t errorDeviceNotConnected = 1167;  // the system's own code
constexpr std::uint16_t vendorControls = 0x0300;         // wIndex: entity 3, interface 0

enum UsbRequestType : std::uint8_t { classOut = 0x21, standardIn = 0x80, classIn = 0xA1 };
enum UsbRequest : std::uint8_t { setCur = 0x01, getDescriptor = 0x06, getCur = 0x81 };

// The lines go out at once, so that they keep their place among the application's own output.
[[gnu::format(printf, 1, 2)]] void print(const char* pattern, ...) {
  va_list arguments;
  va_start(arguments, pattern);
  std::vprintf(pattern, arguments);
  va_end(arguments);
  std::fflush(stdout);
}

void freeDeviceList() {
  platform::LstK_Free(deviceList);
  deviceList = nullptr;
}

std::string moduleName() {
  const std::string path = platform::modulePath();
  return path.substr(path.find_last_of("\\/") + 1);
}

bool makeDeviceList(std::uint32_t& count) {
  if (!platform::LstK_Init(&deviceList, 0)) {
    deviceList = nullptr;
    print("Error initializing device list.\n");
    return false;
  }
  count = 0;
  platform::LstK_Count(deviceList, &count);
  if (count != 0) return true;
  print("Device list empty.\n");
  platform::setLastError(errorDeviceNotConnected);
  freeDeviceList();
  return false;
}

// The device with the current product id, unless the device index moves the choice along the list.
// Indexes -1 and 90 move it past the end, or leave it on the last device: libusbK's cursor decides.
bool chooseDevice(std::uint32_t count) {
  print("Looking for device vid/pid %04X/%04X..\n", cameraVendorId, nPid);
  deviceInfo = nullptr;
  platform::LstK_FindByVidPid(deviceList, cameraVendorId, nPid, &deviceInfo);
  for (std::uint32_t i = 0; i < count && static_cast<int>(i) != VideoDeviceIndex; ++i) {
    platform::LstK_MoveNext(deviceList, &deviceInfo);
  }
  if (deviceInfo != nullptr) {
    const platform::KLST_DEVINFO& found = *deviceInfo;
    print("Using %04X:%04X (%s): %s - %s\n", found.Common.Vid, found.Common.Pid,
          found.Common.InstanceID, found.DeviceDesc, found.Mfg);
    return true;
  }
  print("Device vid/pid %04X/%04X not found.\n\n", cameraVendorId, nPid);
  print("USAGE: %s vid=%04X pid=%04X\n\n", moduleName().c_str(), cameraVendorId, nPid);
  freeDeviceList();
  return false;
}

void openDevice() {
  platform::LibK_LoadDriverAPI(&Usb, deviceInfo->DriverID);
  if (Usb.Init == nullptr || !Usb.Init(&handle, deviceInfo)) {
    ec = platform::lastError();
    print("Usb.Init failed. ErrorCode: %08Xh\n", ec);
  }
  // Printed in every case: if the device is not open, the transfers that follow will fail.
  print("Device opened successfully!\n");
}

// The index is not reset: a second opening in one process lists no pipes.
void listPipes() {
  print("Pipe Information:\n");
  if (Usb.QueryPipe == nullptr) return;
  constexpr int possiblePipes = 256;
  for (int query = 0; query < possiblePipes; ++query) {
    if (!Usb.QueryPipe(handle, 0, pipeIndex++, &pipeInfo)) return;
    print("  PipeId=0x%02X PipeType=0x%02X Interval=%u MaximumPacketSize=%u\n", pipeInfo.PipeId,
          static_cast<unsigned>(pipeInfo.PipeType), pipeInfo.Interval, pipeInfo.MaximumPacketSize);
  }
}

int readUsbVersion() {
  constexpr std::uint16_t deviceDescriptor = 0x0100;
  std::array<std::uint8_t, 18> descriptor{};
  std::uint32_t transferred = 0;
  const bool answered = platform::UsbK_ControlTransfer(
      handle, {standardIn, getDescriptor, deviceDescriptor, 0, descriptor.size()},
      descriptor.data(), descriptor.size(), &transferred);
  nUSBVer = descriptor[3];  // high byte of the USB version
  return answered ? 1 : 0;
}

}  // namespace

int U3Open() {
  m_EnableMT = 0;
  std::uint32_t count = 0;
  if (!makeDeviceList(count) || !chooseDevice(count)) return 0;
  if (!isVK73xxxSeries(deviceInfo->Common.Pid)) return 0;
  openDevice();
  listPipes();
  return readUsbVersion();
}

int usb3DeviceCount() {
  std::uint32_t count = 0;
  platform::LstK_Count(deviceList, &count);
  return static_cast<int>(count);
}

void sendUsb3(Usb3Selector selector, std::initializer_list<std::uint8_t> bytes) {
  sendUsb3(selector, bytes, static_cast<std::uint16_t>(bytes.size()));
}

void sendUsb3(Usb3Selector selector, std::initializer_list<std::uint8_t> bytes,
              std::uint16_t announcedLength) {
  std::array<std::uint8_t, 8> buffer{};
  std::copy(bytes.begin(), bytes.end(), buffer.begin());
  std::uint32_t transferred = 0;
  platform::UsbK_ControlTransfer(
      handle,
      {classOut, setCur, static_cast<std::uint16_t>(selector), vendorControls, announcedLength},
      buffer.data(), static_cast<std::uint32_t>(bytes.size()), &transferred);
}

std::uint8_t fetchUsb3(Usb3Selector selector) {
  std::array<std::uint8_t, 2> buffer = {0xFF, 0xFF};
  std::uint32_t transferred = 0;
  platform::UsbK_ControlTransfer(
      handle, {classIn, getCur, static_cast<std::uint16_t>(selector), vendorControls, 1},
      buffer.data(), 1, &transferred);
  return buffer[0];
}

}  // namespace qvx
