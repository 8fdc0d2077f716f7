// The cost of the library beyond its system calls, as a table: bench.exe [section...]. Needs a
// simulated Wi-Fi camera on port 8080 and the rights to plug in simulated cameras.
#include <windows.h>
// These headers depend on windows.h.
#include <json/reader.h>
#include <json/value.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "transport/control_document.h"
#include "controls/feature_word.h"
#include "controls/magnification.h"
#include "etlib2/etLib2.h"
#include "models/families.h"
#include "platform/com.h"
#include "qvx64/api.h"
#include "state/device_state.h"
#include "tests/windows/fixtures/simulated_cameras.h"
#include "tools/bench/bare_calls.h"
#include "tools/bench/measure.h"
#include "transport/controller.h"
#include "transport/http_request.h"
#include "transport/wifi.h"

namespace {

using namespace qvx;
using namespace qvx::bench;
using tests::SimulatedCameras;

constexpr int calls = 1000;
constexpr int callRounds = 200;

// A calibration of three points in single bytes: on a bridge Init reads 16 controller registers
// with one pause; over Wi-Fi it reads 25 with a pause after each.
constexpr char bridgeCamera[] = "0890";
constexpr int controllerReadsOfInit = 16, wifiReadsOfInit = 25;
constexpr unsigned pauseOfInit_ms = 100, pauseOfWifiRead_ms = 5, pauseOfWifiWrite_ms = 10;
constexpr int roundsOfInit = 100;

// The only model whose controller is read over USB 3: its calibration takes 16 registers with a
// pause after each.
constexpr int usb3ReadsOfInit = 27, calibrationRegisters = 16;
constexpr unsigned pauseOfCalibration_ms = 50;

void require(bool done, const std::string& problem) {
  if (!done) throw std::runtime_error(problem);
}

void initialize(int deviceIndex) {
  SetVideoDeviceIndex(deviceIndex);
  require(Init() == 1, "no camera at device index " + std::to_string(deviceIndex));
}

void measureWifi() {
  const std::string base = wifiBaseUrl();
  const std::wstring read = widen(CMD_I2C_R(base, 0x62, 0x80, 1, 1));
  const std::string write = CMD_GPIO_W(base, 0, 0x02, 0x02);  // its lights are on GPIO pins
  initialize(wifiDeviceIndex);
  compare(
      {"Wi-Fi register read, us", 300, 1.05}, [] { ReadPIC(0x80); },
      [&] {
        bareWifiCommand(read);
        barePause(pauseOfWifiRead_ms);
      });
  compare(
      {"Wi-Fi register write, us", 300, 1.05}, [&] { loadUrlwWininet(write); },
      [&] {
        barePause(pauseOfWifiWrite_ms);
        bareWifiCommand(widen(write));
      });
  compare(
      {"Init, Wi-Fi, us", roundsOfInit, 1.15}, [] { initialize(wifiDeviceIndex); },
      [&] {
        bareSettings();
        bareWifiSearch(widen(base));
        for (int i = 0; i < wifiReadsOfInit; ++i) {
          bareWifiCommand(read);
          barePause(pauseOfWifiRead_ms);
        }
        barePause(pauseOfInit_ms);
        bareTimer();
      });
}

void measureBridge(const char* path, std::unique_ptr<BareBridge> (*open)()) {
  constexpr double limit = 1.15;
  static std::uint32_t value = 0;
  initialize(0);
  const auto bare = open();
  const std::string name = path;
  compare(
      {(name + " register read, us").c_str(), 1500, limit},
      [] { etLib2_RegRead_DevNum(0, 0x0006, 1, &value); }, [&] { bare->readRegister(); });
  compare(
      {(name + " controller read, us").c_str(), 500, limit}, [] { ReadFromPIC(0, 0x80); },
      [&] { bare->readController(); });
  compare(
      {("Init, " + name + ", us").c_str(), roundsOfInit, limit}, [] { initialize(0); },
      [&] {
        bareSettings();
        const auto camera = open();
        bareListing();
        bareLibusbkSearch();
        bareListing();
        barePause(pauseOfInit_ms);
        for (int i = 0; i < controllerReadsOfInit; ++i) camera->readController();
        bareTimer();
      });
}

void measureExtensionUnit() {
  const SimulatedCameras camera({std::string("usb:") + bridgeCamera});
  measureBridge("extension unit", openBareExtensionUnit);
}

void measureHid() {
  const SimulatedCameras camera({std::string("hid:") + bridgeCamera});
  measureBridge("HID", openBareHid);
}

void measureGetConfig() {
  const SimulatedCameras camera({"usb:0970"});
  initialize(0);
  const auto bare = openBareExtensionUnit();
  compare(
      {"GetConfig, extension unit, us", 500, 1.15}, [] { GetConfig(0); },
      [&] {
        bare->readController();
        bare->readController();
      });
}

void measureUsb3() {
  const SimulatedCameras camera({"usb3:09b0"});
  initialize(chooseAutomatically);
  compare(
      {"USB 3 register read, us", 3000, 1.15}, [] { ReadFromPIC(0, 0x80); }, bareUsb3Read);
  // With a device index, Init would open a USB 3 camera only next to a bridge camera.
  compare(
      {"Init, USB 3, us", roundsOfInit, 1.15}, [] { initialize(chooseAutomatically); },
      [] {
        bareSettings();
        bareUsb3Open();
        bareListing();
        bareBridgeSearch();
        bareListing();
        barePause(pauseOfInit_ms);
        for (int i = 0; i < usb3ReadsOfInit; ++i) bareUsb3Read();
        for (int i = 0; i < calibrationRegisters; ++i) barePause(pauseOfCalibration_ms);
        bareTimer();
      });
}

// Twenty controls; the test reads the last one.
std::string controlDocument() {
  std::string text = R"({"controls": [)";
  for (int i = 1; i <= 20; ++i) {
    text += (i == 1 ? "" : ",") + std::string(R"({"name": "Control )") + std::to_string(i) +
            R"(", "id": "9963776", "type": "1", "min": "-64", "max": "64", "step": "1",)" +
            R"( "default": "0", "value": "12", "group": "1"})";
  }
  return text + "]}";
}

