// The 37 functions of QVX64.dll, as api.h declares them. microscope.js shows how they are called.
'use strict';
const path = require('node:path');
const koffi = require('koffi');

const constants = {
  QVX_CHOOSE: -1, QVX_WIFI_CAMERA: 90,
  QVX_FEATURE_LIGHTING_BOARD: 0x01, QVX_FEATURE_7XXX: 0x02, QVX_FEATURE_LIGHTS_2: 0x04,
  QVX_FEATURE_LIGHTS_3: 0x08, QVX_FEATURE_AIMING_LIGHT: 0x10, QVX_FEATURE_QUADRANTS: 0x20,
  QVX_FEATURE_MAGNIFICATION: 0x40, QVX_FEATURE_LENS: 0x80,
  QVX_EXPOSURE_MIN: 0, QVX_EXPOSURE_MAX: 65535,
  QVX_FLICKER_DETECT: 0, QVX_FLICKER_60_HZ: 1, QVX_FLICKER_50_HZ: 2,
  QVX_BRIGHTNESS: 0, QVX_CONTRAST: 1, QVX_HUE: 2, QVX_SATURATION: 3, QVX_SHARPNESS: 4,
  QVX_GAMMA: 5, QVX_COLOR_ENABLE: 6, QVX_WHITE_BALANCE: 7, QVX_BACKLIGHT_COMPENSATION: 8,
  QVX_GAIN: 9, QVX_POWER_LINE_FREQUENCY: 13,
  QVX_LED_OFF: 0, QVX_LED_ON: 1, QVX_LED_OTHER: 2,
  QVX_SEGMENT_1: 1, QVX_SEGMENT_2: 2, QVX_SEGMENT_3: 4, QVX_SEGMENT_4: 8, QVX_RING_ON: 15,
  QVX_RING_OFF: 16, QVX_AXIAL_ON: 24, QVX_AXIAL_OFF: 32, QVX_AIM_ON: 40, QVX_AIM_OFF: 48,
  QVX_LEVEL_OFF: 0, QVX_LEVEL_FULL: 6, QVX_QUADRANT_LEVEL_FULL: 31,
};

// For SetEventCallback: koffi.register(function, ButtonHandler), koffi.unregister afterwards.
const ButtonHandler = koffi.pointer(koffi.proto('void ButtonHandler(void)'));

const prototypes = [
  'int Init(void)',
  'int GetVideoDeviceCount(void)',
  'int GetVideoDeviceIndex(void)',
  'void SetVideoDeviceIndex(int idx)',
  'str16 GetVideoDeviceName(int deviceIndex)',
  'str16 GetDeviceId(int deviceIndex)',
  'str GetDeviceIDA(int deviceIndex)',
  'long GetConfig(int deviceIndex)',
  'void SetEventCallback(ButtonHandler *func)',
  'void FireEvent(void)',
  'int EnablePressKey(int bEnableMT)',
  'double GetMAG(int deviceIndex)',
  'double FOVx(int deviceIndex, double fMag)',
  'void SetLensInitPos(int deviceIndex)',
  'void SetLensPos(int deviceIndex, long Value)',
  'void SetLensFinePos(int deviceIndex, long Value)',
  'long GetLensPosLimits(int deviceIndex, _Out_ long *UpperLmt, _Out_ long *LowerLmt)',
  'long GetLensFinePosLimits(int deviceIndex, _Out_ long *UpperLmt, _Out_ long *LowerLmt)',
  'void SetExposureValue(int vindex, long Value)',
  'long GetExposureValue(int deviceIndex)',
  'void SetAETarget(int deviceIndex, long Value)',
  'long GetAETarget(int deviceIndex)',
  'void SetAutoExposure(int vindex, long Value)',
  'long GetAutoExposure(int vindex)',
  'void SetFlicker(int deviceIndex, long Value)',
  'void SetVideoProcAmp(int valueIndex, long newValue)',
  'long GetVideoProcAmp(int valueIndex)',
  `long GetVideoProcAmpValueRange(_Inout_ long *valueIndex, _Inout_ long *lMin, _Inout_ long *lMax,
                                  _Inout_ long *lSteppomgDelta, _Inout_ long *lDefault)`,
  'void SetLEDState(int deviceIndex, int nLedStatus)',
  'void SetSEGSwitch(int ID, long nMode)',
  'void SetSEGLevel(int ID, long nLevel)',
  'void SetESEG(int DeviceIndex, long Quadrant, long Value)',
  'void SetAXILevel(int ID, long nLevel)',
  'void SetAimpointLevel(int ID, long nLevel)',
  'bool GetWiFiImage(str filename)',
  'bool SetWiFiVideoRes(long width, long height)',
  'bool GetWiFiVideoCaps(_Out_ long *count, _Out_ short *width, _Out_ short *height)',
];

// An object with a function for each prototype, by its name.
function load(file = path.join(__dirname, 'QVX64.dll')) {
  const library = koffi.load(file);
  const functions = prototypes.map((prototype) => library.func(prototype));
  return Object.fromEntries(functions.map((call) => [call.info.name, call]));
}

module.exports = { ...constants, ButtonHandler, load };
