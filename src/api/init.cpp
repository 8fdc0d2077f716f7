#include "api/init.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "api/events.h"
#include "controls/magnification.h"
#include "etlib2/etLib2.h"
#include "models/families.h"
#include "platform/internet.h"
#include "platform/process.h"
#include "platform/timers.h"
#include "state/device_state.h"
#include "state/read_urls.h"
#include "transport/controller.h"
#include "transport/enumeration.h"
#include "transport/usb3.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

constexpr std::uint32_t probeTimeout_ms = 2000;
constexpr std::uint32_t pauseAfterSelection_ms = 100;
constexpr std::uint32_t exceptionMasks = 0x8001F;  // of the floating-point control word
constexpr int usb3OnlyPid = 0x9B0;
constexpr std::uint32_t magnificationBit = 0x40;  // of the feature register 0x80

// In the order they are built.
const struct {
  std::string* url;
  int reg;
} readUrls[] = {
    {&sReg00, 0x00}, {&sReg01, 0x01}, {&sReg02, 0x02}, {&sRegC0, 0xC0}, {&sRegC1, 0xC1},
    {&sRegC2, 0xC2}, {&sRegC3, 0xC3}, {&sRegC4, 0xC4}, {&sRegC5, 0xC5}, {&sReg60, 0x60},
    {&sReg61, 0x61}, {&sReg62, 0x62}, {&sReg63, 0x63}, {&sReg64, 0x64}, {&sReg65, 0x65},
    {&sReg66, 0x66}, {&sReg67, 0x67}, {&sReg68, 0x68}, {&sReg69, 0x69}, {&sReg6A, 0x6A},
    {&sReg6B, 0x6B}, {&sReg6C, 0x6C}, {&sReg6D, 0x6D}, {&sReg6E, 0x6E}, {&sReg6F, 0x6F},
    {&sReg40, 0x40}, {&sReg41, 0x41}, {&sReg42, 0x42}, {&sReg43, 0x43}, {&sReg44, 0x44},
    {&sReg45, 0x45}, {&sReg46, 0x46}, {&sReg47, 0x47}, {&sReg48, 0x48}, {&sReg49, 0x49},
    {&sReg4A, 0x4A}, {&sReg4B, 0x4B}, {&sReg80, 0x80}, {&sReg81, 0x81}, {&sReg83, 0x83},
    {&sReg84, 0x84}, {&sReg50, 0x50},
};

void buildReadUrls() {
  for (const auto& [url, reg] : readUrls)
    *url = CMD_I2C_R(s_mainhttp, controllerAddress, reg, 1, 1);
}

bool wifiCameraAnswers() {
  const platform::InternetHandle session = platform::openInternetSession(downloadAgent);
  platform::setInternetTimeouts(session, probeTimeout_ms, probeTimeout_ms);
  const bool answers = openCameraUrl(session, s_mainhttp) != nullptr;
  platform::closeInternetHandle(session);
  // The request stays open on purpose: nobody reads the camera's home page, and it goes with the
  // session.
  return answers;
}

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

// Looks for the maker's vendor id in one chunk of the camera's device list; the product id's four
// digits stand a fixed way behind it. The last camera of the list wins.
void takeProductIdsIn(const std::string& chunk) {
  constexpr char vendorId[] = "0x3c7e";
  constexpr std::size_t digitsOffset = 25, digitsLength = 4;
  for (std::size_t at = chunk.find(vendorId); at != std::string::npos;
       at = chunk.find(vendorId, at + 1)) {
    if (at + digitsOffset + digitsLength > chunk.size()) return;
    const std::string digits = chunk.substr(at + digitsOffset, digitsLength);
    nCurrPid = static_cast<int>(std::strtol(digits.c_str(), nullptr, 16));
    nPid = nCurrPid;
  }
}

void readWifiDeviceList() {
  const platform::InternetHandle session = platform::openInternetSession(downloadAgent);
  const platform::InternetHandle request = openCameraUrl(session, s_mainhttp + "usbdevlist.json");
  char chunk[answerCapacity + 1];
  std::uint32_t received = 0;
  while (request != nullptr && platform::readUrl(request, chunk, answerCapacity, received) &&
         received != 0) {
    chunk[std::min(received, answerCapacity)] = '\0';
    takeProductIdsIn(chunk);  // as text, up to the first NUL
  }
  platform::closeInternetHandle(request);
  platform::closeInternetHandle(session);
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
  if (isVK73xxxSeries(nPid)) ul80 = ReadFromPIC(nTmpIdx, 0x80);
  if (isVR4xxxSeries(nPid) || isVK4xx7Series(nPid) || isVK7xxxSeries(nPid) ||
      isVR3xxxSeries(nPid)) {
    ul80 = ReadFromPIC(nTmpIdx, 0x80);
  }
}

bool pidWithin(int first, int last) {
  return nPid >= first && nPid <= last;
}

bool featureBitSet() {
  return (ul80 & magnificationBit) != 0;
}

// A camera whose product id is unknown is taken to have the feature.
bool readsMagnification() {
  return pidWithin(0x890, 0x893) || pidWithin(0x930, 0x93F) || pidWithin(0x970, 0x97F) ||
         pidWithin(0x990, 0x99F) || (isVK73xxxSeries(nPid) && featureBitSet()) ||
         (isVR4xxxSeries(nPid) && featureBitSet()) || (isVK4xx7Series(nPid) && featureBitSet()) ||
         nPid == 0;
}

void setUpMagnification() {
  bMAGSeries = 1;
  // Index 0 stays on the bus it is on.
  if (VideoDeviceIndex > 0 && VideoDeviceIndex <= lastUsbDeviceIndex) {
    etLib2_SelectI2cBus_DevNum(static_cast<std::uint32_t>(VideoDeviceIndex), cameraBus, 0);
  }
  for (const std::uint32_t primed : {0xC0u, 0xC1u, 0xC2u, 0x01u}) {
    ReadFromPIC(VideoDeviceIndex, primed);
  }
  ulC3 = ReadFromPIC(VideoDeviceIndex, 0xC3);
  ulC5 = ReadFromPIC(VideoDeviceIndex, 0xC5);
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
  if (etLib2_GetDevTotalNum() == 0 && !wifi && nPid != usb3OnlyPid) return 0;
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
