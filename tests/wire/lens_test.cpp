// The focus lens: every driver, range and speed, as the cameras see it.
#include <climits>
#include <map>
#include <span>

#include "controls/magnification.h"
#include "tests/support/cameras.h"
#include "tests/support/every_export.h"
#include "tests/support/wifi_registers.h"

namespace qvx::tests {
namespace {

constexpr char reset[] = "SetLensInitPos", move[] = "SetLensPos", fine[] = "SetLensFinePos",
               limits[] = "GetLensPosLimits", fineLimits[] = "GetLensFinePosLimits";

std::string call(const char* exported, int device, int position = 0) {
  return exportNamed(exported).call({.index = device, .value = position});
}

class Lens : public CameraTest {
 protected:
  void joinWifi(const simulator::HttpServer& server, int pid) {
    machine().wifi = server;
    nCurrPid = pid;
  }
};

struct Row {
  int pid;
  std::map<int, int> registers;
  const char* called;
  int position;
  std::string traffic;
  int device = 0;
};

const std::string reading = "b r62.CAf b r62.C2f b r62.C0f ",
                  readingFine = reading + "b r62.5Ff b r62.5Ef ",
                  resetting = "b r62.50f b r62.5Ff b r62.5Ef ";

const Row bridgeRows[] = {
    {0x985, {}, reset, 0, "b r62.40f w46=6Ef"},
    {0x990, {}, reset, 0, "b r62.50f w46=76f"},
    {0x970, {}, reset, 0, ""},
    {0x9E0, {{0x5F, 100}, {0x5E, 1}}, reset, 0, resetting + "w62.08=01f w18.0C=81f w46=80f"},
    {0x9E0, {{0x5E, 0}}, reset, 0, resetting + "w62.08=02f w18.00=01f w46=80f"},
    {0x9E0, {}, reset, 0, resetting + "w62.08=01f w18.00=01f w46=80f"},
    {0x990, {}, move, -3, reading + "b r62.50f w46=73f"},
    {0x91A, {}, move, 1, reading + "b r62.00f w46=1Bf"},
    {0x9E0, {}, move, 10, reading + "b r62.50f w62.08=02f w18.0C=81f"},
    {0x9E0, {{0x5F, 12}, {0x5E, 3}}, fine, 5, readingFine + "w62.08=01f p50 w18.01=D1f"},
    {0x9E0, {{0x5E, 12}}, fine, 5, readingFine + "w62.08=02f p50 w18.01=31f"},
    {0x9E0, {}, fine, 500, readingFine + "w62.08=01f p50 w18.00=01f"},
    {0x9E0, {{0x5F, 12}}, fine, INT_MAX, readingFine + "w62.08=01f p50 w18.3F=F1f"},
    {0x9E0, {{0x5F, 12}}, fine, INT_MIN, readingFine + "w62.08=02f p50 w18.3E=71f"},
    {0x990, {}, fine, 5, readingFine + "w46=00f"},
    {0x988, {{0xCA, 2}}, limits, 0, "b r62.CAf b r62.C2f b r62.40f w46=6Ef"},
    {0x9E0, {}, limits, 0, "b r62.CAf b r62.C2f b r62.50f"},
    {0x990, {}, limits, 0, "b r62.CAf b r62.C2f b r62.50f w46=76f"},
    {0x970, {}, limits, 0, "b r62.CAf b r62.C2f"},
    {0x9E0, {}, fineLimits, 0, "b r62.CAf b r62.C2f b r62.50f b r62.5Ef b r62.5Ff"},
};

const std::string readingUsb3 = "r62.CA r62.C2 r62.C0 ", resettingUsb3 = "r62.50 r62.CA ";

const Row usb3Rows[] = {
    {0x9B0, {{0x5F, 12}}, reset, 0, resettingUsb3 + "r62.5F r62.5E w62.08=01 p50 w18.01=81"},
    {0x9B0, {{0x5E, 200}}, reset, 0, resettingUsb3 + "r62.5F r62.5E w62.08=02 p50 w18.19=01"},
    {0x9B0, {{0xCA, 1}}, reset, 0, resettingUsb3 + "w46=80"},
    {0x9B0, {}, move, -5, readingUsb3 + "r62.50 w62.08=02 p50 w18.06=91"},
    // whatever the zero position
    {0x9B0, {{0x50, 7}}, move, 100, readingUsb3 + "r62.50 w62.08=01 p50 w18.3F=01"},
    {0x9B0, {{0xCA, 1}}, move, 100, readingUsb3 + "r62.50 w46=C7"},
    {0x9B0, {{0x5F, 12}}, fine, -25, readingUsb3 + "r62.5F r62.5E w62.08=02 p50 w18.00=11"},
    {0x9B0, {{0xCA, 1}}, fine, -25, readingUsb3 + "r62.5F r62.5E w46=00"},
    {0x9B0, {}, limits, 0, "r62.CA r62.C2 r62.50"},
    {0x9B0, {{0xCA, 1}}, limits, 0, "r62.CA r62.C2 r62.50"},
    {0x9B0, {}, fineLimits, 0, "r62.CA r62.C2 r62.50 r62.5E r62.5F"},
};

const std::string readingWifi = "r62.CA p5 r62.C2 p5 ";

const Row wifiRows[] = {
    {0x985, {}, reset, 0, "r62.40 p5 p10 w46.40=6E", 90},
    {0x9C7, {}, reset, 0, "r62.50 p5 p10 w46.50=76", -1},
    {0x9E0, {}, reset, 0, "r62.50 p5 r62.5F p5 r62.5E p5 p10 w46.50=80", 90},
    {0x9C7, {}, move, -3, readingWifi + "r62.C0 p5 r62.50 p5 p10 w46.0=73", 90},
    {0x9E0, {}, move, 3, readingWifi + "r62.C0 p5 r62.50 p5 p10 w46.0=83", -1},  // a coil, too
    {0x9E0, {}, fine, 3, readingWifi + "r62.C0 p5 r62.5F p5 r62.5E p5", 90},
    {0x910, {}, limits, 0, readingWifi + "r62.40 p5 p10 w46.40=6E", 90},
    {0x9E0, {}, limits, 0, readingWifi + "r62.50 p5 p10 w46.50=80", 90},
    {0x9C7, {}, limits, 0, "r62.50 p5 p10 w46.50=76", -5},
    {0x9E0, {}, fineLimits, 0, readingWifi + "r62.50 p5 p10 w46.50=80 r62.5E p5 r62.5F p5", 90},
    {0x9C7, {}, reset, 0, "", -5},
    {0x9C7, {}, move, 1, "", -5},
};

TEST_F(Lens, IsDrivenOnEveryTransport) {
  const auto check = [this](std::span<const Row> rows, const std::function<void(int)>& plugIn) {
    for (const Row& row : rows) {
      SCOPED_TRACE(testing::Message() << std::hex << row.pid << ": " << row.traffic);
      plugIn(row.pid);
      for (const int offset : {0x5F, 0x5E}) set(offset, 255);  // not adjusted
      for (const auto& [reg, value] : row.registers) set(reg, value);
      f890Rate = 20;
      call(row.called, row.device, row.position);
      EXPECT_EQ(traffic(), row.traffic);
    }
  };
  check(bridgeRows, [this](int pid) { plug(pid); });
  check(usb3Rows, [this](int pid) { plugUsb3(pid); });
  check(wifiRows, [this](int pid) { plugWifi(pid); });
}

// Each row of both range tables with its neighbours; zero positions tell their registers.
TEST_F(Lens, RangesAndZeroPositions) {
  constexpr int at00 = 100, at40 = 120, at50 = 140;
  constexpr std::pair<int, int> narrow{44, -15}, wide{71, -27}, coil{48, -48};
  const struct {
    int pid, driver, isWide, zero;
    std::pair<int, int> moved, asked;
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
      {0x980, 1, 1, at40, wide, wide},     {0x99F, 1, 0, at50, wide, wide},
      {0x9B0, 2, 1, at50, coil, coil},     {0x9B0, 0, 1, at50, wide, wide},
      {0x9CF, 1, 0, at50, wide, wide},     {0x9EF, 1, 0, at50, wide, wide},
      {0x9E0, 2, 1, at50, coil, coil},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << std::hex << row.pid << " driver " << row.driver);
    WifiRegisters camera;
    camera.values = {{0x00, at00}, {0x40, at40}, {0x50, at50}};
    camera.values[0xCA] = row.driver;
    camera.values[0xC2] = row.isWide;
    joinWifi(camera.server(), row.pid);
    const auto [upper, lower] = row.asked;
    EXPECT_EQ(call(limits, 90), "1 " + std::to_string(upper) + ' ' + std::to_string(lower));
    const std::pair<int, int> moves[] = {
        {INT_MAX, row.moved.first}, {INT_MIN, row.moved.second}, {7, 7}};
    for (const auto& [asked, got] : moves) {
      SetLensPos(90, asked);
      EXPECT_TRUE(traffic().ends_with(formatted(" w46.0=%02X", row.zero + got))) << asked;
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
      {8, 20, 10, "w62.08=02f w18.0C=81f"},   {8, 20, 0, "w62.08=01f w18.00=01f"},
      {8, 20, -48, "w62.08=01f w18.3C=01f"},  {8, 1000, 10, "w62.08=02f w18.FD=E1f"},
      {0, 20, 10, "w62.08=02f w18.10=41f"},   {0, 4, -10, "w62.08=01f w18.19=01f"},
      {5, 100, 10, "w62.08=02f w18.1E=A1f"},  {5, 20, -28, "w62.08=01f w18.E3=41f"},
      {6, 500, 10, "w62.08=02f w18.0B=E1f"},  {1, 20, 10, "w62.08=02f w18.00=01f"},
      {6, 1.2F, 48, "w62.08=02f w18.67=01f"},  // the product wraps
      {5, 0, 9, "w62.08=02f w18.00=01f"},      // an infinite speed
      {8, -1, 9, "w62.08=02f w18.00=01f"},     // not a number
  };
  plug(0x9E0);
  for (const auto& row : rows) {
    set(0xC0, row.optics);
    f890Rate = row.rate;
    SetLensPos(0, row.position);
    EXPECT_TRUE(traffic().ends_with(row.move)) << int{row.optics} << " at " << row.rate;
  }
  set(0x50, 20);
  set(0xC0, 0);
  f890Rate = 20;
  SetLensPos(0, -48);  // a target below zero counts as above the middle: 156 times 26
  EXPECT_TRUE(traffic().ends_with("w62.08=02f w18.FD=81f"));
}

TEST_F(Lens, FineLimitsMoveWithTheOffset) {
  const struct {
    int pid, driver, ahead, back;
    const char* limits;
  } rows[] = {
      {0x9E0, 2, 255, 255, "1 1023 -1023"}, {0x9EF, 2, 12, 3, "1 1023 -999"},
      {0x9BE, 2, 254, 255, "1 1023 -515"},  {0x9B0, 2, 255, 12, "1 999 -1023"},
      {0x9B0, 2, 0, 12, "1 1023 -1023"},    {0x9BF, 2, 12, 255, "1 -1 -1"},
      {0x9E0, 1, 12, 255, "1 -1 -1"},       {0x990, 2, 12, 255, "1 -1 -1"},
  };
  for (const auto& row : rows) {
    WifiRegisters camera;
    camera.values = {{0xCA, row.driver}, {0x5F, row.ahead}, {0x5E, row.back}};
    joinWifi(camera.server(), row.pid);
    EXPECT_EQ(call(fineLimits, 90), row.limits) << std::hex << row.pid << ' ' << row.ahead;
  }
}

}  // namespace
}  // namespace qvx::tests
