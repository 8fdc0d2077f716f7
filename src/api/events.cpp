#include "api/events.h"

#include "api/guard.h"
#include "controls/device_selection.h"
#include "controls/magnification.h"
#include "models/families.h"
#include "platform/timers.h"
#include "state/device_state.h"
#include "transport/controller.h"
#include "transport/touch_button.h"

namespace qvx {

namespace {

constexpr std::uintptr_t buttonTimer = 0;
constexpr std::uintptr_t magnificationTimer = 999;
constexpr std::uint32_t timerPeriod_ms = 250;

// Fires on the third sample of a press: one to see it, one to confirm it, one to act on it. From
// idle, a released sample counts as the first one; afterwards it is ignored.
void pollUsb3Button() {
  using timer_2_proc::barry;
  const std::uint8_t sample = sampleUsb3Button();
  if (sample == 1 && barry == -1) {
    acknowledgeUsb3Button(Acknowledge::first);
    barry = 0;
  } else if (sample == 0 && barry == -1) {
    barry = 0;
  } else if (sample == 1 && barry == 0) {
    barry = 1;
  } else if (sample == 1) {
    acknowledgeUsb3Button(Acknowledge::last);
    fireEvent();
    barry = -1;
  }
}

// Bridge cameras: fires when the bit comes on after having been off.
void fireWhenSet(bool bitSet) {
  if (!bitSet) {
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
  const int pins = readButtonPins();
  if (isVK7xxxSeries(nPid)) {
    const bool pressed = (pins & pressedPins) == pressedPins;
    if (pressed && m_MT == 0) clearButtonLatch();
    if (startsPress(pressed)) fireEvent();
  }
  if (hasPlainButton() && startsPress(pins < 0)) fireEvent();
}

void pollBridgeButton() {
  const bool bitSet = buttonBitSet();
  if (isVK7xxxSeries(nPid)) {
    if (IsPID7x15PKeyFire(nPid) == 1) fireEvent();
  } else if (hasPlainButton()) {
    fireWhenSet(bitSet);
  }
}

void pollButton() {
  selectProductId(VideoDeviceIndex);
  if (m_EnableMT == 0) return;
  if (isVK73xxxSeries(nPid)) pollUsb3Button();  // and the branches below are tried, too
  if (isVk4xx7Series(nPid)) {
    fireWhenSet(buttonBitSet4xx7());
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
