// USB 3 cameras (product ids 0x9B0 to 0x9BF), driven through libusbK with USB class requests.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "platform/libusbk.h"

namespace qvx {

constexpr int cameraVendorId = 0x3C7E;

inline platform::KLST_HANDLE deviceList = nullptr;    // freed on U3Open's failure paths only
inline platform::KLST_DEVINFO* deviceInfo = nullptr;  // the device chosen for opening
inline platform::KUSB_DRIVER_API Usb{};               // functions of the chosen device's driver
inline platform::KUSB_HANDLE handle = nullptr;        // the opened camera; never closed
inline platform::WINUSB_PIPE_INFORMATION pipeInfo{};  // the pipe being listed
inline std::uint8_t pipeIndex = 0;                    // the next pipe to list; never reset
inline std::uint32_t ec = 0;                          // error of the last open that failed

// Finds, opens and describes the camera whose product id is `nPid`, and switches the polling of the
// touch button off. Returns 0 when there is none, otherwise whether the opened device answered.
// Prints what it finds to standard output.
int U3Open();

// Number of devices in the current device list, 0 without one.
int usb3DeviceCount();

// Selectors of the camera's vendor controls, addressed to entity 3 of interface 0.
enum class Usb3Selector : std::uint16_t {
  buttonAcknowledge = 0x0200,
  buttonSample = 0x0201,    // SET_CUR arms it, GET_CUR takes the sample
  busWrite = 0x0300,        // {I2C address, register (a sensor's has two bytes), value}
  sensorRead = 0x0301,      // SET_CUR {I2C address, register high, low}, then GET_CUR
  lensDriver = 0x0302,      // {I2C address, two bytes}: direction switch and voice coil
  controllerRead = 0x0303,  // SET_CUR {I2C address, register}, then GET_CUR
  lensPosition = 0x0304,    // {I2C address, position}
};

// SET_CUR of the bytes. Whether the camera took them is not reported: nothing depends on it.
void sendUsb3(Usb3Selector selector, std::initializer_list<std::uint8_t> bytes);

// The same with a set-up packet that announces another length than the bytes have.
void sendUsb3(Usb3Selector selector, std::initializer_list<std::uint8_t> bytes,
              std::uint16_t announcedLength);

// GET_CUR of one byte; 255 when the camera does not answer.
std::uint8_t fetchUsb3(Usb3Selector selector);

}  // namespace qvx
