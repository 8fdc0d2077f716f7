// Init: every step, in order, as the cameras and the system see it; and every exit.
#include <algorithm>
#include <climits>
#include <regex>
#include <set>

#include "api/events.h"
#include "controls/magnification.h"
#include "qvx64/api.h"
#include "state/kept_state.h"
#include "tests/support/cameras.h"
#include "tests/support/product_ids.h"
#include "tests/support/wifi_registers.h"
#include "transport/controller.h"

namespace qvx::tests {
namespace {

using simulator::VirtualBridge;

class InitTest : public CameraTest {
 protected:
  // Init, without what it prints of USB 3 cameras.
  int initQuietly() {
    int result = -1;
    printedBy([&] { result = Init(); });
    return result;
  }
};

class InitWifi : public InitTest {
 protected:
  InitWifi() {
    machine().wifi = camera.server();
    camera.values = {{0x80, 0x40}, {0xC3, 1}, {0xC5, 255}};
    SetVideoDeviceIndex(90);
    announce("0970");
  }

  void announce(const char* pid) {
    camera.deviceList = std::string(R"([{"idVendor": "0x3c7e", "idProduct": "0x)") + pid + "\"}]";
  }
  WifiRegisters camera;
};

TEST_F(InitWifi, SendsTheseRequestsInThisOrder) {
  EXPECT_EQ(initQuietly(), 1);
  EXPECT_EQ(std::regex_replace(traffic(), std::regex(" p5"), ""),
            "time-outs 2000 2000 GET http://127.0.0.1:8080/ floating point 0 mask 0 "
            "floating point 9001F mask 8001F GET http://127.0.0.1:8080/usbdevlist.json "
            "r62.80 r62.83 r62.84 r62.C0 r62.C1 r62.C2 r62.C3 r62.C4 r62.C5 p100 "
            "r62.80 r62.80 r62.80 "  // two predicates refresh, then the step
            "r62.C0 r62.C1 r62.C2 r62.01 r62.C3 r62.C5 "
            "r62.40 r62.41 r62.42 r62.43 r62.44 r62.45 r62.46 r62.47 r62.48 r62.49 r62.4A r62.4B "
            "r62.01 r62.02 timer 999 every 250");  // the first sample
}

TEST_F(InitWifi, SettlesTheDevice) {
  camera.values[0x83] = 4;
  EXPECT_EQ(initQuietly(), 1);
  EXPECT_EQ(std::tuple(GetVideoDeviceIndex(), nPid, nCurrPid, nTmpIdx, bMAGSeries, int{bWait}),
            std::tuple(90, 0x970, 0x970, 90, 1, 1));
  EXPECT_EQ(std::tuple(n80, n83, nC5, ul80, ulC3), std::tuple(0x40u, 4u, 255u, 0x40u, 1u));
  EXPECT_EQ(machine().open.comInitializations, 0);
  EXPECT_EQ(openHttp(), std::pair(32, 32 + 1)) << "of each read, and the probe's request";
}

// Init, a command on the kept base and a request that builds its own.
TEST_F(InitWifi, FindsTheCameraWhereTheEnvironmentSays) {
  using Hosts = std::set<std::string>;
  for (const auto& [address, expected] : {std::pair("", Hosts{"http://127.0.0.1:8080"}),
                                          {"localhost", {}},
                                          {"10.1.2.3:81", {"http://10.1.2.3:81"}}}) {
    machine().environment["QVX64_WIFI_CAMERA"] = address;
    initQuietly();
    SetSEGLevel(90, 1);
    GetWiFiImage("still.jpg");
    SetVideoProcAmp(0, 5);
    Hosts hosts;
    for (const std::string& line : journal())
      if (line.starts_with("GET ")) hosts.insert(line.substr(4, line.find('/', 12) - 4));
    EXPECT_EQ(hosts, expected);
  }
  EXPECT_TRUE(sRegC3.starts_with("http://10.1.2.3:81/"));
}

TEST_F(InitWifi, TellsTheDebuggerOfAnAddressThatIsNone) {
  machine().environment["QVX64_WIFI_CAMERA"] = "1.2.3";
  ReadPIC(0x80);  // before any Init
  EXPECT_EQ(journal(), Journal{"debugger: QVX64: no Wi-Fi camera is looked for: QVX64_WIFI_CAMERA "
                               "is not IPV4 or IPV4:PORT but \"1.2.3\"\n"});
  ReadPIC(0x80);
  EXPECT_EQ(journal(), Journal{});
  EXPECT_EQ(initQuietly(), 0);
  EXPECT_EQ(journal().front().substr(0, 9), "debugger:");
}

TEST_F(InitWifi, ReadsTheProductIdFromTheDeviceList) {
  const std::string entry = R"({"idVendor": "0x3c7e", "idProduct": "0x)";
  // What comes in chunks, the product id in them, and whether everything is answered so.
  const Rows<std::vector<std::string>, int, bool> rows = {
      {{entry + "0970\"}," + entry + "09c1\"}"}, 0x9C1, false},  // the last one counts
      {{entry + "0970\"}", entry + "0871\"}"}, 0x871, false},    // over the chunks, too
      {{entry + "09"}, 0, false},                                // cut short
      {{entry.substr(0, 30), entry.substr(30) + "0970"}, 0, false},
      {{std::string("x\0", 2) + entry + "0970"}, 0, false},  // text ends at a NUL
      {{entry + "zzzz\"}"}, 0, false},
      {{std::string(8192, '0')}, 0, true},
      {std::vector<std::string>{}, 0, true},
      {{"re"}, 0, true},
      {{std::string(20000, '\xFE')}, 0, true},
      {{"res:2147483647"}, 0, true},
      {{"res:-2147483648"}, 0, true}};
  for (const auto& [chunks, pid, toEverything] : rows) {
    nPid = nCurrPid = 0;
    machine().wifi = [&, all = toEverything, answer = chunks](const std::string& url) {
      const bool isIt = url.ends_with(".json") || (all && url != cameraUrl);
      return isIt ? simulator::HttpAnswer{true, answer} : camera.answer(url);
    };
    EXPECT_EQ(initQuietly(), 1);
    EXPECT_EQ(nPid, pid);
    machine().pumpMessages(2500);
  }
}

TEST_F(InitWifi, WithoutACameraFails) {
  machine().wifi = nullptr;
  EXPECT_EQ(initQuietly(), 0);
  EXPECT_EQ(traffic(),
            "time-outs 2000 2000 GET http://127.0.0.1:8080/ floating point 0 mask 0 "
            "floating point 9001F mask 8001F");
  EXPECT_EQ(openHttp(), std::pair(0, 0));
  EXPECT_EQ(bWait, 0);
  EXPECT_EQ(GetVideoDeviceIndex(), 90);
  machine().wifi = camera.server();
  EXPECT_EQ(initQuietly(), 1) << "and a camera that comes later is found";
}

// Predicates that ask for the feature register are called up to the first that fits.
TEST_F(InitWifi, ModelAndFeatureDecideAboutTheMagnification) {
  enum Measures { never, always, withTheFeature };
  const struct {
    Ids ids;
    Measures measures;
    std::ptrdiff_t reads, readsWithTheFeature = reads;  // of register 0x80
  } rows[] = {{"000", always, 5},
              {"890-893 930-93F", always, 3},
              {"970-97F 990-99F", always, 4},
              {"960-96F 980-98F 9D0-9DF", never, 6},
              {"9B0-9BF", withTheFeature, 6, 4},
              {"9C0-9CF", withTheFeature, 5, 4},
              {"9E0-9EF", withTheFeature, 6},
              {"001-FFF", never, 5}};
  for (int pid = 0; pid < 0xA00; pid += pid == 0 ? 0x870 : 1) {
    const auto& row =
        *std::ranges::find_if(rows, [=](auto& each) { return each.ids.contains(pid); });
    const bool isEdge =
        std::ranges::any_of(rows, [=](auto& each) { return each.ids.hasEdgeAt(pid); });
    for (const int features : {0x00, 0x40, 0xBF}) {
      if (!isEdge && features == 0xBF) continue;
      SCOPED_TRACE(testing::Message() << std::hex << pid << " reads " << features);
      announce(formatted("%04x", static_cast<unsigned>(pid)).c_str());
      camera.values[0x80] = features;
      bMAGSeries = -1;
      machine().timers.clear();
      journal();
      EXPECT_EQ(Init(), 1);
      const bool hasFeature = features == 0x40;
      const bool measures =
          row.measures == always || (row.measures == withTheFeature && hasFeature);
      EXPECT_EQ(bMAGSeries, measures ? 1 : -1);
      EXPECT_EQ(machine().timers.size(), measures ? 1u : 0u);
      EXPECT_EQ(std::ranges::count_if(journal(),
                                      [](auto& line) { return trafficIn({line}) == "r62.80"; }),
                hasFeature ? row.readsWithTheFeature : row.reads);
    }
  }
}

TEST_F(InitWifi, TimerMeasuresWhileItMay) {
  camera.values[0xC5] = 1;
  camera.values[0x68] = 0, camera.values[0x6A] = 40;  // 0 and 10
  camera.values[0x60] = 5, camera.values[0x62] = 25;  // x5 and x25
  camera.values[1] = 10;
  initQuietly();
  EXPECT_EQ(GetMAG(90), 25.0);
  camera.values[1] = 20;
  machine().pumpMessages(249);
  EXPECT_EQ(GetMAG(90), 25.0);
  machine().pumpMessages(1);
  EXPECT_EQ(GetMAG(90), 45.0);
  bWait = 0;
  journal();
  machine().pumpMessages(1000);
  EXPECT_EQ(journal(), Journal{});
  initQuietly();
  machine().pumpMessages(250);
  journal();
  machine().pumpMessages(250);
  EXPECT_EQ(traffic(), "r62.01 p5 r62.02 p5 r62.01 p5 r62.02 p5") << "a second timer";
}

TEST_F(InitTest, WithNothingThereFails) {
  s_mainhttp.clear();
  for (const int index : {-1, 0, 1, 7, 8, 90, 91, -2, INT_MIN, INT_MAX}) {
    SetVideoDeviceIndex(index);
    EXPECT_EQ(initQuietly(), 0) << index;
    EXPECT_EQ(s_mainhttp, cameraUrl);
    EXPECT_EQ(GetVideoDeviceIndex(), index);
    EXPECT_EQ(bWait, 0);
  }
  EXPECT_EQ(machine().open, simulator::OpenCounts{});
}

class InitUsb3 : public InitTest {
 protected:
  InitUsb3() {
    plugUsb3(0x9B0);
    resetLibrary();
    machine().videoInputs = {{simulator::videoInputPath(0x9B0, "a"), L"a", {}}};
  }
};

TEST_F(InitUsb3, ChoosesItAutomatically) {
  SetVideoDeviceIndex(-1);
  EXPECT_EQ(initQuietly(), 1);
  EXPECT_EQ(std::tuple(GetVideoDeviceIndex(), nPid, nTmpIdx, GetVideoDeviceCount(), bMAGSeries),
            std::tuple(0, 0x9B0, 0, 1, 1));
  EXPECT_EQ(ul80, camera().controller.at(0x80));
  EXPECT_GE(GetMAG(0), 1.0);
}

// The product id is not known yet when the device is looked for by its index: only an earlier Init
// or an automatic choice opens it.
TEST_F(InitUsb3, ByIndexNeedsAKnownProductId) {
  SetVideoDeviceIndex(0);
  EXPECT_EQ(initQuietly(), 0);
  nPid = 0x9B0;
  EXPECT_EQ(initQuietly(), 1);
  EXPECT_EQ(nPid, 0x9B0);
  machine().usbDevices.clear();
  SetVideoDeviceIndex(-1);
  EXPECT_EQ(initQuietly(), 0) << "nothing was chosen, although a product id is known";
  SetVideoDeviceIndex(5);
  EXPECT_EQ(initQuietly(), 1) << "the product id alone keeps the library usable";
  EXPECT_EQ(nPid, 0);
}

// The compatibility notes advise applications to go on after this failure.
TEST_F(InitUsb3, OtherProductsFailButAreOpenAndListed) {
  machine().videoInputs = {{simulator::videoInputPath(0x9B1, "a"), L"a", {}}};
  machine().usbDevices[0].productId = 0x9B1;
  SetVideoDeviceIndex(-1);
  EXPECT_EQ(initQuietly(), 0);
  EXPECT_EQ(std::tuple(GetVideoDeviceCount(), machine().open.comInitializations), std::tuple(1, 1));
  EXPECT_EQ(GetAETarget(0), 0x38);
}

class InitBridge : public InitTest {
 protected:
  InitBridge() { machine().videoInputs = {bridgeInput(first, "1"), bridgeInput(second, "2")}; }

