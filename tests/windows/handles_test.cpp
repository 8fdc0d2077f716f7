// Leaks: every export is called repeatedly on one kind of camera, and the process's handles,
// threads and heap may grow only by what is left open on purpose. Each export is called 1,000
// times, or as often as its time permits: QVX_MS_PER_EXPORT in the environment. The suite prints
// the number.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "tests/support/every_export.h"
#include "tests/support/items.h"
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
  int handles = 0;  // of the kernel, at most
  int minHeapBytes = 0, maxHeapBytes = 0;
};
using KeptByExport = std::map<std::string, Kept>;

// Exports and how many requests over Wi-Fi each makes whose answers it reads, or does not.
constexpr char readRequests[] =
    "Init 36|GetConfig 2|SetLensInitPos 2|SetLensPos 5|SetLensFinePos 5|GetLensPosLimits 4|"
    "GetLensFinePosLimits 6|SetExposureValue 5|GetExposureValue 5|GetAETarget 1|SetAutoExposure 3|"
    "GetAutoExposure 2|SetFlicker 2|GetVideoProcAmp 1|GetVideoProcAmpValueRange 1|SetLEDState 5|"
    "SetSEGSwitch 1|SetSEGLevel 1|SetESEG 3|SetAXILevel 2|SetAimpointLevel 1|SetWiFiVideoRes 2";
constexpr char unreadRequests[] = "SetAETarget 4|SetVideoProcAmp 1|GetWiFiImage 1";

// A request that was read leaves its session and itself open, and the connection if that is not
// closed yet. One that was not read leaves itself open.
KeptByExport overWifi() {
  KeptByExport kept;
  const auto add = [&kept](const char* requests, const Kept& byEach) {
    for (const std::string& item : itemsIn(requests)) {
      const int count = std::stoi(item.substr(item.find(' ')));
      kept[item.substr(0, item.find(' '))] = {count * byEach.handles, count * byEach.minHeapBytes,
                                              count * byEach.maxHeapBytes};
    }
  };
  add(readRequests, {2, 9000, 12000});
  add(unreadRequests, {0, 100, 200});
  return kept;
}

// Access to a picture property of a USB camera leaves four objects of the capture driver open; the
// sizes are those of the simulated cameras' driver.
KeptByExport overUsb() {
  constexpr Kept deviceList = {0, 0, 2700};  // with the record of one device
  constexpr Kept picture = {3, 450, 600};
  return {{"Init", deviceList},
          {"SetVideoProcAmp", picture},
          {"GetVideoProcAmp", picture},
          {"GetVideoProcAmpValueRange", picture}};
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
void callEverything(int chosenIndex, KeptByExport kept) {
  const NoPauses quick;
  std::string report;
  testing::internal::CaptureStdout();  // the DLL prints what it finds on USB 3
  for (const ExportedCall& call : everyExport()) {
    const bool elsewhere = chosenIndex != wifiIndex && std::strcmp(call.name, "GetWiFiImage") == 0;
    if (!elsewhere) report += callOften(call, chosenIndex, kept[call.name]);
  }
  const std::string printed = testing::internal::GetCapturedStdout();
  if (testing::Test::HasFailure()) report = printed + report;
  std::fputs(report.c_str(), stdout);
}

TEST(Handles, OverWifi) {
  callEverything(wifiIndex, overWifi());
  DeleteFileA(stillName);
}

TEST(Handles, OfABridge) {
  callEverything(0, overUsb());
}

TEST(Handles, OverUsb3) {
  callEverything(-1, overUsb());
}

}  // namespace
}  // namespace qvx::tests
