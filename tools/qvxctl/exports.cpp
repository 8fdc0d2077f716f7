#include "exports.h"

#include "qvx64/api.h"

namespace qvxctl {

namespace {

template <class Function, class... Names>
Export describe(const char* name, Names... names) {
  static_assert(sizeof...(Names) == Signature<Function>::arity, "one name per parameter");
  const std::vector<Parameter> parameters = {names...};
  return {name, Signature<Function>::results(parameters), parameters, Signature<Function>::define};
}

// The types come from the declaration; only the names of the parameters are repeated here.
#define EXPORTED(function, ...) describe<decltype(::function)>(#function __VA_OPT__(, ) __VA_ARGS__)

const Export exports[] = {
    EXPORTED(Init),
    EXPORTED(GetVideoDeviceCount),
    EXPORTED(GetVideoDeviceIndex),
    EXPORTED(SetVideoDeviceIndex, "idx"),
    EXPORTED(GetVideoDeviceName, "deviceIndex"),
    EXPORTED(GetDeviceId, "deviceIndex"),
    EXPORTED(GetDeviceIDA, "deviceIndex"),
    EXPORTED(GetConfig, "deviceIndex"),
    EXPORTED(SetEventCallback, "func"),
    EXPORTED(FireEvent),
    EXPORTED(EnablePressKey, "bEnableMT"),
    EXPORTED(GetMAG, "deviceIndex"),
    EXPORTED(FOVx, "deviceIndex", "fMag"),
    EXPORTED(SetLensInitPos, "deviceIndex"),
    EXPORTED(SetLensPos, "deviceIndex", "Value"),
    EXPORTED(SetLensFinePos, "deviceIndex", "Value"),
    EXPORTED(GetLensPosLimits, "deviceIndex", "UpperLmt", "LowerLmt"),
    EXPORTED(GetLensFinePosLimits, "deviceIndex", "UpperLmt", "LowerLmt"),
    EXPORTED(SetExposureValue, "vindex", "Value"),
    EXPORTED(GetExposureValue, "deviceIndex"),
    EXPORTED(SetAETarget, "deviceIndex", "Value"),
    EXPORTED(GetAETarget, "deviceIndex"),
    EXPORTED(SetAutoExposure, "vindex", "Value"),
    EXPORTED(GetAutoExposure, "vindex"),
    EXPORTED(SetFlicker, "deviceIndex", "Value"),
    EXPORTED(SetVideoProcAmp, "valueIndex", "newValue"),
    EXPORTED(GetVideoProcAmp, "valueIndex"),
    EXPORTED(GetVideoProcAmpValueRange, Parameter("valueIndex", true), "lMin", "lMax",
             "lSteppomgDelta", "lDefault"),
    EXPORTED(SetLEDState, "deviceIndex", "nLedStatus"),
    EXPORTED(SetSEGSwitch, "ID", "nMode"),
    EXPORTED(SetSEGLevel, "ID", "nLevel"),
    EXPORTED(SetESEG, "DeviceIndex", "Quadrant", "Value"),
    EXPORTED(SetAXILevel, "ID", "nLevel"),
    EXPORTED(SetAimpointLevel, "ID", "nLevel"),
    EXPORTED(GetWiFiImage, "filename"),
    EXPORTED(SetWiFiVideoRes, "width", "height"),
    EXPORTED(GetWiFiVideoCaps, "count", "width", "height"),
};

#undef EXPORTED

}  // namespace

std::span<const Export> exportTable() {
  return exports;
}

}  // namespace qvxctl
