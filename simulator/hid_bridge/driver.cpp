// A HID minidriver for virtual bridge cameras. It imports from the kernel and the HID class driver
// only: with any other import Wine takes it for an ordinary DLL.
#include "simulator/hid_bridge/minidriver.h"

#include <new>

#include "simulator/hid_bridge/virtual_device.h"

namespace {

using namespace qvx::simulator;

// 64-bit kernels have this as an inline function over memory that Wine keeps elsewhere.
std::uint64_t now_ms() {
  using QuerySystemTime = void(NTAPI*)(LARGE_INTEGER*);
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, L"KeQuerySystemTime");
  const auto query = reinterpret_cast<QuerySystemTime>(MmGetSystemRoutineAddress(&name));
  LARGE_INTEGER time_100ns{};
  if (query != nullptr) query(&time_100ns);
  constexpr std::uint64_t unitsPerMillisecond = 10'000;
  return static_cast<std::uint64_t>(time_100ns.QuadPart) / unitsPerMillisecond;
}

void sleep(std::uint32_t delay_ms) {
  LARGE_INTEGER relative_100ns;
  relative_100ns.QuadPart = -10'000LL * delay_ms;
  KeDelayExecutionThread(KernelMode, FALSE, &relative_100ns);
}

// A device's own registry key, open from plug to unplug: opening it costs more than a transfer.
class DeviceKey {
 public:
  explicit DeviceKey(PDEVICE_OBJECT device) {
    if (IoOpenDeviceRegistryKey(device, PLUGPLAY_REGKEY_DEVICE, KEY_READ | KEY_WRITE, &key_) !=
        STATUS_SUCCESS) {
      key_ = nullptr;
    }
  }

  void close() {
    if (key_ != nullptr) ZwClose(key_);
    key_ = nullptr;
  }

  bool read(HidDeviceSettings& settings) const {
    constexpr ULONG headSize = FIELD_OFFSET(KEY_VALUE_PARTIAL_INFORMATION, Data);
    alignas(8) UCHAR buffer[headSize + sizeof settings];
    UNICODE_STRING name;
    RtlInitUnicodeString(&name, hidSettingsValue);
    ULONG size = 0;
    if (key_ == nullptr || ZwQueryValueKey(key_, &name, KeyValuePartialInformation, buffer,
                                           sizeof buffer, &size) != STATUS_SUCCESS) {
      return false;
    }
    if (size != sizeof buffer) return false;
    RtlCopyMemory(&settings, buffer + headSize, sizeof settings);
    return true;
  }

  void write(HidDeviceState& state) const {
    UNICODE_STRING name;
    RtlInitUnicodeString(&name, hidStateValue);
    if (key_ != nullptr) ZwSetValueKey(key_, &name, 0, REG_BINARY, &state, sizeof state);
  }

 private:
  HANDLE key_ = nullptr;
};

// A device, in the extension that the class driver provides.
struct Device {
  Device(DeviceKey ownKey, const HidDeviceSettings& settings)
      : key(ownKey), poweredUp_ms(now_ms()), camera(settings), state{}, published{} {
    KeInitializeEvent(&turn, SynchronizationEvent, TRUE);
  }

  DeviceKey key;
  std::uint64_t poweredUp_ms;
  KEVENT turn;  // set while no transfer is at work
  VirtualHidDevice camera;
  HidDeviceState state, published;
};

Device& deviceOf(PDEVICE_OBJECT object) {
  const auto* const extension = static_cast<const hid::DeviceExtension*>(object->DeviceExtension);
  return *static_cast<Device*>(extension->minidriverExtension);
}

NTSTATUS complete(PIRP irp, NTSTATUS status, ULONG_PTR size = 0) {
  irp->IoStatus.Status = status;
  irp->IoStatus.Information = size;
  IoCompleteRequest(irp, IO_NO_INCREMENT);
  return status;
}

NTSTATUS answer(PIRP irp, const void* bytes, std::size_t size) {
  const PIO_STACK_LOCATION location = IoGetCurrentIrpStackLocation(irp);
  if (location->Parameters.DeviceIoControl.OutputBufferLength < size) {
    return complete(irp, STATUS_BUFFER_TOO_SMALL);
  }
  RtlCopyMemory(irp->UserBuffer, bytes, size);
  return complete(irp, STATUS_SUCCESS, size);
}

void publish(Device& device) {
  device.camera.describe(device.state);
  if (RtlCompareMemory(&device.state, &device.published, sizeof device.state) ==
      sizeof device.state) {
    return;
  }
  device.published = device.state;
  device.key.write(device.state);
}

template <class Transfer>
bool transfer(Device& device, Transfer run) {
  HidDeviceSettings settings;
  if (device.key.read(settings)) device.camera.follow(settings);
  const auto verdict = device.camera.prepare(now_ms() - device.poweredUp_ms);
  if (verdict.delay_ms != 0) sleep(verdict.delay_ms);
  const bool done = !verdict.refused && run();
  publish(device);
  return done;
}

