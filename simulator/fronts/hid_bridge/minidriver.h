// The interface between the system's HID class driver and a minidriver, of which mingw-w64 lacks
// parts, and the kernel's declarations in a form that C++ accepts.
#pragma once

// The kernel's header defines these two intrinsics as functions.
#include <intrin.h>
#define InterlockedBitTestAndSet InterlockedBitTestAndSetOfKernel
#define InterlockedBitTestAndReset InterlockedBitTestAndResetOfKernel
#include <ntddk.h>
#undef InterlockedBitTestAndSet
#undef InterlockedBitTestAndReset

namespace hid {

constexpr ULONG request(ULONG function, ULONG method) {
  return CTL_CODE(FILE_DEVICE_KEYBOARD, function, method, FILE_ANY_ACCESS);
}

constexpr ULONG getDeviceDescriptor = request(0, METHOD_NEITHER);
constexpr ULONG getReportDescriptor = request(1, METHOD_NEITHER);
constexpr ULONG getString = request(4, METHOD_NEITHER);
constexpr ULONG getDeviceAttributes = request(9, METHOD_NEITHER);
constexpr ULONG setFeature = request(100, METHOD_IN_DIRECT);
constexpr ULONG getFeature = request(100, METHOD_OUT_DIRECT);

constexpr ULONG revision = 1;

struct MinidriverRegistration {
  ULONG revision;
  PDRIVER_OBJECT driver;
  PUNICODE_STRING registryPath;
  ULONG deviceExtensionSize;
  BOOLEAN devicesArePolled;
  UCHAR reserved[3];
};

// The layout of the device extension, filled in by the class driver.
struct DeviceExtension {
  PDEVICE_OBJECT physicalDevice, nextDevice;
  PVOID minidriverExtension;
};

struct Attributes {
  ULONG size = sizeof(Attributes);
  USHORT vendorId, productId, version = 0x0100;
  USHORT reserved[11] = {};
};

struct TransferPacket {
  PUCHAR report;  // its id in byte 0
  ULONG size;
  UCHAR id;
};

#pragma pack(push, 1)
struct Descriptor {
  UCHAR size = sizeof(Descriptor), type = 0x21;
  USHORT hidVersion = 0x0111;
  UCHAR country = 0, descriptorCount = 1;
  UCHAR reportType = 0x22;
  USHORT reportSize;
};
#pragma pack(pop)

}  // namespace hid

// Kernel functions that mingw-w64 does not declare.
extern "C" {
NTSTATUS NTAPI ZwFsControlFile(HANDLE file, HANDLE event, PIO_APC_ROUTINE routine, PVOID context,
                               PIO_STATUS_BLOCK status, ULONG code, PVOID input, ULONG inputSize,
                               PVOID output, ULONG outputSize);
NTSTATUS NTAPI ZwWaitForSingleObject(HANDLE object, BOOLEAN alertable, PLARGE_INTEGER limit);
NTSTATUS NTAPI ZwCancelIoFile(HANDLE file, PIO_STATUS_BLOCK status);
}

extern "C" NTSTATUS NTAPI HidRegisterMinidriver(hid::MinidriverRegistration* registration);
