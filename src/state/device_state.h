// The process-wide device state. The application chooses a device index, calls Init, and every
// other operation consults these variables. They belong to the application's thread: the timers
// run on it too, so none of them is locked.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace qvx {

constexpr int wifiDeviceIndex = 90;
constexpr int chooseAutomatically = -1;
// The last index that Init takes for a USB camera's. The tables below have no entry for it: such a
// camera has no path and product id 0, but is reached behind its bridge all the same.
constexpr int lastUsbDeviceIndex = 8;

// The Wi-Fi camera, for the operations that take -1 for it, too.
inline bool isWifiDevice(int deviceIndex) {
  return deviceIndex == chooseAutomatically || deviceIndex == wifiDeviceIndex;
}

inline int VideoDeviceIndex = 0;  // the current device; only SetVideoDeviceIndex and Init write it
inline int nPid = 0;              // USB product id of the current camera, 0 = unknown
inline int nCurrPid = 0;          // product id most recently parsed
inline int nTmpIdx = 0;           // device index that register reads use
inline std::uint8_t bWait = 0;    // 1 = the magnification timer may sample
inline int m_EnableMT = 0;        // 1 = the touch button is polled
inline std::string s_mainhttp;    // base URL of the Wi-Fi camera, set by Init

using DeviceTable = std::array<std::string, 8>;
inline DeviceTable strOrvaDevice;        // lower-cased device path of each camera
inline DeviceTable strOrvaDeviceName;    // friendly name of each camera
inline DeviceTable strOrvaDeviceFx;      // where the paths are reordered
inline DeviceTable strOrvaDeviceNameFx;  // where the names are reordered

// Controller registers that decide how the camera is set up, whatever the transport. n80, nC3 and
// nC5 in kept_state.h are others, which nothing goes by.
inline std::uint32_t ul80 = 0, ul84 = 0, ulC3 = 0, ulC5 = 0;

// The entry of a device table, null for an index outside it.
std::string* entryAt(DeviceTable& table, int index);

// The same by value: an index outside the table reads as an empty entry.
std::string entryOf(DeviceTable& table, int index);

// The product id in a device path: the four hexadecimal digits after "pid_", 0 without them.
int productIdIn(const std::string& devicePath);

// The product id of the camera at a device index, 0 when there is none.
int productIdOf(int deviceIndex);

}  // namespace qvx
