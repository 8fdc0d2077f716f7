// A HID minidriver for virtual bridge cameras: it forwards every feature report to the simulator.
// It imports from the kernel and the HID class driver only: with any other import Wine takes it for
// an ordinary DLL.
#include "simulator/fronts/hid_bridge/minidriver.h"

#include <new>

#include "simulator/fronts/hid_bridge/camera_pipe.h"

namespace {

using namespace qvx::simulator;

// The camera, from the device's own registry key.
bool readRecord(PDEVICE_OBJECT device, CameraRecord& camera) {
  constexpr ULONG headSize = FIELD_OFFSET(KEY_VALUE_PARTIAL_INFORMATION, Data);
  alignas(8) UCHAR buffer[headSize + sizeof camera];
  HANDLE key = nullptr;
  if (IoOpenDeviceRegistryKey(device, PLUGPLAY_REGKEY_DEVICE, KEY_READ, &key) != STATUS_SUCCESS) {
    return false;
  }
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, recordValueName);
  ULONG size = 0;
  const NTSTATUS status =
      ZwQueryValueKey(key, &name, KeyValuePartialInformation, buffer, sizeof buffer, &size);
  ZwClose(key);
  if (status != STATUS_SUCCESS || size != sizeof buffer) return false;
  RtlCopyMemory(&camera, buffer + headSize, sizeof camera);
  return true;
}

// A device, in the extension that the class driver provides.
struct Device {
  explicit Device(const CameraRecord& record) : camera(record) {
    KeInitializeEvent(&turn, SynchronizationEvent, TRUE);
  }

  KEVENT turn;  // set while no transfer is at work
  const CameraRecord camera;
  CameraPipe pipe{camera.pipe};
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

NTSTATUS transferFeature(Device& device, PIRP irp, bool set) {
  auto& packet = *static_cast<hid::TransferPacket*>(irp->UserBuffer);
  const RequestHead head{set ? RequestKind::setFeature : RequestKind::getFeature,
                         packet.id,
                         {},
                         set ? 0 : packet.size};
  KeWaitForSingleObject(&device.turn, Executive, KernelMode, FALSE, nullptr);
  ULONG size = 0;
  const bool done =
      device.pipe.ask(head, packet.report, set ? packet.size : 0, packet.report, size);
  KeSetEvent(&device.turn, IO_NO_INCREMENT, FALSE);
  return done ? complete(irp, STATUS_SUCCESS, set ? packet.size : size)
              : complete(irp, STATUS_UNSUCCESSFUL);
}

NTSTATUS describe(const Device& device, PIRP irp) {
  constexpr UCHAR hidDescriptorType = 0x21, reportDescriptorType = 0x22;
  constexpr USHORT hidVersion = 0x0111;
  const auto reportSize = device.camera.reportDescriptorSize;
  const hid::Descriptor descriptor = {sizeof descriptor,    hidDescriptorType, hidVersion, 0, 1,
                                      reportDescriptorType, reportSize};
  return answer(irp, &descriptor, sizeof descriptor);
}

NTSTATUS tellAttributes(const Device& device, PIRP irp) {
  constexpr USHORT version = 0x0100;
  const hid::Attributes attributes = {
      sizeof attributes, device.camera.vendorId, device.camera.productId, version, {}};
  return answer(irp, &attributes, sizeof attributes);
}

NTSTATUS NTAPI onRequest(PDEVICE_OBJECT object, PIRP irp) {
  static constexpr wchar_t name[] = L"Simulated microscope";
  Device& device = deviceOf(object);
  switch (IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl.IoControlCode) {
    case hid::getDeviceDescriptor:
      return describe(device, irp);
    case hid::getReportDescriptor:
      return answer(irp, device.camera.reportDescriptor, device.camera.reportDescriptorSize);
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
      deviceOf(object).pipe.close();
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
  CameraRecord camera;
  if (!readRecord(physical, camera)) return STATUS_UNSUCCESSFUL;
  new (&deviceOf(object)) Device(camera);
  object->Flags &= ~static_cast<ULONG>(DO_DEVICE_INITIALIZING);
  return STATUS_SUCCESS;
}

VOID NTAPI onUnload(PDRIVER_OBJECT) {}

}  // namespace

extern "C" NTSTATUS NTAPI DriverEntry(PDRIVER_OBJECT driver, PUNICODE_STRING registryPath) {
  driver->DriverExtension->AddDevice = onAddDevice;
  driver->DriverUnload = onUnload;
  driver->MajorFunction[IRP_MJ_PNP] = onPlugAndPlay;
  driver->MajorFunction[IRP_MJ_INTERNAL_DEVICE_CONTROL] = onRequest;
  hid::MinidriverRegistration registration = {hid::revision,  driver, registryPath,
                                              sizeof(Device), FALSE,  {}};
  return HidRegisterMinidriver(&registration);
}
