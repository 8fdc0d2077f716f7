#include "api/init.h"

#include "api/events.h"
#include "controls/magnification.h"
#include "etlib2/etLib2.h"
#include "models/families.h"
#include "platform/process.h"
#include "platform/timers.h"
#include "state/kept_state.h"
#include "transport/camera_bus.h"
#include "transport/controller.h"
#include "transport/enumeration.h"
#include "transport/usb3.h"
#include "transport/wifi.h"
#include "transport/wifi_camera.h"

namespace qvx {

namespace {

constexpr std::uint32_t pauseAfterSelection_ms = 100;
constexpr std::uint32_t exceptionMasks = 0x8001F;  // of the floating-point control word
constexpr std::uint32_t magnificationBit = 0x40;   // of the feature register 0x80

void takeProductIdOf(int deviceIndex) {
  nCurrPid = productIdOf(deviceIndex);
  nPid = nCurrPid;
}

void chooseUsb3Camera() {
  U3Open();
  if (usb3DeviceCount() <= 0) return;
  VideoDeviceIndex = 0;
  refreshDevicePaths(VideoDeviceIndex);
  nPid = productIdOf(VideoDeviceIndex);
}

// False on the first two failure exits.
bool openUsbCameras(bool wifi) {
  if (etLib2_Init() != 0) {
    U3Open();
    return true;
  }
  // A layer that reports cameras it could not open; this one never does.
  if (etLib2_GetDevTotalNum() > 0 && !wifi) {
    if (VideoDeviceIndex == chooseAutomatically) return false;
    refreshDevicePaths(VideoDeviceIndex);
    takeProductIdOf(VideoDeviceIndex);
    nTmpIdx = VideoDeviceIndex;
    U3Open();
  }
  return wifi || VideoDeviceIndex != chooseAutomatically || nPid == 0;
}

void readWifiRegisters() {
  const struct {
    std::uint32_t reg;
    std::uint32_t* value;
  } registers[] = {{0x80, &n80}, {0x83, &n83}, {0x84, &n84}, {0xC0, &nC0}, {0xC1, &nC1},
                   {0xC2, &nC2}, {0xC3, &nC3}, {0xC4, &nC4}, {0xC5, &nC5}};
  for (const auto& [reg, value] : registers) *value = ReadPIC(reg);
}

bool isUsbIndex(int deviceIndex) {
  return deviceIndex >= 0 && deviceIndex <= lastUsbDeviceIndex;
}

void settleDevice(bool wifi) {
  if (VideoDeviceIndex == chooseAutomatically) VideoDeviceIndex = wifi ? wifiDeviceIndex : 0;
  refreshDevicePaths(VideoDeviceIndex);
  platform::pause(pauseAfterSelection_ms);
  // A USB camera that was chosen by its index wins over the Wi-Fi camera.
  if (!wifi || (etLib2_GetDevTotalNum() >= 1 && isUsbIndex(VideoDeviceIndex))) {
    takeProductIdOf(VideoDeviceIndex);
    nTmpIdx = VideoDeviceIndex;
  } else {
    nPid = nCurrPid;
    nTmpIdx = wifiDeviceIndex;
  }
}

// Some of the predicates refresh `ul80` themselves, so the order and the repeats are traffic that
// the camera sees.
void readFeatureRegister() {
  if (isVK73xxxSeries(nPid)) ul80 = ReadFromPIC(nTmpIdx, controller::features);
  if (isVR4xxxSeries(nPid) || isVK4xx7Series(nPid) || isVK7xxxSeries(nPid) ||
      isVR3xxxSeries(nPid)) {
    ul80 = ReadFromPIC(nTmpIdx, controller::features);
  }
}

constexpr Family alwaysReadsMagnification =
    within<range(0x890, 0x893), range(0x930, 0x93F), range(0x970, 0x97F), range(0x990, 0x99F)>;

bool featureBitSet() {
  return (ul80 & magnificationBit) != 0;
}

// A camera whose product id is unknown is taken to have the feature.
bool readsMagnification() {
  return alwaysReadsMagnification(nPid) || (isVK73xxxSeries(nPid) && featureBitSet()) ||
         (isVR4xxxSeries(nPid) && featureBitSet()) || (isVK4xx7Series(nPid) && featureBitSet()) ||
         nPid == 0;
}

void setUpMagnification() {
  bMAGSeries = 1;
  // Index 0 stays on the bus it is on.
  if (VideoDeviceIndex > 0 && VideoDeviceIndex <= lastUsbDeviceIndex) {
    selectCameraBus(VideoDeviceIndex);
  }
  for (const std::uint32_t primed : {0xC0u, 0xC1u, 0xC2u, 0x01u}) {
    ReadFromPIC(VideoDeviceIndex, primed);
  }
  ulC3 = ReadFromPIC(VideoDeviceIndex, controller::calibrationKind);
  ulC5 = ReadFromPIC(VideoDeviceIndex, controller::calibrationDegree);
  loadMagnificationCalibration();
  Count890Rate();
  startMagnificationTimer();
}

}  // namespace

int initialize() {
  readWifiAddress();
  s_mainhttp = wifiBaseUrl();
  buildReadUrls();
  const bool wifi = VideoDeviceIndex == wifiDeviceIndex && wifiCameraAnswers();
  const std::uint32_t floatingPoint = platform::floatingPointControl(0, 0);
  etLib2_Release();
  if (VideoDeviceIndex == chooseAutomatically && !wifi) chooseUsb3Camera();
  if (!openUsbCameras(wifi)) return 0;
  // The transports' libraries may have changed the exception masks.
  platform::floatingPointControl(floatingPoint, exceptionMasks);
  if (etLib2_GetDevTotalNum() == 0 && !wifi && nPid != usb3ReadablePid) return 0;
  if (wifi) {
    readWifiDeviceList();
    readWifiRegisters();
  }
  if (etLib2_GetDevTotalNum() >= 1 || wifi || isVK73xxxSeries(nPid)) {
    settleDevice(wifi);
    readFeatureRegister();
    if (readsMagnification()) setUpMagnification();
  }
  bWait = 1;
  return 1;
}

}  // namespace qvx
