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
constexpr int lastUsbDeviceIndex = 8;

// The Wi-Fi camera, for the operations that take -1 for it, too.
inline bool isWifiDevice(int deviceIndex) {
  return deviceIndex == chooseAutomatically || deviceIndex == wifiDeviceIndex;
}

inline int VideoDeviceIndex =
    0;                          // the current device; written by SetVideoDeviceIndex and Init only
inline int nPid = 0;            // USB product id of the current camera, 0 = unknown
inline int nCurrPid = 0;        // product id most recently parsed
inline int nTmpIdx = 0;         // device index that register reads use
inline std::uint8_t bWait = 0;  // 1 = the magnification timer may sample
inline int bMAGSeries = -1;     // 1 = the camera reads its magnification; -1 = undecided
inline int m_EnableMT = 0;      // 1 = the touch button is polled
inline std::string s_mainhttp;  // base URL of the Wi-Fi camera, set by Init

using DeviceTable = std::array<std::string, 8>;
inline DeviceTable strOrvaDevice;        // lower-cased device path of each camera
inline DeviceTable strOrvaDeviceName;    // friendly name of each camera
inline DeviceTable strOrvaDeviceFx;      // where the paths are reordered
inline DeviceTable strOrvaDeviceNameFx;  // where the names are reordered
inline DeviceTable strOrvaDeviceWF;      // never filled; part of the state's layout
inline DeviceTable strOrvaDeviceWFName;  // never filled; part of the state's layout

// Controller registers read from the Wi-Fi camera by Init.
inline std::uint32_t n80 = 0, n83 = 0, n84 = 0;
inline std::uint32_t nC0 = 0, nC1 = 0, nC2 = 0, nC3 = 0, nC4 = 0, nC5 = 0;

// Controller registers that decide how the camera is set up, whatever the transport.
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
