#include "tests/support/every_export.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdio>
#include <memory>
#include <stdexcept>

namespace qvx::tests {

namespace {

std::string text(std::integral auto number) {
  return std::to_string(number);
}

std::string text(double number) {
  char digits[40];
  std::snprintf(digits, sizeof digits, "%.9g", number);
  return digits;
}

// Wide strings belong to nobody in particular: the library allocates one per call.
std::string text(wchar_t* allocated) {
  if (allocated == nullptr) return "null";
  const std::unique_ptr<wchar_t[]> owner(allocated);
  std::string narrow;
  for (const wchar_t* at = allocated; *at != 0; ++at) narrow += static_cast<char>(*at);
  return narrow;
}

std::string texts(auto first, auto... others) {
  return (text(first) + ... + (' ' + text(others)));
}

std::string limits(qvx_long (*ask)(int, qvx_long*, qvx_long*), int index) {
  qvx_long upper = leftAlone, lower = leftAlone;
  const qvx_long result = ask(index, &upper, &lower);
  return texts(result, upper, lower);
}

std::string pictureRange(const Arguments& given) {
  auto property = static_cast<qvx_long>(given.index);
  qvx_long min = leftAlone, max = leftAlone, step = leftAlone, defaultValue = leftAlone;
  const qvx_long result = GetVideoProcAmpValueRange(&property, &min, &max, &step, &defaultValue);
  return texts(result, min, max, step, defaultValue);
}

std::string videoCaps(const Arguments&) {
  qvx_long count = 0;
  std::array<short, 5> widths{}, heights{};
  widths.fill(leftAlone);
  heights.fill(leftAlone);
  const bool known = GetWiFiVideoCaps(&count, widths.data(), heights.data());
  std::string all = texts(known, count);
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
    all += ' ' + text(widths.at(i)) + 'x' + text(heights.at(i));
  for (auto i = static_cast<std::size_t>(count); i < widths.size(); ++i)
    if (widths.at(i) != leftAlone || heights.at(i) != leftAlone) all += " and more";
  return all;
}

// An export with a result, and one without.
#define GIVES(name, ...)                                                          \
  {                                                                               \
#name, [](const Arguments& a) { static_cast<void>(a); return text(__VA_ARGS__); } \
  }
#define DOES(name, ...)           \
  {                               \
#name, [](const Arguments& a) { \
      static_cast<void>(a);         \
      __VA_ARGS__;                  \
      return std::string();         \
    } \
  }

const ExportedCall table[] = {
    GIVES(Init, Init()),
    GIVES(GetVideoDeviceCount, GetVideoDeviceCount()),
    GIVES(GetVideoDeviceIndex, GetVideoDeviceIndex()),
    DOES(SetVideoDeviceIndex, SetVideoDeviceIndex(a.index)),
    GIVES(GetVideoDeviceName, GetVideoDeviceName(a.index)),
    GIVES(GetDeviceId, GetDeviceId(a.index)),
    {"GetDeviceIDA", [](const Arguments& a) { return std::string(GetDeviceIDA(a.index)); }},
    GIVES(GetConfig, GetConfig(a.index)),
    DOES(SetEventCallback, SetEventCallback(a.callback)),
    DOES(FireEvent, FireEvent()),
    GIVES(EnablePressKey, EnablePressKey(a.index)),
    GIVES(GetMAG, GetMAG(a.index)),
    GIVES(FOVx, FOVx(a.index, a.magnification)),
    DOES(SetLensInitPos, SetLensInitPos(a.index)),
    DOES(SetLensPos, SetLensPos(a.index, a.value)),
    DOES(SetLensFinePos, SetLensFinePos(a.index, a.value)),
    {"GetLensPosLimits", [](const Arguments& a) { return limits(GetLensPosLimits, a.index); }},
    {"GetLensFinePosLimits",
     [](const Arguments& a) { return limits(GetLensFinePosLimits, a.index); }},
    DOES(SetExposureValue, SetExposureValue(a.index, a.value)),
    GIVES(GetExposureValue, GetExposureValue(a.index)),
    DOES(SetAETarget, SetAETarget(a.index, a.value)),
    GIVES(GetAETarget, GetAETarget(a.index)),
    DOES(SetAutoExposure, SetAutoExposure(a.index, a.value)),
    GIVES(GetAutoExposure, GetAutoExposure(a.index)),
    DOES(SetFlicker, SetFlicker(a.index, a.value)),
    DOES(SetVideoProcAmp, SetVideoProcAmp(a.index, a.value)),
    GIVES(GetVideoProcAmp, GetVideoProcAmp(a.index)),
    {"GetVideoProcAmpValueRange", pictureRange},
    DOES(SetLEDState, SetLEDState(a.index, static_cast<int>(a.value))),
    DOES(SetSEGSwitch, SetSEGSwitch(a.index, a.value)),
    DOES(SetSEGLevel, SetSEGLevel(a.index, a.value)),
    DOES(SetESEG, SetESEG(a.index, a.value, a.second)),
    DOES(SetAXILevel, SetAXILevel(a.index, a.value)),
    DOES(SetAimpointLevel, SetAimpointLevel(a.index, a.value)),
    GIVES(GetWiFiImage, GetWiFiImage(a.file)),
    GIVES(SetWiFiVideoRes, SetWiFiVideoRes(a.value, a.second)),
    {"GetWiFiVideoCaps", videoCaps},
};
#undef GIVES
#undef DOES

static_assert(std::size(table) == 37);

}  // namespace

std::span<const ExportedCall> everyExport() {
  return table;
}

const ExportedCall& exportNamed(const std::string& name) {
  const auto found = std::find_if(std::begin(table), std::end(table),
                                  [&](const ExportedCall& call) { return call.name == name; });
  if (found == std::end(table)) throw std::invalid_argument("no export " + name);
  return *found;
}

}  // namespace qvx::tests
