// The focus lens: every driver, range and speed, as the cameras see it.
#include <climits>

#include "controls/magnification.h"
#include "etlib2/etLib2.h"
#include "qvx64/api.h"
#include "simulator/platform/cameras.h"
#include "state/device_state.h"
#include "tests/support/i2c_traffic.h"
#include "tests/support/library.h"
#include "tests/support/wifi_registers.h"
#include "transport/usb3.h"

namespace qvx::tests {
namespace {

using simulator::VirtualBridge;

struct Limits {
  qvx_long upper = 7, lower = 7;

  bool operator==(const Limits&) const = default;
};

Limits limitsOf(int device) {
  Limits limits;
  EXPECT_EQ(GetLensPosLimits(device, &limits.upper, &limits.lower), 1);
  return limits;
}

Limits fineLimitsOf(int device) {
  Limits limits;
  EXPECT_EQ(GetLensFinePosLimits(device, &limits.upper, &limits.lower), 1);
  return limits;
}

// The calls, in one shape.
void reset(int device, int /*none*/) {
  SetLensInitPos(device);
}
void move(int device, int position) {
  SetLensPos(device, position);
}
void fine(int device, int position) {
  SetLensFinePos(device, position);
}
void limits(int device, int /*none*/) {
  limitsOf(device);
}
void fineLimits(int device, int /*none*/) {
  fineLimitsOf(device);
}
using Call = void (*)(int device, int position);

class Lens : public LibraryTest {
 protected:
  void plug(VirtualBridge& camera) {
    machine().videoInputs = {bridgeInput(camera)};
    ASSERT_EQ(etLib2_Init(), 1);
    delete[] GetDeviceId(0);
    journal();
  }

  void plugUsb3(simulator::Camera& camera) {
    machine().usbDevices = {
        {cameraVendorId, 0x9B0, "A", "Camera", "Maker", {}, true, usb3Front(camera)}};
    nPid = 0x9B0;
    testing::internal::CaptureStdout();
    U3Open();
    testing::internal::GetCapturedStdout();
    strOrvaDevice[0] = "vid_3c7e&pid_09b0";
    journal();
  }