  VirtualBridge first{0x970};
  VirtualBridge second{0x9C2};
};

TEST_F(InitBridge, FindsItByIndexAndReadsItsMagnification) {
  for (const int index : {-1, 0, 1}) {
    VirtualBridge& chosen = index == 1 ? second : first;
    SetVideoDeviceIndex(index);
    EXPECT_EQ(initQuietly(), 1);
    EXPECT_EQ(GetVideoDeviceIndex(), index == 1 ? 1 : 0);
    EXPECT_EQ(nPid, chosen.camera.productId());
    // Index 0 stays on the bus it is on.
    EXPECT_NE(traffic().find(index == 1 ? "r62.80f b b r62.C0f" : "r62.80f b r62.C0f"),
              std::string::npos);
    EXPECT_EQ(ulC5, chosen.camera.controller.at(0xC5));
    EXPECT_NEAR(GetMAG(index), chosen.camera.magnification(), chosen.camera.magnification() / 50);
  }
  EXPECT_EQ(complaintsOf(first.camera) + complaintsOf(second.camera), "");
}

TEST_F(InitBridge, WinsOverTheWifiCameraWhenChosenByIndex) {
  WifiRegisters wifi;
  machine().wifi = wifi.server();
  SetVideoDeviceIndex(0);
  EXPECT_EQ(initQuietly(), 1);
  EXPECT_EQ(traffic().find("GET"), std::string::npos);
  SetVideoDeviceIndex(90);
  EXPECT_EQ(initQuietly(), 1);
  EXPECT_EQ(std::pair(GetVideoDeviceIndex(), nTmpIdx), std::pair(90, 90));
}

TEST_F(InitBridge, BadIndexesAddressNobody) {
  for (const int index : {8, 9, -2, INT_MIN, INT_MAX}) {
    SetVideoDeviceIndex(index);
    EXPECT_EQ(initQuietly(), 1);
    EXPECT_EQ(std::pair(nPid, nTmpIdx), std::pair(0, index));
  }
  EXPECT_EQ(complaintsOf(first.camera) + complaintsOf(second.camera), "");
}

}  // namespace
}  // namespace qvx::tests
