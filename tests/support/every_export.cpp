#include "tests/support/every_export.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdio>
#include <map>
#include <memory>
#include <regex>
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

std::string text(const char* narrow) {
  return narrow;
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

std::string resultOf(const auto& call) {
  if constexpr (std::is_void_v<decltype(call())>) {
    call();
    return "";
  } else {
    return text(call());
  }
}

template <qvx_long (*ask)(int, qvx_long*, qvx_long*)>
std::string limits(const Arguments& given) {
  qvx_long upper = leftAlone, lower = leftAlone;
  const qvx_long result = ask(given.index, &upper, &lower);
  return texts(result, upper, lower);
}

std::string pictureRange(const Arguments& given) {
  auto property = static_cast<qvx_long>(given.index);
  qvx_long min = leftAlone, max = leftAlone, step = leftAlone, defaultValue = leftAlone;
  const qvx_long result = GetVideoProcAmpValueRange(&property, &min, &max, &step, &defaultValue);
  return texts(result, min, max, step, defaultValue);
}

std::string videoCaps(const Arguments& /*given*/) {
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

constexpr char fineRange[] = "1 1023 -999", noOffset[] = "1 1023 -1023", noFineRange[] = "1 -1 -1";

// Results that the header allows. Those without limits are for exhausted memory.
constexpr char aBit[] = "[01]";
constexpr char aByte[] = R"(\d{1,2}|1\d\d|2[0-4]\d|25[0-5])";
constexpr char aPath[] = "[^A-Z]*";
// The first mean is of five samples that count as ten.
constexpr char aMagnification[] = R"(0|0\.[5-9]\d*|[1-9][^-]*|inf|-?nan)";
constexpr char aLensRange[] = "1 (44 -15|71 -27|48 -48)|0 -7 -7";
constexpr char aFineRange[] = R"(1( -?(\d{1,3}|10[01]\d|102[0-3])){2}|0 -7 -7)";
constexpr char aPictureRange[] = R"(0( -?\d+){4})";
constexpr char someVideoModes[] = R"(0 0|1 [1-5]( [1-9]\d*x[1-9]\d*)+)";

// The name of an export, and its call; `a` are the arguments.
#define CALL(function, ...)                                 \
  .name = #function, .call = [](const Arguments& a) {       \
    static_cast<void>(a);                                   \
    return resultOf([&] { return function(__VA_ARGS__); }); \
  }

const ExportedCall table[] = {
    {CALL(Init), .allowed = aBit, .outcomes = {{.healthy = "1", .dead = "0"}}},
    {CALL(GetVideoDeviceCount), .allowed = "[012]",
     .outcomes = {{.path = "Usb3", .healthy = "1", .dead = "0"}}},
    {CALL(GetVideoDeviceIndex)},
    {CALL(SetVideoDeviceIndex, a.index)},
    {CALL(GetVideoDeviceName, a.index),
     // Never filled before the call: empty.
     .outcomes = {{.path = "Wifi"}, {.healthy = "Microscope 1", .dead = ""}}},
    {CALL(GetDeviceId, a.index), .allowed = aPath},
    {CALL(GetDeviceIDA, a.index), .allowed = aPath},
    {CALL(GetConfig, a.index), .allowed = aByte,
     // A silent camera reads 0: a feature register without features. Two registers tell them all.
     .outcomes = {{.path = "998", .healthy = "235", .dead = "202", .partly = {"203", "234"}},
                  {.path = "9C4", .healthy = "235", .dead = "10", .partly = {"203", "42"}},
                  {.path = "9E2", .healthy = "231", .dead = "10", .partly = {"199", "42"}},
                  {.path = "9D0", .healthy = "7", .dead = "10"},
                  {.path = "9B0", .healthy = "203", .dead = "0"}}},
    {CALL(SetEventCallback, a.callback)},
    {CALL(FireEvent)},
    {CALL(EnablePressKey, a.index), .firstNumber = 1, .allowed = aBit},
    {CALL(GetMAG, a.index), .allowed = aMagnification},
    {CALL(FOVx, a.index, a.magnification)},
    {CALL(SetLensInitPos, a.index)},
    {CALL(SetLensPos, a.index, a.value), .busiest = {.value = 20}},
    {CALL(SetLensFinePos, a.index, a.value), .busiest = {.value = 100}},
    // What lens there is: none when the camera is silent; over USB 3 any, as 255 has every bit.
    {.name = "GetLensPosLimits",
     .call = limits<GetLensPosLimits>,
     .allowed = aLensRange,
     .outcomes = {{.path = "998", .healthy = "1 71 -27", .dead = "1 44 -15"},
                  {.path = "9C4", .healthy = "1 71 -27", .dead = "1 44 -15"},
                  {.path = "9E2", .healthy = "1 48 -48", .dead = "1 44 -15"},
                  {.path = "9B0", .healthy = "1 48 -48", .dead = "1 71 -27"}}},
    // An offset that cannot be read counts as none.
    {.name = "GetLensFinePosLimits",
     .call = limits<GetLensFinePosLimits>,
     .allowed = aFineRange,
     .outcomes =
         {{.path = "9B0", .healthy = fineRange, .dead = noFineRange, .partly = {noOffset}},
          {.path = "9E2", .healthy = fineRange, .dead = noFineRange, .partly = {noOffset}}}},
    {CALL(SetExposureValue, a.index, a.value), .busiest = {.value = 600}},
    {CALL(GetExposureValue, a.index),
     // The sum of bytes, each of which may be missing.
     .outcomes = {{.path = "998", .healthy = "500", .dead = "0", .partly = {"496", "4"}},
                  {.path = "9C4", .healthy = "480", .dead = "0", .partly = {"256", "224"}},
                  {.path = "9E2", .healthy = "500", .dead = "1125", .partly = {"613", "1012"}},
                  {.path = "9D0",
                   .healthy = "312",
                   .dead = "0",
                   .partly = {"256", "293", "275", "56", "19", "37"}}}},
    {CALL(SetAETarget, a.index, a.value), .busiest = {.value = 100}},
    {CALL(GetAETarget, a.index), .outcomes = {{.path = "998", .healthy = "56", .dead = "0"},
                                              {.path = "9D0", .healthy = "72", .dead = "0"},
                                              {.path = "9B0", .healthy = "56", .dead = "255"},
                                              {.healthy = "64", .dead = "0"}}},
    {CALL(SetAutoExposure, a.index, a.value), .busiest = {.value = 1}},
    {CALL(GetAutoExposure, a.index), .allowed = aBit,
     .outcomes = {{.path = "998", .healthy = "1", .dead = "1"}, {.healthy = "1", .dead = "0"}}},
    {CALL(SetFlicker, a.index, a.value), .busiest = {.value = 1}},
    {CALL(SetVideoProcAmp, a.index, a.value), .busiest = {.value = 40}, .firstNumber = 1},
    // Nothing is listed, or the camera's driver refuses.
    {CALL(GetVideoProcAmp, a.index), .firstNumber = 1,
     .outcomes = {{.path = "Wifi", .healthy = "32", .dead = "0"},
                  {.healthy = "32", .dead = "0", .partly = {"-1"}}}},
    {.name = "GetVideoProcAmpValueRange",
     .call = pictureRange,
     .firstNumber = 1,
     .allowed = aPictureRange,
     .outcomes = {{.path = "Wifi", .healthy = "0 0 95 1 32", .dead = "0 -7 -7 -7 -7"},
                  {.healthy = "0 0 95 1 32",
                   .dead = "0 -7 -7 -7 -7",
                   .partly = {"0 -1 -1 -1 -1"}}}},
    {CALL(SetLEDState, a.index, static_cast<int>(a.value)), .busiest = {.value = 1}},
    {CALL(SetSEGSwitch, a.index, a.value), .busiest = {.value = 5}},
    {CALL(SetSEGLevel, a.index, a.value), .busiest = {.value = 3}},
    {CALL(SetESEG, a.index, a.value, a.second), .busiest = {.value = 2, .second = 12}},
    {CALL(SetAXILevel, a.index, a.value), .busiest = {.value = 4}},
    {CALL(SetAimpointLevel, a.index, a.value), .busiest = {.value = 3}},
    // False only for the file that cannot be created; without an answer none is.
    {CALL(GetWiFiImage, a.file), .outcomes = {{.healthy = "1", .dead = "1", .partly = {"0"}}}},
    {CALL(SetWiFiVideoRes, a.value, a.second), .busiest = {.value = 640, .second = 480}},
    {.name = "GetWiFiVideoCaps", .call = videoCaps, .allowed = someVideoModes},
};
#undef CALL

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

Arguments busiestArguments(const ExportedCall& call, int deviceIndex) {
  Arguments arguments = call.busiest;
  arguments.index = call.firstNumber.value_or(deviceIndex);
  return arguments;
}

bool isAllowed(const ExportedCall& call, const std::string& result) {
  if (call.allowed == nullptr) return true;
  static std::map<std::string, std::regex> patterns;
  const auto [pattern, isNew] = patterns.try_emplace(call.allowed, call.allowed);
  return std::regex_match(result, pattern->second);
}

}  // namespace qvx::tests
