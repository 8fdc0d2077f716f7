// The exported functions: each hands its arguments to the operation behind it.
#include <cstring>

#include "api/events.h"
#include "api/call.h"
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
  return Call("Init").gives(0, [] { return initialize(); });
}

int GetVideoDeviceCount(void) {
  return Call("GetVideoDeviceCount").gives(0, [] { return usb3DeviceCount(); });
}

int GetVideoDeviceIndex(void) {
  return Call("GetVideoDeviceIndex").gives(0, [=] { return VideoDeviceIndex; });
}

void SetVideoDeviceIndex(int idx) {
  Call("SetVideoDeviceIndex", idx).does([=] { VideoDeviceIndex = idx; });
}

wchar_t* GetVideoDeviceName(int deviceIndex) {
  return Call("GetVideoDeviceName", deviceIndex).gives<wchar_t*>(nullptr, [=] {
    refreshDeviceNames(deviceIndex);
    return chr2wch(entryOf(strOrvaDeviceName, deviceIndex).c_str());
  });
}

wchar_t* GetDeviceId(int deviceIndex) {
  return Call("GetDeviceId", deviceIndex).gives<wchar_t*>(nullptr, [=] {
    refreshDevicePaths(deviceIndex);
    return chr2wch(entryOf(strOrvaDevice, deviceIndex).c_str());
  });
}

char* GetDeviceIDA(int deviceIndex) {
  static char none[] = "";
  return Call("GetDeviceIDA", deviceIndex).gives<char*>(none, [=] {
    refreshDevicePathsAndProductId(deviceIndex);
    std::string* const path = entryAt(strOrvaDevice, deviceIndex);
    return path == nullptr ? none : path->data();
  });
}

qvx_long GetConfig(int deviceIndex) {
  return Call("GetConfig", deviceIndex).gives<qvx_long>(0, [=] {
    return featureWord(deviceIndex);
  });
}

void SetEventCallback(void (*func)(void)) {
  Call("SetEventCallback", func).does([=] { setEventCallback(func); });
}

void FireEvent(void) {
  Call("FireEvent").does(fireEvent);
}

int EnablePressKey(int bEnableMT) {
  return Call("EnablePressKey", bEnableMT).gives(0, [=] { return enablePressKey(bEnableMT); });
}

double GetMAG(int deviceIndex) {
  return Call("GetMAG", deviceIndex).gives(0.0, [=] {
    nTmpIdx = isWifiDevice(deviceIndex) ? wifiDeviceIndex : deviceIndex;
    return static_cast<double>(f890Rate);
  });
}

double FOVx(int deviceIndex, double fMag) {
  return Call("FOVx", deviceIndex, fMag).gives(0.0, [=] { return fieldOfView(deviceIndex, fMag); });
}

void SetLensInitPos(int deviceIndex) {
  Call("SetLensInitPos", deviceIndex).does([=] { resetLens(deviceIndex); });
}

void SetLensPos(int deviceIndex, qvx_long Value) {
  Call("SetLensPos", deviceIndex, Value).does([=] { moveLens(deviceIndex, Value); });
}

void SetLensFinePos(int deviceIndex, qvx_long Value) {
  Call("SetLensFinePos", deviceIndex, Value).does([=] { moveLensFine(deviceIndex, Value); });
}

qvx_long GetLensPosLimits(int deviceIndex, qvx_long* UpperLmt, qvx_long* LowerLmt) {
  return Call("GetLensPosLimits", deviceIndex, UpperLmt, LowerLmt).gives<qvx_long>(0, [=] {
    return store(lensLimits(deviceIndex), UpperLmt, LowerLmt);
  });
}

qvx_long GetLensFinePosLimits(int deviceIndex, qvx_long* UpperLmt, qvx_long* LowerLmt) {
  return Call("GetLensFinePosLimits", deviceIndex, UpperLmt, LowerLmt).gives<qvx_long>(0, [=] {
    return store(fineLensLimits(deviceIndex), UpperLmt, LowerLmt);
  });
}

