// The focus lens: every driver, range and speed, as the cameras see it.
#include <algorithm>
#include <climits>
#include <map>
#include <span>

#include "controls/magnification.h"
#include "tests/support/cameras.h"
#include "tests/support/every_export.h"
#include "tests/support/product_ids.h"
#include "tests/support/wifi_registers.h"

namespace qvx::tests {
namespace {

constexpr char reset[] = "SetLensInitPos", move[] = "SetLensPos", fine[] = "SetLensFinePos",
               limits[] = "GetLensPosLimits", fineLimits[] = "GetLensFinePosLimits";

std::string call(const char* exported, int device, int position = 0) {
  return exportNamed(exported).call({.index = device, .value = position});
}

using Lens = CameraTest;

struct Row {
  int pid;
  std::map<int, int> registers;
  const char* called;
  int position;
  std::string traffic;
  int device = 0;
  std::string result = "";  // where it is looked at
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

const std::string readingWifi = "r62.CA p5 r62.C2 p5 ",
                  zeroWifi = readingWifi + "r62.50 p5 p10 w46.50=80 r62.5E p5 r62.5F p5";

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
    {0x9E0, {}, fineLimits, 0, zeroWifi, 90},
    {0x9EF, {{0xCA, 2}, {0x5F, 12}, {0x5E, 3}}, fineLimits, 0, zeroWifi, 90, "1 1023 -999"},
    {0x9BE, {{0xCA, 2}, {0x50, 0x80}, {0x5F, 254}}, fineLimits, 0, zeroWifi, 90, "1 1023 -515"},
    {0x9B0, {{0xCA, 2}, {0x5E, 12}}, fineLimits, 0, zeroWifi, 90, "1 999 -1023"},
    {0x9B0, {{0xCA, 2}, {0x5F, 0}, {0x5E, 12}}, fineLimits, 0, zeroWifi, 90, "1 1023 -1023"},
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
      const std::string result = call(row.called, row.device, row.position);
      EXPECT_EQ(traffic(), row.traffic);
      EXPECT_TRUE(row.result.empty() || result == row.result) << result;
    }
  };
  check(bridgeRows, [this](int pid) { plug(pid); });
  check(usb3Rows, [this](int pid) { plugUsb3(pid); });
  check(wifiRows, [this](int pid) { plugWifi(pid); });
}

struct Limits {
  int upper, lower;
};
constexpr Limits narrow{44, -15}, wide{71, -27}, coil{48, -48};
constexpr int any = -1, coilDriver = 2;

// The first row for the product id, the lens driver and the wide lens holds.
const struct RangeRow {
  Ids ids;
  int driver, isWide;
  Limits limits;
} ranges[] = {
    {"990-99F 9B0-9CF 9E0-9EF", 1, any, wide},
    {"9B0-9BF 9E0-9EF", coilDriver, any, coil},
    {"910-91F", any, any, wide},
    {"980-98F", any, 1, wide},
    {"9B0-9BE", any, any, wide},
    {"000-FFF", any, any, narrow},
};

Limits limitsOf(int pid, int driver, int isWide) {
  return std::ranges::find_if(ranges,
                              [=](const RangeRow& row) {
                                return row.ids.contains(pid) &&
                                       (row.driver == any || row.driver == driver) &&
                                       (row.isWide == any || row.isWide == isWide);
                              })
      ->limits;
}

// Each zero position differs, so that targets show which register it was read from. Models without
// a lens behave as if they had one.
TEST_F(Lens, RangesAndZeroPositions) {
  const Ids zeroAt40 = "910-919 940-949 980-98F", zeroAt50 = "990-99F 9B0-9CF 9E0-9EF",
            restores40 = "910-91F 980-98F", hasFineCoil = "9B0-9BE 9E0-9EF";
  WifiRegisters camera;
  camera.values = {{0x00, 100}, {0x40, 120}, {0x50, 140}, {0x5F, 255}, {0x5E, 255}};
  machine().wifi = camera.server();
  for (int pid = 0; pid < allProductIds; ++pid) {
    nCurrPid = pid;
    const bool isEdge = zeroAt40.hasEdgeAt(pid) || std::ranges::any_of(ranges, [=](auto& row) {
                          return row.ids.hasEdgeAt(pid);
                        });
    if (!isEdge && pid % 16 != 0 && (pid < 0x900 || pid > 0xA00)) continue;
    const int zero = zeroAt40.contains(pid) ? 120 : zeroAt50.contains(pid) ? 140 : 100;
    for (const int driver : {0, 1, coilDriver, 255}) {
      for (const int isWide : {0, 1, 2}) {
        if (!isEdge && driver != 1) continue;
        SCOPED_TRACE(testing::Message()
                     << std::hex << pid << " driver " << driver << " wide " << isWide);
        camera.values[0xCA] = driver;
        camera.values[0xC2] = isWide;
        const auto [upper, lower] = limitsOf(pid, driver, isWide);
        EXPECT_EQ(call(limits, 90), "1 " + std::to_string(upper) + ' ' + std::to_string(lower));
        const char* const last = restores40.contains(pid) ? "w46.40=78"
                                 : zeroAt50.contains(pid) ? "w46.50=8C"
                                                          : "r62.C2 p5";
        EXPECT_TRUE(traffic().ends_with(last)) << "goes to its zero position, if at all";
        EXPECT_EQ(call(fineLimits, 90),
                  hasFineCoil.contains(pid) && driver == coilDriver ? "1 1023 -1023" : "1 -1 -1");
        // One model moves less far than it says.
        const Limits moved = pid == 0x9BF && driver == 1 ? narrow : Limits{upper, lower};
        for (const auto& [asked, got] :
             {std::pair(INT_MAX, moved.upper), {INT_MIN, moved.lower}, {7, 7}}) {
          SetLensPos(90, asked);
          EXPECT_TRUE(traffic().ends_with(formatted(" w46.0=%02X", zero + got))) << asked;
        }
      }
    }
  }
}

TEST_F(Lens, SpeedFollowsOpticsAndMagnification) {
  // From a zero of 128.
  const Rows<int, float, int, const char*> rows = {
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
  for (const auto& [optics, rate, position, moved] : rows) {
    set(0xC0, optics);
    f890Rate = rate;
    SetLensPos(0, position);
    EXPECT_TRUE(traffic().ends_with(moved)) << optics << " at " << rate;
  }
  set(0x50, 20);
  set(0xC0, 0);
  f890Rate = 20;
  SetLensPos(0, -48);  // a target below zero counts as above the middle: 156 times 26
  EXPECT_TRUE(traffic().ends_with("w62.08=02f w18.FD=81f"));
}

}  // namespace
}  // namespace qvx::tests