void measureComputations() {
  static const std::string text = controlDocument();
  compare(
      {"control document / jsoncpp alone, us", 500, 1.10}, [] { controlIn(text, "Control 20"); },
      [] {
        Json::Value root;
        Json::Reader().parse(text.data(), text.data() + text.size(), root);
      });
  [[maybe_unused]] static volatile int sink = 0;
  printValue(
      "predicate over a range (isVK7xxxSeries), us",
      fastest_us(callRounds, calls, [](int i) { sink = isVK7xxxSeries(0x900 + (i & 0xFF)); }),
      0.02);
  printValue(
      "predicate over a list (isVK4xxx_2Series), us",
      fastest_us(callRounds, calls, [](int i) { sink = isVK4xxx_2Series(0x870 + (i & 0x3F)); }),
      0.05);
  // Without a camera the register reads fail at once: only the computation remains.
  etLib2_Release();
  nTmpIdx = 0;
  ulC5 = 3;
  fabc = {1.0F, 0.5F, 0.25F, 0.125F};
  printValue("rate computation (cubic, smoothed), us",
             fastest_us(callRounds, calls, [](int) { Count890Rate(); }), 1);
}

// The library stays loaded, so each load is measured in a separate process, whose exit code is the
// time in tenths of a microsecond.
int load(const std::string& name) {
  HMODULE library = nullptr;
  const double time_us = timeOf_us([&] { library = LoadLibraryA(name.c_str()); });
  return library == nullptr ? 0 : static_cast<int>(10 * time_us);
}

double loadTime_us(const std::wstring& name) {
  wchar_t program[MAX_PATH];
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  std::wstring line = L"\"" + std::wstring(program) + L"\" --load " + name;
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  DWORD tenths_us = 0;
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                     &process)) {
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &tenths_us);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  require(tenths_us != 0, "a DLL does not load");
  return tenths_us / 10.0;
}

double sizeOfDll_KiB() {
  const HMODULE module = LoadLibraryW(L"QVX64.dll");
  wchar_t path[MAX_PATH] = L"";
  GetModuleFileNameW(module, path, MAX_PATH);
  FreeLibrary(module);
  return static_cast<double>(std::filesystem::file_size(path)) / 1024;
}

void measureDll() {
  compareTimes(
      {"load the DLL / one of the same imports, us", 60, 1.2},
      [] { return loadTime_us(L"QVX64.dll"); }, [] { return loadTime_us(L"qvx_bench_bare.dll"); });
  printValue("DLL size, KiB", sizeOfDll_KiB(), 1280);
}

const struct {
  const char* name;
  void (*run)();
} sections[] = {{"head", printHead},
                {"wifi", measureWifi},
                {"bridge", measureExtensionUnit},
                {"hid", measureHid},
                {"usb3", measureUsb3},
                {"config", measureGetConfig},
                {"computations", measureComputations},
                {"dll", measureDll}};

void runSection(const std::string& name) {
  for (const auto& section : sections) {
    if (section.name == name) return section.run();
  }
  throw std::runtime_error("no section " + name);
}

}  // namespace

int main(int count, char** arguments) {
  if (count == 3 && std::string(arguments[1]) == "--load") return load(arguments[2]);
  openTable();
  try {
    for (int i = 1; i < count; ++i) runSection(arguments[i]);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "bench: %s\n", problem.what());
    return 2;
  }
  return rowsOverLimit() == 0 ? 0 : 1;
}
