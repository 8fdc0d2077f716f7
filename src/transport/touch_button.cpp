#include "transport/touch_button.h"

#include "state/device_state.h"
#include "transport/bridge_chip.h"
#include "transport/usb3.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

constexpr std::uint8_t usb3ButtonCode = 0x13;

constexpr int buttonPort = 1;  // of the Wi-Fi camera's pins
constexpr int latchPin = 0x10;

constexpr std::uint32_t buttonBit = 0x80, buttonBit4xx7 = 0x10;

}  // namespace

std::uint8_t sampleUsb3Button() {
  sendUsb3(Usb3Selector::buttonSample, {usb3ButtonCode});
  return fetchUsb3(Usb3Selector::buttonSample);
}

void acknowledgeUsb3Button(Acknowledge which) {
  sendUsb3(Usb3Selector::buttonAcknowledge, {usb3ButtonCode, 0x00},
           static_cast<std::uint16_t>(which));
}

int readButtonPins() {
  return loadUrlwWininet(CMD_GPIO_R(s_mainhttp, buttonPort));
}

void clearButtonLatch() {
  loadUrlwWininet(CMD_GPIO_W(s_mainhttp, buttonPort, latchPin, 0));
}

bool buttonBitSet4xx7() {
  return (readBridge(VideoDeviceIndex, bridge::button4xx7) & buttonBit4xx7) != 0;
}

bool buttonBitSet() {
  return (readBridge(VideoDeviceIndex, bridge::button) & buttonBit) != 0;
}

int IsPID7x15PKeyFire(int /*pid*/) {
  return takeButtonPress(VideoDeviceIndex) ? 1 : 0;
}

}  // namespace qvx
