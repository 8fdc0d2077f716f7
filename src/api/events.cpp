#include "api/events.h"

#include <array>

#include "api/guard.h"
#include "controls/device_selection.h"
#include "controls/magnification.h"
#include "etlib2/etLib2.h"
#include "models/families.h"
#include "platform/timers.h"
#include "state/device_state.h"
#include "transport/usb3.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

constexpr std::uintptr_t buttonTimer = 0;
constexpr std::uintptr_t magnificationTimer = 999;
constexpr std::uint32_t timerPeriod_ms = 250;

enum BridgeRegister : std::uint32_t { buttonRegister = 0x0085, buttonRegister4xx7 = 0x0608 };
constexpr std::uint32_t buttonBit = 0x80, buttonBit4xx7 = 0x10;

constexpr std::uint8_t usb3ButtonCode = 0x13;

constexpr int buttonPort = 1;      // of the Wi-Fi camera's pins
constexpr int pressedPins = 0x18;  // 7xxx: touched, and latched
constexpr int latchPin = 0x10;

constexpr std::uint8_t buttonCommand = 0xF0;
enum ButtonReply : std::uint8_t { plainReply = 0xF4, buttonQuery = 0xF5 };

// Fires on the third sample of a press: one to see it, one to confirm it, one to act on it. A
// released sample counts as the first one from idle and is overlooked afterwards.
void pollUsb3Button() {
  using timer_2_proc::barry;
  sendUsb3(Usb3Selector::buttonSample, {usb3ButtonCode});
  const std::uint8_t sample = fetchUsb3(Usb3Selector::buttonSample);
  if (sample == 1 && barry == -1) {
    // Two bytes are sent although one is announced: the firmware takes the first press that way.
    sendUsb3(Usb3Selector::buttonAcknowledge, {usb3ButtonCode, 0x00}, 1);
    barry = 0;
  } else if (sample == 0 && barry == -1) {
    barry = 0;
  } else if (sample == 1 && barry == 0) {
    barry = 1;
  } else if (sample == 1) {
    sendUsb3(Usb3Selector::buttonAcknowledge, {usb3ButtonCode, 0x00});
    fireEvent();
    barry = -1;
  }
}

// Bridge cameras: fires when the bit comes on after having been off.
void fireWhenSet(std::uint32_t value, std::uint32_t bit) {
  if ((value & bit) == 0) {
    m_MT = 1;
  } else if (m_MT == 1) {
    m_MT = 0;
    fireEvent();
  }
}

// Wi-Fi cameras: fires once when the button reads as pressed. Returns whether it did.
bool startsPress(bool pressed) {
  const bool starts = pressed && m_MT == 0;
  if (!pressed) m_MT = 0;
  if (starts) m_MT = 1;
  return starts;
}

// Families that show the button in a plain bit. The third predicate refreshes `ul80`.
bool hasPlainButton() {
  return isVK4xxxSeries(nPid) || isVR3xxxSeries(nPid) || isVR4xxxSeries(nPid) ||
         isVK7xxxR4Series(nPid);
}

void pollWifiButton() {
  const int pins = loadUrlwWininet(CMD_GPIO_R(s_mainhttp, buttonPort));
  if (isVK7xxxSeries(nPid)) {
    const bool pressed = (pins & pressedPins) == pressedPins;
    if (pressed && m_MT == 0) loadUrlwWininet(CMD_GPIO_W(s_mainhttp, buttonPort, latchPin, 0));
    if (startsPress(pressed)) fireEvent();
  }
  if (hasPlainButton() && startsPress(pins < 0)) fireEvent();
}

std::uint32_t readButtonRegister(BridgeRegister reg) {
  std::uint32_t value = 0;
  etLib2_RegRead_DevNum(static_cast<std::uint32_t>(VideoDeviceIndex), reg, 1, &value);
  return value;
}

void pollBridgeButton() {
  const std::uint32_t value = readButtonRegister(buttonRegister);
  if (isVK7xxxSeries(nPid)) {
    if (IsPID7x15PKeyFire(nPid) == 1) fireEvent();
  } else if (hasPlainButton()) {
    fireWhenSet(value, buttonBit);
  }
}

void pollButton() {
  selectProductId(VideoDeviceIndex);
  if (m_EnableMT == 0) return;
  if (isVK73xxxSeries(nPid)) pollUsb3Button();  // and the branches below are tried, too
  if (isVk4xx7Series(nPid)) {
    fireWhenSet(readButtonRegister(buttonRegister4xx7), buttonBit4xx7);
  } else if (isWifiDevice(VideoDeviceIndex)) {
    pollWifiButton();
  } else {
    pollBridgeButton();
  }
}

}  // namespace

void setEventCallback(EventCallback callback) {
  OnEvent = callback;
  platform::startThreadTimer(buttonTimer, timerPeriod_ms, Timer2Proc);
}

void fireEvent() {
  if (OnEvent != nullptr) OnEvent();
}

int enablePressKey(int enable) {
  m_EnableMT = enable == 1 ? 1 : 0;
  return m_EnableMT;
}

// Asks even while polling is switched off: whoever calls has looked.
int IsPID7x15PKeyFire(int /*pid*/) {
  const auto device = static_cast<std::uint32_t>(VideoDeviceIndex);
  constexpr std::uint8_t length = 40;
  std::array<std::uint8_t, 32> block = {buttonQuery};
  etLib2_Custom_CMD_Read(device, buttonCommand, length, block.data());
  const bool pressed = (block[0] == plainReply || block[0] == buttonQuery) && block[2] == 1;
  if (!pressed) return 0;
  block[0] = buttonQuery;
  etLib2_Custom_CMD_Write(device, buttonCommand, length, block.data());
  return 1;
}

void Timer2Proc(void* /*window*/, unsigned /*message*/, std::uintptr_t /*identifier*/,
                std::uint32_t /*time*/) noexcept {
  guarded(pollButton);
}

void Timer2MAGProc(void* /*window*/, unsigned /*message*/, std::uintptr_t /*identifier*/,
                   std::uint32_t /*time*/) noexcept {
  guarded([] {
    if (bWait == 1) Count890Rate();
  });
}

void startMagnificationTimer() {
  platform::startThreadTimer(magnificationTimer, timerPeriod_ms, Timer2MAGProc);
}

}  // namespace qvx
