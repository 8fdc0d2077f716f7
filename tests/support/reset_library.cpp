#include "tests/support/reset_library.h"

#include <initializer_list>

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

template <class Value>
void clear(std::initializer_list<Value*> globals) {
  for (Value* global : globals) *global = Value{};
}

void resetCallLayer() {
  etLib2_Release();
  for (SpeedTable::Entry& entry : speedTable.entries) {
    entry.slave = 0;
    entry.speed = standardSpeed;
  }
  i2cSpeed = standardSpeed;
  currentDevice = 0;
}

void resetDevices() {
  clear({&VideoDeviceIndex, &nPid, &nCurrPid, &nTmpIdx, &m_EnableMT, &nUSBVer});
  bWait = 0;
  wifiBase.reset();
  bMAGSeries = -1;
  clear({&strOrvaDevice, &strOrvaDeviceName, &strOrvaDeviceFx, &strOrvaDeviceNameFx,
         &strOrvaDeviceWF, &strOrvaDeviceWFName});
  clear({&n80, &n83, &n84, &nC0, &nC1, &nC2, &nC3, &nC4, &nC5, &ul80, &ul84, &ulC3, &ulC5, &ec});
  clear({&deviceList, &handle});
  deviceInfo = nullptr;
  Usb = {};
  pipeInfo = {};
  pipeIndex = 0;
}

void resetUrls() {
  clear({&s_mainhttp, &sReg00, &sReg01, &sReg02, &sReg40, &sReg41, &sReg42, &sReg43,
         &sReg44,     &sReg45, &sReg46, &sReg47, &sReg48, &sReg49, &sReg4A, &sReg4B,
         &sReg4C,     &sReg4D, &sReg4E, &sReg50, &sReg60, &sReg61, &sReg62, &sReg63,
         &sReg64,     &sReg65, &sReg66, &sReg67, &sReg68, &sReg69, &sReg6A, &sReg6B,
         &sReg6C,     &sReg6D, &sReg6E, &sReg6F, &sReg80, &sReg81, &sReg82, &sReg83,
         &sReg84,     &sRegC0, &sRegC1, &sRegC2, &sRegC3, &sRegC4, &sRegC5});
}

void resetMagnification() {
  clear({&f890Rate, &f890a,   &f890b,   &f890c,   &f890d,    &n890det,   &f890det, &f890y1,
         &f890y2,   &f890y3,  &f890M11, &f890M12, &f890M13,  &f890M21,   &f890M22, &f890M23,
         &f890M31,  &f890M32, &f890M33, &fRate5s, &fRate5s1, &f890PreMag});
  clear({&n890M11, &n890M12, &n890M13, &n890M21, &n890M22, &n890M23, &n890M31, &n890M32, &n890M33});
  clear({&ul890x1, &ul890x2, &ul890x3, &ul890y1, &ul890y2, &ul890y3, &ul890m10, &ul890m11,
         &ul890m12, &ul890m20, &ul890m21, &ul890m22, &ul890m30, &ul890m31, &ul890m32});
  fabc.fill(0);
  fArrIn.fill(0);
  fArrOut.fill(0);
  count_890_rate::k = 0;
  count_890_rate::fRatePre = 0;
  count_890_rate::strPreData.clear();
}

void resetFunctions() {
  trace::end();
  OnEvent = nullptr;
  clear({&m_MT, &m_count});
  timer_2_proc::barry = -1;
  SEGCount.fill(0);
  clear({&m_LEDStatus, &m_LED1Status, &m_LED2Status, &m_LED3Status, &m_LED4Status, &nProgress});
}

}  // namespace

void resetLibrary() {
  resetCallLayer();
  resetDevices();
  resetUrls();
  resetMagnification();
  resetFunctions();
}

}  // namespace qvx::tests
