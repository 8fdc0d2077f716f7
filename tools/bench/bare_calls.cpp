#include "tools/bench/bare_calls.h"

#include <windows.h>
// These headers depend on windows.h.
#include <objbase.h>
#include <process.h>
#include <wininet.h>

#include <array>
#include <cfloat>
#include <cstdarg>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "platform/hid.h"
#include "platform/libusbk.h"
#include "platform/process.h"
#include "platform/text.h"
#include "platform/topology.h"
#include "platform/video_inputs.h"
#include "transport/usb3.h"
#include "transport/wifi_address.h"

namespace qvx::bench {

namespace {

constexpr std::uint32_t propertySize = 32, headerSize = 5, reportSize = 65;
using Property = std::array<std::uint8_t, propertySize>;
using Header = std::array<std::uint8_t, headerSize>;
using Report = std::array<std::uint8_t, reportSize>;

constexpr platform::PropertySet registerSet = {
    0x5A215226, 0x3289, 0x4156, {0x89, 0x4A, 0x5C, 0x55, 0x7C, 0xDF, 0x96, 0x64}};
constexpr platform::PropertySet commandSet = {
    0xC66D125B, 0x0480, 0x0844, {0x8C, 0x26, 0xB8, 0x36, 0x3A, 0x84, 0xDE, 0x63}};

HINTERNET openSession() {
  return InternetOpenW(L"HTTP Downloader", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
}

HINTERNET openUrl(HINTERNET session, const std::wstring& url) {
  return InternetOpenUrlW(session, url.c_str(), nullptr, 0, INTERNET_FLAG_RELOAD, 0);
}

class ExtensionUnit final : public BareBridge {
 public:
  ExtensionUnit(std::shared_ptr<platform::TopologyFilter> filter, std::uint32_t node)
      : filter_(std::move(filter)), node_(node) {}

 protected:
  void registerRead() override { exchange(26, {0x06, 0x00, 1}); }
  void registerWrite() override { send(27, {0x06, 0x00, 1, 0x04}); }
  void i2cRead() override { exchange(20, {0, 0x62, 1, 1, 0x80, 1}); }

 private:
  void send(std::uint32_t selector, const Property& request) {
    filter_->setProperty(node_, registerSet, selector, request.data(), propertySize);
  }
  void exchange(std::uint32_t selector, const Property& request) {
    Property reply;
    send(selector, request);
    filter_->getProperty(node_, registerSet, selector, reply.data(), propertySize);
  }

  std::shared_ptr<platform::TopologyFilter> filter_;
  std::uint32_t node_;
};

class Hid final : public BareBridge {
 public:
  explicit Hid(std::unique_ptr<platform::HidDevice> device) : device_(std::move(device)) {}

 protected:
  void registerRead() override {
    sendHeader({0x87, 0x00, 0x06, 1, 0});
    fetch();
  }
  void registerWrite() override {
    sendHeader({0x87, 0x01, 0, 0, 0});
    send({0x93, 0x06, 1, 0x04});
  }
  void i2cRead() override {
    send({0x97, 0x0C, 0, 0x62, 1, 1, 0x80, 1});
    fetch();
  }

 private:
  void sendHeader(const Header& header) { device_->setFeature(header.data(), headerSize); }
  void send(const Report& report) { device_->setFeature(report.data(), reportSize); }
  void fetch() {
    Report reply{0x93};
    device_->getFeature(reply.data(), reportSize);
  }

  std::unique_ptr<platform::HidDevice> device_;
};

struct Transfer {
  BareBridge* camera;
  void (BareBridge::*run)();
};

// The mutex shared by all processes that use a bridge camera.
HANDLE openMutex() {
  return CreateMutexA(nullptr, FALSE, "Empia VideoClass HidClass Library");
}

HANDLE sharedMutex() {
  static const HANDLE mutex = openMutex();
  return mutex;
}

// The calls for opening and closing a transport, around the search.
template <class Search>
void asTransport(Search search) {
  CoInitialize(nullptr);
  const HANDLE mutex = openMutex();
  WaitForSingleObject(mutex, 1000);
  search();
  ReleaseMutex(mutex);
  CloseHandle(mutex);
  CoUninitialize();
}

// Searches each video input for a node of either register set.
void searchExtensionUnitsInVain() {
  asTransport([] {
    for (const auto& filter : platform::openTopologyFilters()) {
      for (int set = 0; set < 2; ++set) filter->vendorNodes();
    }
  });
}

std::vector<std::string> describedHidInterfaces() {
  std::vector<std::string> paths = platform::listHidInterfaces().value();
  for (const std::string& path : paths) platform::describeHidFeatures(path);
  return paths;
}

[[gnu::format(printf, 1, 2)]] void print(const char* pattern, ...) {
  va_list arguments;
  va_start(arguments, pattern);
  std::vprintf(pattern, arguments);
  va_end(arguments);
  std::fflush(stdout);
}

unsigned __stdcall runTransfer(void* argument) {
  const auto& transfer = *static_cast<Transfer*>(argument);
  WaitForSingleObject(sharedMutex(), 1000);
  (transfer.camera->*transfer.run)();
  ReleaseMutex(sharedMutex());
  return 0;
}

}  // namespace

void barePause(unsigned milliseconds) {
  Sleep(milliseconds);
}

void bareSettings() {
  platform::wideToUtf8(platform::environmentVariable(wifiCameraVariable));
  platform::floatingPointControl(platform::floatingPointControl(0, 0), _MCW_EM);
}

void bareWifiCommand(const std::wstring& url) {
  const HINTERNET request = openUrl(openSession(), url);
  char answer[8192];
  DWORD received = 0;
  InternetReadFile(request, answer, sizeof answer, &received);
}

void bareWifiSearch(const std::wstring& baseUrl) {
  HINTERNET session = openSession();
  DWORD limit_ms = 2000;
  InternetSetOptionW(session, INTERNET_OPTION_CONNECT_TIMEOUT, &limit_ms, sizeof limit_ms);
  InternetSetOptionW(session, INTERNET_OPTION_RECEIVE_TIMEOUT, &limit_ms, sizeof limit_ms);
  openUrl(session, baseUrl);
  InternetCloseHandle(session);

  bareBridgeSearch();
  bareLibusbkSearch();

  session = openSession();
  const HINTERNET request = openUrl(session, baseUrl + L"usbdevlist.json");
  char chunk[8192];
  DWORD received = 0;
  while (InternetReadFile(request, chunk, sizeof chunk, &received) && received != 0) continue;
  InternetCloseHandle(request);
  InternetCloseHandle(session);
}

void bareBridgeSearch() {
  searchExtensionUnitsInVain();
  asTransport(describedHidInterfaces);
}

void bareLibusbkSearch() {
  platform::KLST_HANDLE devices = nullptr;
  platform::LstK_Init(&devices, 0);
  print("Error initializing device list.\n");
}

void bareListing() {
  CoInitialize(nullptr);
  for (const auto& input : platform::listVideoInputs()) platform::wideToOem(input.displayName);
}

void bareTimer() {
  SetTimer(nullptr, 999, 250, [](HWND, UINT, UINT_PTR, DWORD) {});
}

void BareBridge::onWorker(void (BareBridge::*transfer)()) {
  Transfer work{this, transfer};
  const auto thread =
      reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, runTransfer, &work, 0, nullptr));
  DWORD code = 0;
  WaitForSingleObject(thread, 500);
  GetExitCodeThread(thread, &code);
  CloseHandle(thread);
}

