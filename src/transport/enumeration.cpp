#include "transport/enumeration.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "models/families.h"
#include "platform/com.h"
#include "platform/text.h"
#include "platform/video_inputs.h"
#include "state/device_state.h"

namespace qvx {

namespace {

// The vendor id as it stands in a device path. The path is searched before it is lower-cased.
constexpr char vendorMarker[] = "vid_3c7e";
constexpr std::size_t lastMarkerPosition = 600;

bool isOurs(const std::string& path) {
  const std::size_t position = path.find(vendorMarker);
  return position != std::string::npos && position > 0 && position <= lastMarkerPosition;
}

std::string lowerCased(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// Stores each camera's path, and its name if asked for, from entry 0 on; a ninth camera is
// left out. Entries beyond the new count keep what they had. Returns the count.
std::size_t storeCameras(bool withNames) {
  // COM stays initialised: the application's thread goes on to use it for the video stream.
  platform::initializeCom();
  std::size_t count = 0;
  for (const platform::VideoInput& input : platform::listVideoInputs()) {
    std::string path;
    Wchar_tToString(path, input.displayName.c_str());
    if (!isOurs(path)) continue;
    if (count == strOrvaDevice.size()) break;
    strOrvaDevice[count] = lowerCased(path);
    if (withNames) strOrvaDeviceName[count] = platform::wideToAnsi(input.friendlyName);
    ++count;
  }
  return count;
}

// Brings the first entries of a table in the order of the path table's product ids: USB 3 cameras
// last, otherwise as they were.
void putUsb3Last(DeviceTable& table, DeviceTable& scratch, std::size_t count) {
  std::size_t placed = 0;
  for (const int usb3 : {0, 1}) {
    for (std::size_t i = 0; i < count; ++i) {
      if (isVK73xxxSeries(productIdIn(strOrvaDevice[i])) == usb3) scratch[placed++] = table[i];
    }
  }
  std::copy_n(scratch.begin(), count, table.begin());
}

}  // namespace

void refreshDevicePaths(int deviceIndex) {
  if (isWifiDevice(deviceIndex)) return;
  putUsb3Last(strOrvaDevice, strOrvaDeviceFx, storeCameras(false));
}

void refreshDevicePathsAndProductId(int deviceIndex) {
  if (isWifiDevice(deviceIndex)) return;
  const std::size_t count = storeCameras(false);
  if (count > 0) nCurrPid = productIdIn(strOrvaDevice[count - 1]);
  putUsb3Last(strOrvaDevice, strOrvaDeviceFx, count);
}

void refreshDeviceNames(int deviceIndex) {
  if (deviceIndex == wifiDeviceIndex) return;
  putUsb3Last(strOrvaDeviceName, strOrvaDeviceNameFx, storeCameras(true));
}

wchar_t* chr2wch(const char* text) {
  const std::wstring wide = platform::ansiToWide(text);
  auto* copy = new wchar_t[wide.size() + 1];
  std::copy(wide.begin(), wide.end(), copy);
  copy[wide.size()] = L'\0';
  return copy;
}

void Wchar_tToString(std::string& out, const wchar_t* text) {
  out = text == nullptr ? std::string() : platform::wideToOem(text);
}

}  // namespace qvx