NTSTATUS transferFeature(Device& device, PIRP irp, bool set) {
  auto& packet = *static_cast<hid::TransferPacket*>(irp->UserBuffer);
  const std::span<std::uint8_t> report(packet.report, packet.size);
  KeWaitForSingleObject(&device.turn, Executive, KernelMode, FALSE, nullptr);
  const bool done = transfer(device, [&] {
    return set ? device.camera.setFeature(report) : device.camera.getFeature(report);
  });
  KeSetEvent(&device.turn, IO_NO_INCREMENT, FALSE);
  return done ? complete(irp, STATUS_SUCCESS, packet.size) : complete(irp, STATUS_UNSUCCESSFUL);
}

NTSTATUS describe(const Device& device, PIRP irp) {
  constexpr UCHAR hidDescriptorType = 0x21, reportDescriptorType = 0x22;
  constexpr USHORT hidVersion = 0x0111;
  const auto reportSize = static_cast<USHORT>(device.camera.reportDescriptor().size());
  const hid::Descriptor descriptor = {sizeof descriptor,    hidDescriptorType, hidVersion, 0, 1,
                                      reportDescriptorType, reportSize};
  return answer(irp, &descriptor, sizeof descriptor);
}

NTSTATUS tellAttributes(const Device& device, PIRP irp) {
  constexpr USHORT version = 0x0100;
  const hid::Attributes attributes = {
      sizeof attributes, device.camera.vendorId(), device.camera.productId(), version, {}};
  return answer(irp, &attributes, sizeof attributes);
}

NTSTATUS NTAPI onRequest(PDEVICE_OBJECT object, PIRP irp) {
  static constexpr wchar_t name[] = L"Simulated microscope";
  Device& device = deviceOf(object);
  switch (IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl.IoControlCode) {
    case hid::getDeviceDescriptor:
      return describe(device, irp);
    case hid::getReportDescriptor: {
      const auto descriptor = device.camera.reportDescriptor();
      return answer(irp, descriptor.data(), descriptor.size());
    }
    case hid::getDeviceAttributes:
      return tellAttributes(device, irp);
    case hid::getString:
      return answer(irp, name, sizeof name);
    case hid::setFeature:
      return transferFeature(device, irp, true);
    case hid::getFeature:
      return transferFeature(device, irp, false);
    default:
      return complete(irp, STATUS_NOT_SUPPORTED);
  }
}

NTSTATUS NTAPI onPlugAndPlay(PDEVICE_OBJECT object, PIRP irp) {
  switch (IoGetCurrentIrpStackLocation(irp)->MinorFunction) {
    case IRP_MN_REMOVE_DEVICE:
      deviceOf(object).key.close();
      [[fallthrough]];
    case IRP_MN_START_DEVICE:
    case IRP_MN_STOP_DEVICE:
    case IRP_MN_QUERY_REMOVE_DEVICE:
    case IRP_MN_CANCEL_REMOVE_DEVICE:
    case IRP_MN_SURPRISE_REMOVAL:
      irp->IoStatus.Status = STATUS_SUCCESS;
      break;
    default:
      break;
  }
  IoSkipCurrentIrpStackLocation(irp);
  return IoCallDriver(static_cast<hid::DeviceExtension*>(object->DeviceExtension)->nextDevice, irp);
}

NTSTATUS NTAPI onAddDevice(PDRIVER_OBJECT, PDEVICE_OBJECT object) {
  const PDEVICE_OBJECT physical =
      static_cast<hid::DeviceExtension*>(object->DeviceExtension)->physicalDevice;
  HidDeviceSettings settings;
  DeviceKey key(physical);
  if (!key.read(settings)) {
    key.close();
    return STATUS_UNSUCCESSFUL;
  }
  new (&deviceOf(object)) Device(key, settings);
  object->Flags &= ~static_cast<ULONG>(DO_DEVICE_INITIALIZING);
  return STATUS_SUCCESS;
}

VOID NTAPI onUnload(PDRIVER_OBJECT) {}

}  // namespace

// The table of abstract classes refers to it; nothing calls it.
extern "C" void __cxa_pure_virtual() {}

extern "C" NTSTATUS NTAPI DriverEntry(PDRIVER_OBJECT driver, PUNICODE_STRING registryPath) {
  driver->DriverExtension->AddDevice = onAddDevice;
  driver->DriverUnload = onUnload;
  driver->MajorFunction[IRP_MJ_PNP] = onPlugAndPlay;
  driver->MajorFunction[IRP_MJ_INTERNAL_DEVICE_CONTROL] = onRequest;
  hid::MinidriverRegistration registration = {hid::revision,  driver, registryPath,
                                              sizeof(Device), FALSE,  {}};
  return HidRegisterMinidriver(&registration);
}
