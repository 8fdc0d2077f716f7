// What the library costs beyond the system calls it makes. Needs a simulated Wi-Fi camera on port
// 8080 and the rights to register a virtual video camera.
#include <windows.h>
// The process's own headers follow windows.h.
#include <json/reader.h>
#include <json/value.h>
#include <process.h>
#include <wininet.h>

#include <array>
#include <cstdio>
#include <string>

#include "controls/control_document.h"
#include "controls/magnification.h"
#include "etlib2/etLib2.h"
#include "models/families.h"
#include "platform/com.h"
#include "platform/topology.h"
#include "simulator/capture_filter/camera_registry.h"
#include "state/device_state.h"
#include "tests/bench/measure.h"
#include "transport/wifi.h"

namespace {

using namespace qvx;
using namespace qvx::bench;

const std::string readUrl = CMD_I2C_R(wifiBaseUrl(), 0x62, 0x01, 1, 1);

// The request and its one read; like the library's, both handles stay open.
void bareWifiRead() {
  static const std::wstring url = widen(readUrl);
  const HINTERNET session = InternetOpenW(L"HTTP Downloader", 0, nullptr, nullptr, 0);
  const HINTERNET request =
      InternetOpenUrlW(session, url.c_str(), nullptr, 0, INTERNET_FLAG_RELOAD, 0);
  char answer[8192];
  DWORD received = 0;
  InternetReadFile(request, answer, sizeof answer, &received);
}

void measureWifi() {
  constexpr int rounds = 300;
  printRow("Wi-Fi register read, without its pauses",
           medians_us(
               rounds,
               [] {
                 const auto answer = fetchOnce(readUrl, 0);
                 if (answer) resultIn(*answer);
               },
               bareWifiRead),
           1.05);
}

void loadAndFree(const wchar_t* name) {
  FreeLibrary(LoadLibraryW(name));
}

void measureLoading() {
  printRow("LoadLibrary and FreeLibrary",
           medians_us(
               100, [] { loadAndFree(L"QVX64.dll"); }, [] { loadAndFree(L"qvx_bench_bare.dll"); }),
           0);
}

// A thread that does one thing, waited for.
void onBareThread(unsigned(__stdcall* body)(void*), void* argument) {
  const auto thread =
      reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, body, argument, 0, nullptr));
  WaitForSingleObject(thread, 500);
  DWORD code = 0;
  GetExitCodeThread(thread, &code);
  CloseHandle(thread);
}

unsigned __stdcall doNothing(void*) {
  return 0;
}

constexpr platform::PropertySet registerSet = {
    0x5A215226, 0x3289, 0x4156, {0x89, 0x4A, 0x5C, 0x55, 0x7C, 0xDF, 0x96, 0x64}};

struct BareCamera {
  std::shared_ptr<platform::TopologyFilter> filter;
  std::uint32_t node;
};

unsigned __stdcall readProperty(void* argument) {
  const auto& camera = *static_cast<BareCamera*>(argument);
  std::array<std::uint8_t, 32> request = {0x85, 0x00, 0x01}, reply{};
  camera.filter->setProperty(camera.node, registerSet, 26, request.data(), request.size());
  camera.filter->getProperty(camera.node, registerSet, 26, reply.data(), reply.size());
  return 0;
}

void measureCallLayer() {
  constexpr int rounds = 2000;
  constexpr std::uint32_t nobody = 99;
  std::string problem;
  const std::string text = "0970";
  if (!simulator::registerCameras(std::span(&text, 1), simulator::Naming::devicePath,
                                  simulator::filterBesideProgram(), problem)) {
    std::printf("no virtual camera: %s\n", problem.c_str());
    return;
  }
  platform::initializeCom();
  static std::uint32_t value = 0;
  if (etLib2_Init() != 0) {
    printRow("etLib2 call / thread start and wait",
             medians_us(
                 rounds, [] { etLib2_RegRead_DevNum(nobody, 0x85, 1, &value); },
                 [] { onBareThread(doNothing, nullptr); }),
             1.20);
    BareCamera camera{platform::openTopologyFilters().at(0), 0};
    camera.node = camera.filter->vendorNodes().at(0);
    printRow("bridge register read / thread and property",
             medians_us(
                 rounds, [] { etLib2_RegRead_DevNum(0, 0x85, 1, &value); },
                 [&camera] { onBareThread(readProperty, &camera); }),
             1.20);
  }
  etLib2_Release();
  simulator::unregisterCameras();
}

// Twenty controls, of which the last one is wanted.
std::string controlDocument() {
  std::string text = R"({"controls": [)";
  for (int i = 1; i <= 20; ++i) {
    text += (i == 1 ? "" : ",") + std::string(R"({"name": "Control )") + std::to_string(i) +
            R"(", "id": "9963776", "type": "1", "min": "-64", "max": "64", "step": "1",)" +
            R"( "default": "0", "value": "12", "group": "1"})";
  }
  return text + "]}";
}

void measureControlDocument() {
  static const std::string text = controlDocument();
  printRow("control document / jsoncpp alone",
           medians_us(
               500, [] { controlIn(text, "Control 20"); },
               [] {
                 Json::Value root;
                 Json::Reader().parse(text.data(), text.data() + text.size(), root);
               }),
           1.10);
}

void measureComputations() {
  constexpr int calls = 1000;
  [[maybe_unused]] static volatile int sink = 0;
  printRow("predicate over a range (isVK7xxxSeries)", median_us(200, [] {
                                                        for (int i = 0; i < calls; ++i)
                                                          sink = isVK7xxxSeries(0x900 + (i & 0xFF));
                                                      }) / calls);
  printRow("predicate over a list (isVK4xxx_2Series)", median_us(200, [] {
                                                         for (int i = 0; i < calls; ++i)
                                                           sink =
                                                               isVK4xxx_2Series(0x870 + (i & 0x3F));
                                                       }) / calls);
  // With no device its register reads end at once: what remains is the computation.
  nTmpIdx = 0;
  ulC5 = 3;
  fabc = {1.0F, 0.5F, 0.25F, 0.125F};
  printRow("rate computation (cubic, smoothed)", median_us(200, [] {
                                                   for (int i = 0; i < calls; ++i) Count890Rate();
                                                 }) / calls);
}

}  // namespace

int main() {
  printHead();
  measureWifi();
  measureLoading();
  measureCallLayer();
  measureControlDocument();
  measureComputations();
  return rowsOverLimit() == 0 ? 0 : 1;
}