void BareBridge::readController() {
  onWorker(&BareBridge::registerRead);
  onWorker(&BareBridge::registerRead);
  onWorker(&BareBridge::registerWrite);
  onWorker(&BareBridge::i2cRead);
}

std::unique_ptr<BareBridge> openBareExtensionUnit() {
  std::unique_ptr<BareBridge> camera;
  asTransport([&camera] {
    for (const auto& filter : platform::openTopologyFilters()) {
      for (const std::uint32_t node : filter->vendorNodes()) {
        if (!filter->supports(node, registerSet)) continue;
        filter->vendorNodes();
        filter->supports(node, commandSet);
        camera = std::make_unique<ExtensionUnit>(filter, node);
        camera->readGeneration();
      }
    }
  });
  if (camera == nullptr) throw std::runtime_error("no camera with an extension unit");
  return camera;
}

std::unique_ptr<BareBridge> openBareHid() {
  std::unique_ptr<BareBridge> camera;
  searchExtensionUnitsInVain();
  asTransport([&camera] {
    camera = std::make_unique<Hid>(platform::openHid(describedHidInterfaces().at(0)));
    camera->readGeneration();
  });
  return camera;
}

void bareUsb3Read() {
  std::uint8_t request[2] = {0x62, 0x80}, value = 0;
  std::uint32_t moved = 0;
  platform::UsbK_ControlTransfer(handle, {0x21, 0x01, 0x0303, 0x0300, 2}, request, 2, &moved);
  platform::UsbK_ControlTransfer(handle, {0xA1, 0x81, 0x0303, 0x0300, 1}, &value, 1, &moved);
}

// Without the list of pipes: only the first opening queries them.
void bareUsb3Open() {
  platform::KLST_HANDLE devices = nullptr;
  platform::KUSB_HANDLE opened = nullptr;
  platform::KLST_DEVINFO* device = nullptr;
  platform::WINUSB_PIPE_INFORMATION pipe{};
  std::uint32_t count = 0, moved = 0;
  std::uint8_t descriptor[18];
  platform::LstK_Init(&devices, 0);
  platform::LstK_Count(devices, &count);
  print("Looking for device vid/pid %04X/%04X..\n", 0x3C7E, 0x9B0);
  platform::LstK_FindByVidPid(devices, 0x3C7E, 0x9B0, &device);
  const platform::KLST_DEVINFO& found = *device;
  platform::LstK_MoveNext(devices, &device);
  print("Using %04X:%04X (%s): %s - %s\n", found.Common.Vid, found.Common.Pid,
        found.Common.InstanceID, found.DeviceDesc, found.Mfg);
  platform::LibK_LoadDriverAPI(&Usb, found.DriverID);
  Usb.Init(&opened, &found);
  print("Device opened successfully!\n");
  print("Pipe Information:\n");
  Usb.QueryPipe(opened, 0, 2, &pipe);
  platform::UsbK_ControlTransfer(opened, {0x80, 0x06, 0x0100, 0, sizeof descriptor}, descriptor,
                                 sizeof descriptor, &moved);
}

}  // namespace qvx::bench
