// The exported functions: each hands its arguments to the operation behind it.
#include "api/events.h"
#include "api/guard.h"
#include "api/init.h"
#include "controls/device_selection.h"
#include "controls/magnification.h"
#include "qvx64/api.h"
#include "state/device_state.h"
#include "transport/enumeration.h"
#include "transport/usb3.h"

using namespace qvx;

extern "C" {

int Init(void) {
  return guarded(0, [] { return initialize(); });
}

int GetVideoDeviceCount(void) {
  return guarded(0, [] { return usb3DeviceCount(); });
}

int GetVideoDeviceIndex(void) {
  return VideoDeviceIndex;
}

void SetVideoDeviceIndex(int idx) {
  VideoDeviceIndex = idx;
}

wchar_t* GetVideoDeviceName(int deviceIndex) {
  return guarded<wchar_t*>(nullptr, [=] {
    refreshDeviceNames(deviceIndex);
    return chr2wch(entryOf(strOrvaDeviceName, deviceIndex).c_str());
  });
}

wchar_t* GetDeviceId(int deviceIndex) {
  return guarded<wchar_t*>(nullptr, [=] {
    refreshDevicePaths(deviceIndex);
    return chr2wch(entryOf(strOrvaDevice, deviceIndex).c_str());
  });
}

char* GetDeviceIDA(int deviceIndex) {
  static char none[] = "";
  return guarded<char*>(none, [=] {
    refreshDevicePathsAndProductId(deviceIndex);
    std::string* const path = entryAt(strOrvaDevice, deviceIndex);
    return path == nullptr ? none : path->data();
  });
}

void SetEventCallback(void (*func)(void)) {
  guarded([=] { setEventCallback(func); });
}

void FireEvent(void) {
  guarded(fireEvent);
}

int EnablePressKey(int bEnableMT) {
  return enablePressKey(bEnableMT);
}

double GetMAG(int deviceIndex) {
  nTmpIdx = isWifiDevice(deviceIndex) ? wifiDeviceIndex : deviceIndex;
  return static_cast<double>(f890Rate);
}

double FOVx(int deviceIndex, double fMag) {
  return guarded(0.0, [=] { return fieldOfView(deviceIndex, fMag); });
}

}  // extern "C"
