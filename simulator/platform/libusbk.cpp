// libusbK on the simulated machine.
#include "platform/system.h"

#include "platform/process.h"
#include "simulator/model/usb3_device_list.h"
#include "simulator/platform/world.h"

namespace qvx::platform {

namespace {

using simulator::OpenCounts;
using simulator::UsbDevice;
using simulator::world;

constexpr int driverId = 0;
constexpr std::uint32_t openFailed = 31;  // ERROR_GEN_FAILURE

using DeviceList = simulator::Usb3DeviceList<KLST_DEVINFO>;

struct OpenedDevice {
  std::size_t device;
  simulator::CameraConnection connection{};
};

KLST_DEVINFO recordOf(const UsbDevice& device, std::size_t index) {
  KLST_DEVINFO record{};
  record.Common.Vid = device.vendorId;
  record.Common.Pid = device.productId;
  record.DriverID = driverId;
  record.BusNumber = static_cast<int>(index);
  device.instance.copy(record.Common.InstanceID, sizeof record.Common.InstanceID - 1);
  device.description.copy(record.DeviceDesc, sizeof record.DeviceDesc - 1);
  device.maker.copy(record.Mfg, sizeof record.Mfg - 1);
  return record;
}

// Null for an invalid handle and for a device that is gone.
UsbDevice* deviceOf(KUSB_HANDLE handle) {
  const auto* const opened = world().kept<OpenedDevice>(handle);
  const bool isThere = opened != nullptr && opened->connection.isThere() &&
                       opened->device < world().usbDevices.size();
  return isThere ? &world().usbDevices[opened->device] : nullptr;
}

KUSB_BOOL openDevice(KUSB_HANDLE* handle, const KLST_DEVINFO* record) {
  const auto index = static_cast<std::size_t>(record->BusNumber);
  if (!world().operate("usb open ", index) || !world().pluggedIn() ||
      !world().usbDevices.at(index).opens) {
    setLastError(openFailed);
    return 0;
  }
  *handle = world().keep(&OpenCounts::usbHandles, OpenedDevice{index});
  return 1;
}

KUSB_BOOL queryPipe(KUSB_HANDLE handle, std::uint8_t alternateSetting, std::uint8_t pipeIndex,
                    WINUSB_PIPE_INFORMATION* pipe) {
  const UsbDevice* const device = world().grants() ? deviceOf(handle) : nullptr;
  if (device == nullptr || alternateSetting != 0 || pipeIndex >= device->pipes.size()) return 0;
  const simulator::UsbPipe& found = device->pipes[pipeIndex];
  *pipe = {found.type, found.id, static_cast<std::uint16_t>(found.maximumPacketSize),
           static_cast<std::uint8_t>(found.interval)};
  return 1;
}

}  // namespace

// Flags would request other lists, for example of unplugged devices; these do not exist here.
bool system::LstK_Init(KLST_HANDLE* deviceList, int flags) {
  if (flags != 0 || !world().libusbkInstalled || !world().grants()) return false;
  std::vector<KLST_DEVINFO> records;
  for (const UsbDevice& device : world().usbDevices) {
    if (world().pluggedIn()) records.push_back(recordOf(device, records.size()));
  }
  *deviceList = world().keep(&OpenCounts::deviceLists, DeviceList(std::move(records)));
  return true;
}

bool LstK_Count(KLST_HANDLE deviceList, std::uint32_t* count) {
  const auto* const list = world().kept<DeviceList>(deviceList);
  if (list == nullptr || !world().grants()) return false;
  *count = static_cast<std::uint32_t>(list->size());
  return true;
}

bool system::LstK_FindByVidPid(KLST_HANDLE deviceList, int vid, int pid,
                               KLST_DEVINFO** deviceInfo) {
  *deviceInfo = nullptr;
  if (!world().grants()) return false;
  *deviceInfo = world().kept<DeviceList>(deviceList)->find([=](const KLST_DEVINFO& record) {
    return record.Common.Vid == vid && record.Common.Pid == pid;
  });
  return *deviceInfo != nullptr;
}

bool system::LstK_MoveNext(KLST_HANDLE deviceList, KLST_DEVINFO** deviceInfo) {
  *deviceInfo = world().kept<DeviceList>(deviceList)->next();
  return *deviceInfo != nullptr;
}

bool LstK_Free(KLST_HANDLE deviceList) {
  return world().drop<DeviceList>(deviceList);
}

bool system::LibK_LoadDriverAPI(KUSB_DRIVER_API* driverApi, int requestedDriver) {
  if (requestedDriver != driverId || !world().grants()) return false;
  driverApi->Init = openDevice;
  driverApi->QueryPipe = queryPipe;
  return true;
}

bool system::UsbK_ControlTransfer(KUSB_HANDLE interfaceHandle, WINUSB_SETUP_PACKET setup,
                                  std::uint8_t* buffer, std::uint32_t length,
                                  std::uint32_t* transferred) {
  const simulator::Room bytes(buffer, length);
  const simulator::UsbSetup request = {setup.RequestType, setup.Request, setup.Value, setup.Index,
                                       setup.Length};
  const bool isOut = (setup.RequestType & 0x80) == 0;
  const bool sent =
      world().operate("usb ", request, isOut ? ": " : "", bytes.first(isOut ? length : 0));
  UsbDevice* const device = deviceOf(interfaceHandle);
  if (!sent || device == nullptr || device->endpoint == nullptr) return false;
  const auto moved = device->endpoint->transfer(request, bytes);
  if (!moved) return false;
  *transferred = static_cast<std::uint32_t>(*moved);
  return true;
}

}  // namespace qvx::platform
