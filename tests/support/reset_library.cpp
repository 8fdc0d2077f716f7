#include "tests/support/reset_library.h"

#include "api/events.h"
#include "controls/led_state.h"
#include "controls/lighting.h"
#include "controls/magnification.h"
#include "etlib2/access.h"
#include "etlib2/etLib2.h"
#include "state/kept_state.h"
#include "trace/trace.h"
#include "transport/usb3.h"
#include "transport/wifi_address.h"

namespace qvx::tests {

namespace {

template <class... Globals>
void clear(Globals&... globals) {
  ((globals = Globals{}), ...);
}

void resetDevices() {
  etLib2_Release();
  for (SpeedTable::Entry& entry : speedTable.entries) entry.slave = entry.speed = 0;
  i2cSpeed = standardSpeed;
  currentDevice = 0;
  clear(VideoDeviceIndex, nPid, nCurrPid, nTmpIdx, bWait, m_EnableMT, s_mainhttp, wifiBase);
  clear(strOrvaDevice, strOrvaDeviceName, strOrvaDeviceFx, strOrvaDeviceNameFx);
  clear(ul80, ul84, ulC3, ulC5);
  clear(deviceList, deviceInfo, Usb, handle, pipeInfo, pipeIndex, ec);
}

void resetMagnification() {
  clear(f890Rate, fabc, f890a, f890b, f890c, fArrIn, fArrOut, fRate5s, fRate5s1, count_890_rate::k);
  clear(ul890x1, ul890x2, ul890x3, ul890y1, ul890y2, ul890y3, n890det);
  clear(ul890m10, ul890m11, ul890m12, ul890m20, ul890m21, ul890m22, ul890m30, ul890m31, ul890m32);
  clear(f890M11, f890M12, f890M13, f890M21, f890M22, f890M23, f890M31, f890M32, f890M33);
  clear(f890det, f890y1, f890y2, f890y3);
}

void resetFunctions() {
  trace::end();
  clear(OnEvent, m_MT, SEGCount, m_LED1Status, m_LED2Status, m_LED3Status, m_LED4Status, nProgress);
  timer_2_proc::barry = -1;
}

// Of what nothing in the library reads, the part that tests look at.
void resetKeptState() {
  clear(n80, n83, nC5, nUSBVer, m_LEDStatus, f890d, sRegC3);
  bMAGSeries = -1;
}

}  // namespace

void resetLibrary() {
  resetDevices();
  resetMagnification();
  resetFunctions();
  resetKeptState();
}

}  // namespace qvx::tests
