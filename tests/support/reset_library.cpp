#include "tests/support/reset_library.h"

#include "api/events.h"
#include "controls/led_state.h"
#include "controls/lighting.h"
#include "controls/magnification.h"
#include "etlib2/access.h"
#include "etlib2/etLib2.h"
#include "state/device_state.h"
#include "transport/usb3.h"
#include "transport/wifi_address.h"

namespace qvx::tests {

namespace {

void resetCallLayer() {
  etLib2_Release();
  for (SpeedTable::Entry& entry : speedTable.entries) {
    entry.slave = 0;
    entry.speed = standardSpeed;
  }
  i2cSpeed = standardSpeed;
}

void resetDevices() {
  VideoDeviceIndex = nPid = nCurrPid = nTmpIdx = m_EnableMT = 0;
  bWait = 0;
  bMAGSeries = -1;
  s_mainhttp.clear();
  wifiBase.reset();
  for (DeviceTable* table : {&strOrvaDevice, &strOrvaDeviceName, &strOrvaDeviceFx,
                             &strOrvaDeviceNameFx, &strOrvaDeviceWF, &strOrvaDeviceWFName}) {
    table->fill({});
  }
  n80 = n83 = n84 = nC0 = nC1 = nC2 = nC3 = nC4 = nC5 = 0;
  ul80 = ul84 = ulC3 = ulC5 = 0;
  deviceList = nullptr;
  deviceInfo = nullptr;
  Usb = {};
  handle = nullptr;
  pipeInfo = {};
  pipeIndex = 0;
  ec = 0;
  nUSBVer = 0;
}

void resetFunctions() {
  OnEvent = nullptr;
  m_MT = m_count = 0;
  timer_2_proc::barry = -1;
  f890Rate = f890a = f890b = f890c = f890d = 0;
  fabc.fill(0);
  fRate5s = fRate5s1 = f890PreMag = 0;
  count_890_rate::k = 0;
  count_890_rate::fRatePre = 0;
  SEGCount.fill(0);
  m_LEDStatus = m_LED1Status = m_LED2Status = m_LED3Status = m_LED4Status = nProgress = 0;
}

}  // namespace

void resetLibrary() {
  resetCallLayer();
  resetDevices();
  resetFunctions();
}

}  // namespace qvx::tests
