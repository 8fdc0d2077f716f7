// Leaks: every export is called repeatedly on one kind of camera, and the process's handles,
// threads and heap may grow only by what is left open on purpose. Each export is called 1,000
// times, or as often as its time permits: QVX_MS_PER_EXPORT in the environment. The suite prints
// the number.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

#include "tests/support/every_export.h"
#include "tests/windows/fixtures/imports.h"
#include "tests/windows/fixtures/resources.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

constexpr int firstCalls = 2, minCalls = 4, maxCalls = 1000;
constexpr int maxHandles = 1000;  // left open by one export: connections are files of the host
constexpr int slackHandles = 3, slackBytes = 256;  // kept temporarily by system libraries
constexpr int wifiIndex = 90;
constexpr char stillName[] = "qvx-handles.jpg";

ULONGLONG limit_ms() {
  const char* const text = std::getenv("QVX_MS_PER_EXPORT");
  return text == nullptr ? 100 : std::strtoull(text, nullptr, 10);
}

// What a call leaves open on purpose.
struct Kept {
  const char* name;
  int handles = 0;  // of the kernel, at most
  int minHeapBytes = 0, maxHeapBytes = 0;
};

// A read over Wi-Fi leaves its session and request open, and the connection if that is not closed
// yet. A command whose answer is not read leaves its request open.
constexpr Kept overWifi(const char* name, int reads, int unread = 0) {
  constexpr int handlesPerRead = 2, minPerRead = 9000, maxPerRead = 12000;  // bytes
  constexpr int minPerCommand = 100, maxPerCommand = 200;
  return {name, handlesPerRead * reads, minPerRead * reads + minPerCommand * unread,
          maxPerRead * reads + maxPerCommand * unread};
}

// Access to a picture property of a USB camera leaves four objects of the capture driver open; the
// sizes are those of the simulated cameras' driver.
constexpr Kept picture(const char* name) {
  constexpr int handles = 3, minBytes = 450, maxBytes = 600;
  return {name, handles, minBytes, maxBytes};
}

constexpr int deviceListBytes = 2700;  // with the record of one device

constexpr Kept keptOverWifi[] = {
    overWifi("Init", 36),
    overWifi("GetConfig", 2),
    overWifi("SetLensInitPos", 2),
    overWifi("SetLensPos", 5),
    overWifi("SetLensFinePos", 5),
    overWifi("GetLensPosLimits", 4),
    overWifi("GetLensFinePosLimits", 6),
    overWifi("SetExposureValue", 5),
    overWifi("GetExposureValue", 5),
    overWifi("SetAETarget", 0, 4),
    overWifi("GetAETarget", 1),
    overWifi("SetAutoExposure", 3),
    overWifi("GetAutoExposure", 2),
    overWifi("SetFlicker", 2),
    overWifi("SetVideoProcAmp", 0, 1),
    overWifi("GetVideoProcAmp", 1),
    overWifi("GetVideoProcAmpValueRange", 1),
    overWifi("SetLEDState", 5),
    overWifi("SetSEGSwitch", 1),
    overWifi("SetSEGLevel", 1),
    overWifi("SetESEG", 3),
    overWifi("SetAXILevel", 2),
    overWifi("SetAimpointLevel", 1),
    overWifi("GetWiFiImage", 0, 1),
    overWifi("SetWiFiVideoRes", 2),
};

constexpr Kept keptOverUsb[] = {
    {"Init", 0, 0, deviceListBytes},
    picture("SetVideoProcAmp"),
    picture("GetVideoProcAmp"),
    picture("GetVideoProcAmpValueRange"),
};

Kept keptBy(const char* name, std::span<const Kept> rows) {
  const auto row = std::find_if(rows.begin(), rows.end(), [name](const Kept& kept) {
    return std::strcmp(kept.name, name) == 0;
  });
  return row == rows.end() ? Kept{name} : *row;
}

// Returns a line with the number of calls and what they left open.
std::string callOften(const ExportedCall& call, int chosenIndex, const Kept& kept) {
  const bool opens = std::strcmp(call.name, "Init") == 0;
  Arguments arguments = busiestArguments(call, std::max(chosenIndex, 0));
  arguments.file = stillName;
  const auto once = [&] {
    if (opens) SetVideoDeviceIndex(chosenIndex);
    call.call(arguments);
  };
  for (int i = 0; i < firstCalls; ++i) once();  // one-time initialisation
  const Resources before = resources();
  const ULONGLONG end = GetTickCount64() + limit_ms();
  int calls = 0;
  while (calls < minCalls ||
         (calls < maxCalls && kept.handles * calls < maxHandles && GetTickCount64() < end)) {
    once();
    ++calls;
  }
  Resources left = resources() - before;
  // On a busy machine a worker may exceed its limit and end shortly after its call.
  for (int i = 0; i < 40 && left.threads > 0; ++i) {
    Sleep(50);
    left = resources() - before;
  }
  EXPECT_LE(left.handles, kept.handles * calls + slackHandles) << call.name;
  EXPECT_LE(left.threads, 0) << call.name;
  EXPECT_GE(left.heapBytes, kept.minHeapBytes * calls) << call.name;
  EXPECT_LE(left.heapBytes, kept.maxHeapBytes * calls + slackBytes) << call.name;
  char line[128];
  std::snprintf(line, sizeof line, "%-26s %4d calls leave %ld handles, %ld threads, %lld bytes\n",
                call.name, calls, left.handles, left.threads, left.heapBytes);
  return line;
}

// On the camera with that index; -1: automatic choice.
void callEverything(int chosenIndex, std::span<const Kept> rows) {
  const NoPauses quick;
  std::string report;
  testing::internal::CaptureStdout();  // the DLL prints what it finds on USB 3
  for (const ExportedCall& call : everyExport()) {
    const bool elsewhere = chosenIndex != wifiIndex && std::strcmp(call.name, "GetWiFiImage") == 0;
    if (!elsewhere) report += callOften(call, chosenIndex, keptBy(call.name, rows));
  }
  const std::string printed = testing::internal::GetCapturedStdout();
  if (testing::Test::HasFailure()) report = printed + report;
  std::fputs(report.c_str(), stdout);
}

TEST(Handles, wifi) {
  callEverything(wifiIndex, keptOverWifi);
  DeleteFileA(stillName);
}

TEST(Handles, usb) {
  callEverything(0, keptOverUsb);
}

TEST(Handles, hid) {
  callEverything(0, keptOverUsb);
}

TEST(Handles, usb3) {
  callEverything(-1, keptOverUsb);
}

}  // namespace
}  // namespace qvx::tests
