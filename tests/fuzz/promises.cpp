#include "tests/fuzz/promises.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace qvx::fuzz {

namespace {

using tests::Arguments;

// An access may take 2 s; pauses and the system's own work come on top.
constexpr std::uint64_t access_ms = 2000, pauses_ms = 1000;

constexpr char unknownLimits[] = "0 -7 -7";

std::vector<double> numbersIn(const std::string& result) {
  std::vector<double> numbers;
  const char* at = result.c_str();
  for (char* end = nullptr; *at != '\0'; at = *end == 'x' ? end + 1 : end) {
    numbers.push_back(std::strtod(at, &end));
    if (end == at) return {};
  }
  return numbers;
}

bool isNothing(const Arguments&, const std::string& result) {
  return result.empty();
}

bool isNumber(const Arguments&, const std::string& result) {
  return numbersIn(result).size() == 1;
}

template <int least, int most>
bool isWithin(const Arguments&, const std::string& result) {
  const auto numbers = numbersIn(result);
  return numbers.size() == 1 && numbers[0] >= least && numbers[0] <= most;
}

// Null is for when memory is exhausted, and so are limits that could not be told.
bool namesDevice(const Arguments& given, const std::string& result) {
  return result.empty() || result == "null" || (given.index >= 0 && given.index < 8);
}

bool isPath(const Arguments& given, const std::string& result) {
  const bool isLower =
      std::none_of(result.begin(), result.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
  return isLower && namesDevice(given, result);
}

bool isSwitch(const Arguments& given, const std::string& result) {
  return result == (given.index == 1 ? "1" : "0");
}

// The first mean is of five samples that count as ten.
bool isMagnification(const Arguments&, const std::string& result) {
  const auto rate = numbersIn(result);
  return rate.size() == 1 && (rate[0] == 0 || rate[0] >= 0.5 || std::isnan(rate[0]));
}

bool isWidth(const Arguments& given, const std::string& result) {
  const auto width = numbersIn(result);
  return width.size() == 1 &&
         (std::isnan(width[0]) || std::signbit(width[0]) == std::signbit(given.magnification));
}

bool isLensRange(const Arguments&, const std::string& result) {
  return result == unknownLimits || result == "1 44 -15" || result == "1 71 -27" ||
         result == "1 48 -48";
}

bool isFineRange(const Arguments&, const std::string& result) {
  if (result == unknownLimits) return true;
  const auto range = numbersIn(result);
  const auto fits = [](double limit) { return limit >= -1023 && limit <= 1023; };
  return range.size() == 3 && range[0] == 1 && fits(range[1]) && fits(range[2]) &&
         range[2] <= range[1];
}

bool isPictureRange(const Arguments&, const std::string& result) {
  const auto range = numbersIn(result);
  return range.size() == 5 && range[0] == 0;
}

bool areVideoModes(const Arguments&, const std::string& result) {
  const auto modes = numbersIn(result);
  if (modes.size() < 2) return false;
  const bool arePositive = std::all_of(modes.begin(), modes.end(), [](double n) { return n > 0; });
  return result == "0 0" ||
         (arePositive && modes.size() == 2 + 2 * static_cast<std::size_t>(modes[1]));
}

// In the order of the header, with the worst case that it gives in camera accesses. The Wi-Fi
// camera's time-outs and enumerations count as accesses, too.
const struct {
  int accesses;
  bool (*keeps)(const Arguments& given, const std::string& result);
} promises[] = {
    {40, isWithin<0, 1>},   // Init
    {0, isWithin<0, 2>},    // GetVideoDeviceCount
    {0, isNumber},          // GetVideoDeviceIndex
    {0, isNothing},         // SetVideoDeviceIndex
    {0, namesDevice},       // GetVideoDeviceName
    {0, isPath},            // GetDeviceId
    {0, isPath},            // GetDeviceIDA
    {2, isWithin<0, 255>},  // GetConfig
    {0, isNothing},         // SetEventCallback
    {1000, isNothing},      // FireEvent: what the callback calls
    {0, isSwitch},          // EnablePressKey
    {0, isMagnification},   // GetMAG
    {0, isWidth},           // FOVx
    {6, isNothing},         // SetLensInitPos
    {6, isNothing},         // SetLensPos
    {7, isNothing},         // SetLensFinePos
    {4, isLensRange},       // GetLensPosLimits
    {6, isFineRange},       // GetLensFinePosLimits
    {5, isNothing},         // SetExposureValue
    {6, isNumber},          // GetExposureValue
    {5, isNothing},         // SetAETarget
    {3, isNumber},          // GetAETarget
    {6, isNothing},         // SetAutoExposure
    {4, isWithin<0, 1>},    // GetAutoExposure
    {4, isNothing},         // SetFlicker
    {1, isNothing},         // SetVideoProcAmp
    {1, isNumber},          // GetVideoProcAmp
    {1, isPictureRange},    // GetVideoProcAmpValueRange
    {21, isNothing},        // SetLEDState
    {5, isNothing},         // SetSEGSwitch
    {8, isNothing},         // SetSEGLevel
    {8, isNothing},         // SetESEG
    {8, isNothing},         // SetAXILevel
    {6, isNothing},         // SetAimpointLevel
    {1, isWithin<0, 1>},    // GetWiFiImage
    {2, isWithin<0, 1>},    // SetWiFiVideoRes
    {1, areVideoModes},     // GetWiFiVideoCaps
};

}  // namespace

void broken(const char* what, const std::string& how) {
  std::fprintf(stderr, "broken: %s: %s\n", what, how.c_str());
  std::abort();
}

void checkPromise(std::size_t place, const Arguments& arguments, const std::string& result,
                  std::uint64_t took_ms) {
  const char* const name = tests::everyExport()[place].name;
  const auto& promise = promises[place];
  if (!promise.keeps(arguments, result)) broken(name, "result \"" + result + '"');
  const std::uint64_t limit_ms =
      static_cast<std::uint64_t>(promise.accesses) * access_ms + pauses_ms;
  if (took_ms > limit_ms) broken(name, "took " + std::to_string(took_ms) + " ms");
}

}  // namespace qvx::fuzz
