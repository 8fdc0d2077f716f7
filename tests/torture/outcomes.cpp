#include "tests/torture/outcomes.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace qvx::tests {

namespace {

struct Row {
  std::string call;
  std::string paths;  // their names; empty for all
  Outcomes outcomes;
};

// -7 stands for an output that is left alone.
const Row rows[] = {
    {"Init", "", {"1", "0", {}}},
    {"GetVideoDeviceCount", "Usb39B0", {"1", "0", {}}},
    // Never filled before the call: empty.
    {"GetVideoDeviceName",
     "Usb39B0 Unit998 Unit9E2 Unit9D0 Hid9E2 Hid998",
     {"Microscope 1", "", {}}},
    // A silent camera reads 0: a feature register without features. Two registers tell them all.
    {"GetConfig", "Wifi998 Unit998 Hid998", {"235", "202", {"203", "234"}}},
    {"GetConfig", "Wifi9C4", {"235", "10", {"203", "42"}}},
    {"GetConfig", "Unit9E2 Hid9E2", {"231", "10", {"199", "42"}}},
    {"GetConfig", "Unit9D0", {"7", "10", {}}},
    {"GetConfig", "Usb39B0", {"203", "0", {}}},
    // What lens there is: none when the camera is silent; over USB 3 any, as 255 has every bit.
    {"GetLensPosLimits", "Wifi998 Wifi9C4 Unit998 Hid998", {"1 71 -27", "1 44 -15", {}}},
    {"GetLensPosLimits", "Unit9E2 Hid9E2", {"1 48 -48", "1 44 -15", {}}},
    {"GetLensPosLimits", "Usb39B0", {"1 48 -48", "1 71 -27", {}}},
    // An offset that cannot be read counts as none.
    {"GetLensFinePosLimits",
     "Usb39B0 Unit9E2 Hid9E2",
     {"1 1023 -999", "1 -1 -1", {"1 1023 -1023"}}},
    // The sum of bytes, each of which may be missing.
    {"GetExposureValue", "Wifi998 Unit998 Hid998", {"500", "0", {"496", "4"}}},
    {"GetExposureValue", "Wifi9C4", {"480", "0", {"256", "224"}}},
    {"GetExposureValue", "Unit9E2 Hid9E2", {"500", "1125", {"613", "1012"}}},
    {"GetExposureValue", "Unit9D0", {"312", "0", {"256", "293", "275", "56", "19", "37"}}},
    {"GetAETarget", "Wifi998 Unit998 Hid998", {"56", "0", {}}},
    {"GetAETarget", "Wifi9C4 Unit9E2 Hid9E2", {"64", "0", {}}},
    {"GetAETarget", "Unit9D0", {"72", "0", {}}},
    {"GetAETarget", "Usb39B0", {"56", "255", {}}},
    {"GetAutoExposure", "Wifi9C4 Usb39B0 Unit9E2 Unit9D0 Hid9E2", {"1", "0", {}}},
    {"GetAutoExposure", "Wifi998 Unit998 Hid998", {"1", "1", {}}},
    // Nothing is listed, or the camera's driver refuses.
    {"GetVideoProcAmp", "Wifi998 Wifi9C4", {"32", "0", {}}},
    {"GetVideoProcAmp", "", {"32", "0", {"-1"}}},
    {"GetVideoProcAmpValueRange", "Wifi998 Wifi9C4", {"0 0 95 1 32", "0 -7 -7 -7 -7", {}}},
    {"GetVideoProcAmpValueRange", "", {"0 0 95 1 32", "0 -7 -7 -7 -7", {"0 -1 -1 -1 -1"}}},
    // False only for the file that cannot be created; without an answer none is.
    {"GetWiFiImage", "", {"1", "1", {"0"}}},
};

// The sentence of the header on a function.
std::string worstCaseOf(const std::string& name) {
  static const std::string header = [] {
    std::ifstream file(QVX_API_HEADER);
    return std::string(std::istreambuf_iterator<char>(file), {});
  }();
  const std::size_t place = std::min(header.find(" " + name + "("), header.find("*" + name + "("));
  if (place == std::string::npos) return "";
  const std::size_t start = header.rfind("Worst case: ", place);
  return header.substr(start, place - start);
}

// The number before a unit, 0 when there is none.
std::uint64_t amountOf(const std::string& text, const std::string& unit) {
  const std::size_t end = text.find(" " + unit);
  if (end == std::string::npos || end == 0) return 0;
  return std::strtoull(text.c_str() + text.rfind(' ', end - 1), nullptr, 10);
}

}  // namespace

bool Outcomes::allows(const std::string& result) const {
  return result == healthy || result == dead ||
         std::find(partly.begin(), partly.end(), result) != partly.end();
}

Outcomes outcomesOf(const ExportedCall& call, const Path& path, const std::string& healthy) {
  for (const Row& row : rows) {
    const bool fits = row.paths.empty() || row.paths.find(path.name()) != std::string::npos;
    if (row.call == call.name && fits) return row.outcomes;
  }
  return {healthy, healthy, {}};
}

Promise promiseOf(const ExportedCall& call) {
  // Two timers: the button's one or two accesses, and two of the magnification.
  if (call.name == std::string("Tick")) return {250, 4, false};
  const std::string worstCase = worstCaseOf(call.name);
  return {amountOf(worstCase, "ms"), amountOf(worstCase, "access"),
          worstCase.find("listing") != std::string::npos};
}

}  // namespace qvx::tests
