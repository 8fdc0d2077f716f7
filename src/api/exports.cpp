// The exported functions: each hands its arguments to the operation behind it.
#include <cstring>

#include "api/events.h"
#include "api/guard.h"
#include "api/init.h"
#include "controls/device_selection.h"
#include "controls/exposure.h"
#include "controls/feature_word.h"
#include "controls/led_state.h"
#include "controls/lens.h"
#include "controls/lighting.h"
#include "controls/magnification.h"
#include "controls/video_proc_amp.h"
#include "controls/wifi_imaging.h"
#include "qvx64/api.h"
#include "state/device_state.h"
#include "transport/enumeration.h"
#include "transport/usb3.h"
#include "transport/wifi_camera.h"

using namespace qvx;

namespace {

qvx_long store(const LensRange& range, qvx_long* upper, qvx_long* lower) {
  if (upper != nullptr) *upper = range.upper;
  if (lower != nullptr) *lower = range.lower;
  return 1;
}

template <class Value>
void storeAt(qvx_long* target, Value value) {
  if (target != nullptr) *target = static_cast<qvx_long>(value);
}

// The first 256 characters at most: callers hand over a buffer of that size.
std::string fileName(const char* text) {
  return text == nullptr ? std::string() : std::string(text, strnlen(text, 256));
}

}  // namespace

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

qvx_long GetConfig(int deviceIndex) {
  return guarded<qvx_long>(0, [=] { return featureWord(deviceIndex); });
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

void SetLensInitPos(int deviceIndex) {
  guarded([=] { resetLens(deviceIndex); });
}

void SetLensPos(int deviceIndex, qvx_long Value) {
  guarded([=] { moveLens(deviceIndex, Value); });
}

void SetLensFinePos(int deviceIndex, qvx_long Value) {
  guarded([=] { moveLensFine(deviceIndex, Value); });
}

qvx_long GetLensPosLimits(int deviceIndex, qvx_long* UpperLmt, qvx_long* LowerLmt) {
  return guarded<qvx_long>(0, [=] { return store(lensLimits(deviceIndex), UpperLmt, LowerLmt); });
}

qvx_long GetLensFinePosLimits(int deviceIndex, qvx_long* UpperLmt, qvx_long* LowerLmt) {
  return guarded<qvx_long>(0,
                           [=] { return store(fineLensLimits(deviceIndex), UpperLmt, LowerLmt); });
}

void SetExposureValue(int vindex, qvx_long Value) {
  guarded([=] { setExposureValue(vindex, Value); });
}

qvx_long GetExposureValue(int deviceIndex) {
  return guarded<qvx_long>(0, [=] { return getExposureValue(deviceIndex); });
}

void SetAETarget(int deviceIndex, qvx_long Value) {
  guarded([=] { setAETarget(deviceIndex, Value); });
}

qvx_long GetAETarget(int deviceIndex) {
  return guarded<qvx_long>(0, [=] { return getAETarget(deviceIndex); });
}

void SetAutoExposure(int vindex, qvx_long Value) {
  guarded([=] { setAutoExposure(vindex, Value); });
}

qvx_long GetAutoExposure(int vindex) {
  return guarded<qvx_long>(0, [=] { return getAutoExposure(vindex); });
}

void SetFlicker(int deviceIndex, qvx_long Value) {
  guarded([=] { setFlicker(deviceIndex, Value); });
}

void SetVideoProcAmp(int valueIndex, qvx_long newValue) {
  guarded(
      [=] { setVideoProcAmp(PictureProperty{valueIndex}, static_cast<std::int32_t>(newValue)); });
}

qvx_long GetVideoProcAmp(int valueIndex) {
  return guarded<qvx_long>(0, [=] { return getVideoProcAmp(PictureProperty{valueIndex}); });
}

// The property number comes in through a pointer that callers have always passed as writable.
// NOLINTNEXTLINE(readability-non-const-parameter)
qvx_long GetVideoProcAmpValueRange(qvx_long* valueIndex, qvx_long* lMin, qvx_long* lMax,
                                   qvx_long* lSteppomgDelta, qvx_long* lDefault) {
  if (valueIndex == nullptr) return 0;
  guarded([=] {
    const auto range = getVideoProcAmpRange(static_cast<PictureProperty>(*valueIndex));
    if (!range) return;
    storeAt(lMin, range->min);
    storeAt(lMax, range->max);
    storeAt(lSteppomgDelta, range->step);
    storeAt(lDefault, range->defaultValue);
  });
  return 0;
}

void SetLEDState(int deviceIndex, int nLedStatus) {
  guarded([=] { setLedState(deviceIndex, nLedStatus); });
}

void SetSEGSwitch(int ID, qvx_long nMode) {
  guarded([=] { setSegSwitch(ID, nMode); });
}

void SetSEGLevel(int ID, qvx_long nLevel) {
  guarded([=] { setSegLevel(ID, nLevel); });
}

void SetESEG(int DeviceIndex, qvx_long Quadrant, qvx_long Value) {
  guarded([=] { setSegQuadrant(DeviceIndex, Quadrant, Value); });
}

void SetAXILevel(int ID, qvx_long nLevel) {
  guarded([=] { setAxialLevel(ID, nLevel); });
}

void SetAimpointLevel(int ID, qvx_long nLevel) {
  guarded([=] { setAimpointLevel(ID, nLevel); });
}

bool GetWiFiImage(const char* filename) {
  return guarded(false, [=] { return saveWifiImage(fileName(filename)); });
}

bool SetWiFiVideoRes(qvx_long width, qvx_long height) {
  return guarded(false, [=] {
    return setWifiVideoMode(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height));
  });
}

bool GetWiFiVideoCaps(qvx_long* count, short* width, short* height) {
  return guarded(false, [=] {
    const std::span<const VideoMode> modes = wifiVideoModes();
    if (modes.empty()) return false;
    storeAt(count, modes.size());
    for (std::size_t i = 0; i < modes.size(); ++i) {
      if (width != nullptr) width[i] = modes[i].width;
      if (height != nullptr) height[i] = modes[i].height;
    }
    return true;
  });
}

}  // extern "C"
