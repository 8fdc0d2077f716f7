// libusbK, the USB driver library of the USB 3 cameras: the part of its binary interface that
// this library calls, under libusbK's own names. The DLL comes with the camera's driver; where it
// is not installed every function below returns false and touches nothing.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qvx::platform {

using KLST_HANDLE = void*;       // a device list
using KUSB_HANDLE = void*;       // an opened device
using KUSB_BOOL = std::int32_t;  // 0 is failure

#pragma pack(push, 1)
struct WINUSB_SETUP_PACKET {
  std::uint8_t RequestType;
  std::uint8_t Request;
  std::uint16_t Value;
  std::uint16_t Index;
  std::uint16_t Length;
};
#pragma pack(pop)
static_assert(sizeof(WINUSB_SETUP_PACKET) == 8);

struct WINUSB_PIPE_INFORMATION {
  std::int32_t PipeType;
  std::uint8_t PipeId;
  std::uint16_t MaximumPacketSize;
  std::uint8_t Interval;
};
static_assert(sizeof(WINUSB_PIPE_INFORMATION) == 12);

struct KLST_DEV_COMMON_INFO {
  std::int32_t Vid;
  std::int32_t Pid;
  std::int32_t MI;
  char InstanceID[256];
};

struct KLST_DEVINFO {
  KLST_DEV_COMMON_INFO Common;
  std::int32_t DriverID;
  char DeviceInterfaceGUID[256];
  char DeviceID[256];
  char ClassGUID[256];
  char Mfg[256];
  char DeviceDesc[256];
  char Service[256];
  char SymbolicLink[256];
  char DevicePath[256];
  std::int32_t LUsb0FilterIndex;
  std::int32_t Connected;
  std::int32_t SyncFlags;
  std::int32_t BusNumber;
  std::int32_t DeviceAddress;
  char SerialNumber[256];
};
static_assert(sizeof(KLST_DEVINFO) == 2596);
static_assert(sizeof(KLST_DEV_COMMON_INFO) == 268);
static_assert(offsetof(KLST_DEVINFO, DriverID) == 268);

// The functions of one driver. Only those called here are spelled out.
struct KUSB_DRIVER_API {
  std::uint8_t Info[8];
  KUSB_BOOL (*Init)(KUSB_HANDLE* interfaceHandle, const KLST_DEVINFO* deviceInfo);
  void* unused_1[20];
  KUSB_BOOL(*QueryPipe)
  (KUSB_HANDLE interfaceHandle, std::uint8_t alternateSetting, std::uint8_t pipeIndex,
   WINUSB_PIPE_INFORMATION* pipe);
  void* unused_2[41];
};
static_assert(sizeof(KUSB_DRIVER_API) == 512);
static_assert(offsetof(KUSB_DRIVER_API, Init) == 8);
static_assert(offsetof(KUSB_DRIVER_API, QueryPipe) == 176);

// Makes a list of the devices that libusbK drives; its cursor stands before the first.
bool LstK_Init(KLST_HANDLE* deviceList, int flags);
bool LstK_Count(KLST_HANDLE deviceList, std::uint32_t* count);
bool LstK_FindByVidPid(KLST_HANDLE deviceList, int vid, int pid, KLST_DEVINFO** deviceInfo);

// Moves the cursor on and stores its record. Past the end it stores null and starts over.
bool LstK_MoveNext(KLST_HANDLE deviceList, KLST_DEVINFO** deviceInfo);
bool LstK_Free(KLST_HANDLE deviceList);
bool LibK_LoadDriverAPI(KUSB_DRIVER_API* driverApi, int driverId);

// One control transfer on the default pipe; waits until it is done.
bool UsbK_ControlTransfer(KUSB_HANDLE interfaceHandle, WINUSB_SETUP_PACKET setup,
                          std::uint8_t* buffer, std::uint32_t length, std::uint32_t* transferred);

}  // namespace qvx::platform
