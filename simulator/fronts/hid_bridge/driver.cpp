// A HID minidriver for simulated bridge cameras: it forwards every feature report to the simulator.
// It imports from the kernel and the HID class driver only: with any other import Wine would load
// it as an ordinary DLL.
#include "simulator/fronts/hid_bridge/device.h"

#include <new>

namespace {

using namespace qvx::simulator;

// Reads the camera's record from the device's registry key.
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

template <class Value>
NTSTATUS answer(PIRP irp, const Value& value, std::size_t size = sizeof(Value)) {
  const PIO_STACK_LOCATION location = IoGetCurrentIrpStackLocation(irp);
  if (location->Parameters.DeviceIoControl.OutputBufferLength < size) {
    return complete(irp, STATUS_BUFFER_TOO_SMALL);
  }
  RtlCopyMemory(irp->UserBuffer, &value, size);
  return complete(irp, STATUS_SUCCESS, size);
}

NTSTATUS transferFeature(Device& device, PIRP irp, bool sets) {
  const auto& packet = *static_cast<hid::TransferPacket*>(irp->UserBuffer);
  ULONG size = packet.size;
  const bool done = device.transfer({RequestKind::feature, sets, packet.id}, packet.report, size);
  return done ? complete(irp, STATUS_SUCCESS, size) : complete(irp, STATUS_UNSUCCESSFUL);
}

NTSTATUS NTAPI onRequest(PDEVICE_OBJECT object, PIRP irp) {
  static constexpr wchar_t name[] = L"Simulated microscope";
  Device& device = deviceOf(object);
  const CameraRecord& camera = device.camera;
  switch (IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl.IoControlCode) {
    case hid::getDeviceDescriptor:
      return answer(irp, hid::Descriptor{.reportSize = camera.reportDescriptorSize});
    case hid::getReportDescriptor:
      return answer(irp, camera.reportDescriptor, camera.reportDescriptorSize);
    case hid::getDeviceAttributes:
      return answer(irp,
                    hid::Attributes{.vendorId = camera.vendorId, .productId = camera.productId});
    case hid::getString:
      return answer(irp, name);
    case hid::setFeature:
      return transferFeature(device, irp, true);
    case hid::getFeature:
      return transferFeature(device, irp, false);
    default:
      return complete(irp, STATUS_NOT_SUPPORTED);
  }
}

// Accepts every change of state; queries are passed on to the bus driver.
NTSTATUS NTAPI onPlugAndPlay(PDEVICE_OBJECT object, PIRP irp) {
  const UCHAR minor = IoGetCurrentIrpStackLocation(irp)->MinorFunction;
  if (minor == IRP_MN_REMOVE_DEVICE) deviceOf(object).close();
  if (minor <= IRP_MN_CANCEL_STOP_DEVICE || minor == IRP_MN_SURPRISE_REMOVAL) {
    irp->IoStatus.Status = STATUS_SUCCESS;
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

}  // namespace

extern "C" NTSTATUS NTAPI DriverEntry(PDRIVER_OBJECT driver, PUNICODE_STRING registryPath) {
  driver->DriverExtension->AddDevice = onAddDevice;
  driver->DriverUnload = [](PDRIVER_OBJECT) {};
  driver->MajorFunction[IRP_MJ_PNP] = onPlugAndPlay;
  driver->MajorFunction[IRP_MJ_INTERNAL_DEVICE_CONTROL] = onRequest;
  // Polled: the class driver would repeat the refused read of an input report without a pause.
  hid::MinidriverRegistration registration = {hid::revision,  driver, registryPath,
                                              sizeof(Device), TRUE,   {}};
  return HidRegisterMinidriver(&registration);
}