  void joinWifi(const simulator::HttpServer& server, int pid) {
    machine().wifi = server;
    s_mainhttp = "http://127.0.0.1:8080/";
    nCurrPid = pid;
  }
};

TEST_F(Lens, BehindABridge) {
  const std::string moving = "r62.CA r62.C2 r62.C0 ", fineMoving = moving + "r62.5F r62.5E ";
  const std::string resettingCoil = "r62.50 r62.5F r62.5E ";
  constexpr std::uint8_t none = 255;
  const struct {
    std::uint16_t pid;
    std::uint8_t ahead, back;  // registers 0x5F and 0x5E
    Call call;
    int position;
    std::string traffic;
  } rows[] = {
      {0x985, none, none, reset, 0, "r62.40 w46=6E"},
      {0x990, none, none, reset, 0, "r62.50 w46=76"},
      {0x970, none, none, reset, 0, ""},
      {0x9E0, 100, 1, reset, 0, resettingCoil + "w62.08=01 w18.0C=81 w46=80"},
      {0x9E0, none, 0, reset, 0, resettingCoil + "w62.08=02 w18.00=01 w46=80"},
      {0x9E0, none, none, reset, 0, resettingCoil + "w62.08=01 w18.00=01 w46=80"},
      {0x990, none, none, move, -3, moving + "r62.50 w46=73"},
      {0x91A, none, none, move, 1, moving + "r62.00 w46=1B"},
      {0x9E0, none, none, move, 10, moving + "r62.50 w62.08=02 w18.0C=81"},
      {0x9E0, 12, 3, fine, 5, fineMoving + "w62.08=01 p50 w18.01=D1"},
      {0x9E0, none, 12, fine, 5, fineMoving + "w62.08=02 p50 w18.01=31"},
      {0x9E0, none, none, fine, 500, fineMoving + "w62.08=01 p50 w18.00=01"},
      {0x9E0, 12, none, fine, INT_MAX, fineMoving + "w62.08=01 p50 w18.3F=F1"},
      {0x9E0, 12, none, fine, INT_MIN, fineMoving + "w62.08=02 p50 w18.3E=71"},
      {0x990, none, none, fine, 5, fineMoving + "w46=00"},
      {0x988, none, none, limits, 0, "r62.CA r62.C2 r62.40 w46=6E"},
      {0x9E0, none, none, limits, 0, "r62.CA r62.C2 r62.50"},
      {0x990, none, none, limits, 0, "r62.CA r62.C2 r62.50 w46=76"},
      {0x970, none, none, limits, 0, "r62.CA r62.C2"},
      {0x9E0, none, none, fineLimits, 0, "r62.CA r62.C2 r62.50 r62.5F r62.5E"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << std::hex << row.pid << ": " << row.traffic);
    VirtualBridge camera(row.pid);
    camera.camera.controller().set(0x5F, row.ahead);
    camera.camera.controller().set(0x5E, row.back);
    plug(camera);
    f890Rate = 20;
    row.call(0, row.position);
    EXPECT_EQ(i2cTrafficIn(journal()), row.traffic);
    EXPECT_EQ(complaintsOf(camera.camera), "");
  }
}

Journal usb3Reads(std::initializer_list<std::string> registers) {
  Journal lines;
  for (const std::string& reg : registers) {
    lines.push_back("usb 21 01 0303 0300 2: 62 " + reg);
    lines.push_back("usb A1 81 0303 0300 1");
  }
  return lines;
}

Journal coil(const std::string& direction, const std::string& word) {
  return {"usb 21 01 0302 0300 3: 62 08 " + direction, "pause 50",
          "usb 21 01 0302 0300 3: 18 " + word};
}

Journal position(const std::string& value) {
  return {"usb 21 01 0304 0300 2: 46 " + value};
}

TEST_F(Lens, OverUsb3) {
  const Journal moving = usb3Reads({"CA", "C2", "C0", "50"});
  const Journal fineMoving = usb3Reads({"CA", "C2", "C0", "5F", "5E"});
  const Journal resettingCoil = usb3Reads({"50", "CA", "5F", "5E"});
  const struct {
    std::uint8_t reg, value;  // changed in the controller
    Call call;
    int position;
    Journal traffic;
  } rows[] = {
      {0x5F, 12, reset, 0, resettingCoil + coil("01", "01 81")},
      {0x5F, 255, reset, 0, resettingCoil + coil("02", "19 01")},
      {0xCA, 1, reset, 0, usb3Reads({"50", "CA"}) + position("80")},
      {0xCA, 2, move, -5, moving + coil("02", "06 91")},
      {0x50, 7, move, 100, moving + coil("01", "3F 01")},  // whatever the zero position
      {0xCA, 1, move, 100, moving + position("C7")},
      {0xCA, 2, fine, -25, fineMoving + coil("02", "00 11")},
      {0xCA, 1, fine, -25, fineMoving + position("00")},
      {0xCA, 2, limits, 0, usb3Reads({"CA", "C2", "50"})},
      {0xCA, 2, fineLimits, 0, usb3Reads({"CA", "C2", "50", "5F", "5E"})},
  };
  for (const auto& row : rows) {
    simulator::Camera camera(0x9B0);
    camera.controller().set(0x5E, 200);
    camera.controller().set(row.reg, row.value);
    plugUsb3(camera);
    row.call(0, row.position);
    EXPECT_EQ(journal(), row.traffic) << &row - rows;
    EXPECT_EQ(complaintsOf(camera), "");
  }
}

std::string wifiLine(int id, int value) {
  return "GET http://127.0.0.1:8080/?action=commandcontrol&dest=0plugin=0&id=" +
         std::to_string(id) + "&group=5&value=" + std::to_string(value);
}

Journal wifiReads(std::initializer_list<int> registers) {
  Journal lines;
  for (const int reg : registers) lines = lines + Journal{wifiLine(1378, reg << 16), "pause 5"};
  return lines;
}

// To slave 0x46, without a register byte.
constexpr int lensWrite = 4422;

Journal wifiPosition(int reg, int position) {
  return {"pause 10", wifiLine(lensWrite, reg * 65536 | position)};
}

TEST_F(Lens, OverWifi) {
  const Journal moving = wifiReads({0xCA, 0xC2, 0xC0, 0x50});
  const struct {
    std::uint16_t pid;
    Call call;
    int device, position;
    Journal traffic;
  } rows[] = {
      {0x985, reset, 90, 0, wifiReads({0x40}) + wifiPosition(0x40, 110)},
      {0x9C7, reset, -1, 0, wifiReads({0x50}) + wifiPosition(0x50, 118)},
      {0x9E0, reset, 90, 0, wifiReads({0x50, 0x5F, 0x5E}) + wifiPosition(0x50, 128)},
      {0x9C7, move, 90, -3, moving + wifiPosition(0, 115)},
      {0x9E0, move, -1, 3, moving + wifiPosition(0, 131)},  // a voice coil, too
      {0x9E0, fine, 90, 3, wifiReads({0xCA, 0xC2, 0xC0, 0x5F, 0x5E})},
      {0x910, limits, 90, 0, wifiReads({0xCA, 0xC2, 0x40}) + wifiPosition(0x40, 110)},
      {0x9E0, limits, 90, 0, wifiReads({0xCA, 0xC2, 0x50}) + wifiPosition(0x50, 128)},
      {0x9C7, limits, -5, 0, wifiReads({0x50}) + wifiPosition(0x50, 118)},
      {0x9C7, reset, -5, 0, {}},
      {0x9C7, move, -5, 1, {}},
  };
  for (const auto& row : rows) {
    simulator::Camera camera(row.pid);
    joinWifi(wifiFront(camera), row.pid);
    row.call(row.device, row.position);
    EXPECT_EQ(journal(), row.traffic) << &row - rows;
    EXPECT_EQ(complaintsOf(camera), "");
  }
}

// Each row of both range tables with its neighbours; zero positions tell their registers.
TEST_F(Lens, RangesAndZeroPositions) {
  constexpr int at00 = 100, at40 = 120, at50 = 140;
  constexpr Limits narrow{44, -15}, wide{71, -27}, coil{48, -48};
  const struct {
    int pid, driver, isWide, zero;
    Limits moved, asked;
  } rows[] = {
      {0x870, 1, 1, at00, narrow, narrow}, {0x90F, 1, 1, at00, narrow, narrow},
      {0x910, 2, 0, at40, wide, wide},     {0x919, 0, 0, at40, wide, wide},
      {0x91A, 1, 0, at00, wide, wide},     {0x91F, 1, 0, at00, wide, wide},
      {0x920, 1, 1, at00, narrow, narrow}, {0x940, 1, 1, at40, narrow, narrow},
      {0x949, 1, 1, at40, narrow, narrow}, {0x94A, 1, 1, at00, narrow, narrow},
      {0x97F, 1, 1, at00, narrow, narrow}, {0x980, 1, 0, at40, narrow, narrow},
      {0x98F, 2, 1, at40, wide, wide},     {0x98F, 1, 2, at40, narrow, narrow},
      {0x990, 1, 0, at50, wide, wide},     {0x99F, 2, 1, at50, narrow, narrow},
      {0x9A0, 1, 1, at00, narrow, narrow}, {0x9B1, 2, 1, at50, coil, coil},
      {0x9BE, 255, 0, at50, wide, wide},   {0x9BE, 1, 0, at50, wide, wide},
      {0x9BF, 2, 0, at50, coil, coil},     {0x9BF, 1, 0, at50, narrow, wide},
      {0x9BF, 0, 1, at50, narrow, narrow}, {0x9C0, 1, 0, at50, wide, wide},
      {0x9CF, 2, 1, at50, narrow, narrow}, {0x9D0, 1, 1, at00, narrow, narrow},
      {0x9E0, 1, 0, at50, wide, wide},     {0x9EF, 2, 0, at50, coil, coil},
      {0x9E7, 3, 1, at50, narrow, narrow}, {0x9F0, 2, 1, at00, narrow, narrow},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << std::hex << row.pid << " driver " << row.driver);
    WifiRegisters camera;
    camera.values = {{0x00, at00}, {0x40, at40}, {0x50, at50}};
    camera.values[0xCA] = row.driver;
    camera.values[0xC2] = row.isWide;
    joinWifi(camera.server(), row.pid);
    EXPECT_EQ(limitsOf(90), row.asked);
    const std::pair<int, int> moves[] = {
        {INT_MAX, row.moved.upper}, {INT_MIN, row.moved.lower}, {7, 7}};
    for (const auto& [asked, got] : moves) {
      SetLensPos(90, asked);
      EXPECT_EQ(journal().back(), wifiLine(lensWrite, row.zero + got));
    }
  }
}

TEST_F(Lens, SpeedFollowsOpticsAndMagnification) {
  const struct {
    std::uint8_t optics;
    float rate;
    int position;  // from a zero of 128
    std::string move;
  } rows[] = {
      {8, 20, 10, "w62.08=02 w18.0C=81"},   {8, 20, 0, "w62.08=01 w18.00=01"},
      {8, 20, -48, "w62.08=01 w18.3C=01"},  {8, 1000, 10, "w62.08=02 w18.FD=E1"},
      {0, 20, 10, "w62.08=02 w18.10=41"},   {0, 4, -10, "w62.08=01 w18.19=01"},
      {5, 100, 10, "w62.08=02 w18.1E=A1"},  {5, 20, -28, "w62.08=01 w18.E3=41"},
      {6, 500, 10, "w62.08=02 w18.0B=E1"},  {1, 20, 10, "w62.08=02 w18.00=01"},
      {6, 1.2F, 48, "w62.08=02 w18.67=01"},  // the product wraps
      {5, 0, 9, "w62.08=02 w18.00=01"},      // an infinite speed
      {8, -1, 9, "w62.08=02 w18.00=01"},     // not a number
  };
  VirtualBridge camera(0x9E0);
  plug(camera);
  for (const auto& row : rows) {
    camera.camera.controller().set(0xC0, row.optics);
    f890Rate = row.rate;
    SetLensPos(0, row.position);
    EXPECT_TRUE(i2cTrafficIn(journal()).ends_with(row.move))
        << int{row.optics} << " at " << row.rate;
  }
  camera.camera.controller().set(0x50, 20);
  camera.camera.controller().set(0xC0, 0);
  f890Rate = 20;
  SetLensPos(0, -48);  // a target below zero counts as above the middle: 156 times 26
  EXPECT_TRUE(i2cTrafficIn(journal()).ends_with("w62.08=02 w18.FD=81"));
}

TEST_F(Lens, FineLimitsMoveWithTheOffset) {
  const struct {
    int pid, driver, ahead, back;
    Limits limits;
  } rows[] = {
      {0x9E0, 2, 255, 255, {1023, -1023}}, {0x9EF, 2, 12, 3, {1023, -999}},
      {0x9BE, 2, 254, 255, {1023, -515}},  {0x9B0, 2, 255, 12, {999, -1023}},
      {0x9B0, 2, 0, 12, {1023, -1023}},    {0x9BF, 2, 12, 255, {-1, -1}},
      {0x9E0, 1, 12, 255, {-1, -1}},       {0x990, 2, 12, 255, {-1, -1}},
  };
  for (const auto& row : rows) {
    WifiRegisters camera;
    camera.values = {{0xCA, row.driver}, {0x5F, row.ahead}, {0x5E, row.back}};
    joinWifi(camera.server(), row.pid);
    EXPECT_EQ(fineLimitsOf(90), row.limits) << std::hex << row.pid << ' ' << row.ahead;
  }
}

// The same move ends at the same place whatever carries it.
TEST_F(Lens, ArrivesOnEveryTransport) {
  VirtualBridge bridge(0x990);
  plug(bridge);
  SetLensPos(0, 30);
  EXPECT_EQ(bridge.camera.lens().offset(), 30);
  SetLensInitPos(0);
  EXPECT_EQ(bridge.camera.lens().offset(), 0);
  simulator::Camera wifi(0x9C0);
  joinWifi(wifiFront(wifi), 0x9C0);
  SetLensPos(90, -20);
  EXPECT_EQ(wifi.lens().offset(), -20);
  limitsOf(90);
  EXPECT_EQ(wifi.lens().offset(), 0) << "asking for the limits brings it back";
  simulator::Camera usb3(0x9B0);
  plugUsb3(usb3);
  SetLensPos(0, -48);
  EXPECT_EQ(usb3.lens().offset(), -48);
}

TEST_F(Lens, OddArgumentsAndAnswersDoNoHarm) {
  WifiRegisters camera;
  for (const int reg : {0x00, 0x40, 0x50, 0x5E, 0xC0, 0xC2}) camera.values[reg] = INT_MIN;
  camera.values[0x5F] = INT_MAX;
  for (const int pid : {0, 0x910, 0x990, 0x9B0, 0x9BE, 0x9E0}) {
    for (const int device : {INT_MIN, -2, -1, 0, 8, 90, 91, INT_MAX}) {
      camera.values[0xCA] = device == 90 ? 2 : INT_MIN;
      joinWifi(camera.server(), pid);
      for (const Call call : {reset, move, fine}) {
        for (const int value : {INT_MIN, -1, INT_MAX}) call(device, value);
      }
      EXPECT_EQ(GetLensPosLimits(device, nullptr, nullptr), 1);
      EXPECT_EQ(GetLensFinePosLimits(device, nullptr, nullptr), 1);
    }
  }
}

}  // namespace
}  // namespace qvx::tests
