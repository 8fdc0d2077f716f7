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

void resetKeptState() {
  clear(sReg00, sReg01, sReg02, sReg40, sReg41, sReg42, sReg43, sReg44, sReg45, sReg46, sReg47,
        sReg48, sReg49, sReg4A, sReg4B, sReg4C, sReg4D, sReg4E, sReg50, sReg60, sReg61, sReg62,
        sReg63, sReg64, sReg65, sReg66, sReg67, sReg68, sReg69, sReg6A, sReg6B, sReg6C, sReg6D,
        sReg6E, sReg6F, sReg80, sReg81, sReg82, sReg83, sReg84, sRegC0, sRegC1, sRegC2, sRegC3,
        sRegC4, sRegC5);
  clear(n80, n83, n84, nC0, nC1, nC2, nC3, nC4, nC5);
  clear(nUSBVer, m_count, m_LEDStatus, strOrvaDeviceWF, strOrvaDeviceWFName);
  clear(n890M11, n890M12, n890M13, n890M21, n890M22, n890M23, n890M31, n890M32, n890M33);
  clear(f890d, f890PreMag, count_890_rate::fRatePre, count_890_rate::strPreData);
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