void SetExposureValue(int vindex, qvx_long Value) {
  Call("SetExposureValue", vindex, Value).does([=] { setExposureValue(vindex, Value); });
}

qvx_long GetExposureValue(int deviceIndex) {
  return Call("GetExposureValue", deviceIndex).gives<qvx_long>(0, [=] {
    return getExposureValue(deviceIndex);
  });
}

void SetAETarget(int deviceIndex, qvx_long Value) {
  Call("SetAETarget", deviceIndex, Value).does([=] { setAETarget(deviceIndex, Value); });
}

qvx_long GetAETarget(int deviceIndex) {
  return Call("GetAETarget", deviceIndex).gives<qvx_long>(0, [=] {
    return getAETarget(deviceIndex);
  });
}

void SetAutoExposure(int vindex, qvx_long Value) {
  Call("SetAutoExposure", vindex, Value).does([=] { setAutoExposure(vindex, Value); });
}

qvx_long GetAutoExposure(int vindex) {
  return Call("GetAutoExposure", vindex).gives<qvx_long>(0, [=] {
    return getAutoExposure(vindex);
  });
}

void SetFlicker(int deviceIndex, qvx_long Value) {
  Call("SetFlicker", deviceIndex, Value).does([=] { setFlicker(deviceIndex, Value); });
}

void SetVideoProcAmp(int valueIndex, qvx_long newValue) {
  Call("SetVideoProcAmp", valueIndex, newValue).does([=] {
    setVideoProcAmp(PictureProperty{valueIndex}, static_cast<std::int32_t>(newValue));
  });
}

qvx_long GetVideoProcAmp(int valueIndex) {
  return Call("GetVideoProcAmp", valueIndex).gives<qvx_long>(0, [=] {
    return getVideoProcAmp(PictureProperty{valueIndex});
  });
}

// The property number comes in through a pointer that callers have always passed as writable.
// NOLINTNEXTLINE(readability-non-const-parameter)
qvx_long GetVideoProcAmpValueRange(qvx_long* valueIndex, qvx_long* lMin, qvx_long* lMax,
                                   qvx_long* lSteppomgDelta, qvx_long* lDefault) {
  if (valueIndex == nullptr) return 0;
  Call("GetVideoProcAmpValueRange", valueIndex, lMin, lMax, lSteppomgDelta, lDefault).does([=] {
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
  Call("SetLEDState", deviceIndex, nLedStatus).does([=] { setLedState(deviceIndex, nLedStatus); });
}

void SetSEGSwitch(int ID, qvx_long nMode) {
  Call("SetSEGSwitch", ID, nMode).does([=] { setSegSwitch(ID, nMode); });
}

void SetSEGLevel(int ID, qvx_long nLevel) {
  Call("SetSEGLevel", ID, nLevel).does([=] { setSegLevel(ID, nLevel); });
}

void SetESEG(int DeviceIndex, qvx_long Quadrant, qvx_long Value) {
  Call("SetESEG", DeviceIndex, Quadrant, Value).does([=] {
    setSegQuadrant(DeviceIndex, Quadrant, Value);
  });
}

void SetAXILevel(int ID, qvx_long nLevel) {
  Call("SetAXILevel", ID, nLevel).does([=] { setAxialLevel(ID, nLevel); });
}

void SetAimpointLevel(int ID, qvx_long nLevel) {
  Call("SetAimpointLevel", ID, nLevel).does([=] { setAimpointLevel(ID, nLevel); });
}

bool GetWiFiImage(const char* filename) {
  return Call("GetWiFiImage", filename).gives(false, [=] {
    return saveWifiImage(fileName(filename));
  });
}

bool SetWiFiVideoRes(qvx_long width, qvx_long height) {
  return Call("SetWiFiVideoRes", width, height).gives(false, [=] {
    return setWifiVideoMode(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height));
  });
}

bool GetWiFiVideoCaps(qvx_long* count, short* width, short* height) {
  return Call("GetWiFiVideoCaps", count, width, height).gives(false, [=] {
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
