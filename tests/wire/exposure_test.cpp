// Exposure time: calls in, sensor registers out, for every family; and all exposure functions over
// Wi-Fi.
#include <climits>

#include "qvx64/api.h"
#include "tests/support/bridge_camera.h"

namespace qvx::tests {
namespace {

class Exposure : public BridgeCameraTest {
 protected:
  int at(int reg) { return sensor().at(static_cast<std::uint16_t>(reg)); }
};

TEST_F(Exposure, SetsTheTimeOnEveryFamily) {
  const Setting rows[] = {
      {0x960, 100,
       "bus2, w78 350C=00, bus2, w78 350D=60, "
       "bus2, w78 3500=00, bus2, w78 3501=06, bus2, w78 3502=40"},
      {0x92F, 65535,
       "bus2, w78 350C=00, bus2, w78 350D=0F, "
       "bus2, w78 3500=0F, bus2, w78 3501=FF, bus2, w78 3502=F0"},
      {0x970, -1,
       "bus2, w78 350C=00, bus2, w78 350D=40, "
       "bus2, w78 3500=00, bus2, w78 3501=00, bus2, w78 3502=F0"},
      {0x870, 1000, "bus2, w48 0015=03, bus2, w48 0016=E8"},
      {0x899, 255, "bus2, w48 0015=00, bus2, w48 0016=FF"},
      {0x919, 256, "bus2, w48 0015=01, bus2, w48 0016=00"},
      {0x9C0, 1000, "bus2, r62 80 fast, bus2, w48 0015=03, bus2, r62 80 fast, bus2, w48 0016=E8"},
      {0x9E0, 2000, "w34 0340=07, w34 0341=D0, w34 0202=00, w34 0203=00"},
      {0x9E1, 1125, "w34 0340=04, w34 0341=65, w34 0202=00, w34 0203=00"},
      {0x9E2, 1124, "w34 0340=04, w34 0341=65, w34 0202=00, w34 0203=00"},
      {0x9E7, 100, "w34 0340=04, w34 0341=65, w34 0202=04, w34 0203=01"},
      {0x9EF, -5, "w34 0340=04, w34 0341=65, w34 0202=04, w34 0203=65"},
      // split before it is cut to 65535
      {0x9E0, 70000, "w34 0340=11, w34 0341=70, w34 0202=00, w34 0203=00"},
      {0x89A, 100, ""},
      {0x91A, 100, ""},
      {0x930, 100, ""},
      {0x95F, 100, ""},
      {0x9A0, 100, ""},
      {0x9D0, 100, ""},
      {0x9F0, 100, ""},
  };
  for (const Setting& row : rows) {
    plug(row.pid);
    bWait = 9;
    EXPECT_EQ(trafficOf([&] { SetExposureValue(0, row.value); }), row.traffic)
        << std::hex << row.pid;
    EXPECT_EQ(bWait, row.traffic.empty() ? 0 : 1) << std::hex << row.pid;
  }
}

TEST_F(Exposure, LongestExposureGoesInSteps) {
  const struct {
    int value, high, low;
  } rows[] = {{63, 0, 64},    {64, 0, 96},      {132, 0, 96},    {133, 0, 149}, {265, 0, 149},
              {266, 1, 26},   {532, 1, 26},     {533, 2, 37},    {999, 2, 37},  {1000, 3, 248},
              {1001, 3, 249}, {INT_MIN, 0, 64}, {INT_MAX, 1, 15}};
  plug(0x970);
  for (const auto& row : rows) {
    SetExposureValue(0, row.value);
    EXPECT_EQ(at(0x350C), row.high) << row.value;
    EXPECT_EQ(at(0x350D), row.low) << row.value;
  }
}

// Where the result is not 1125 minus the argument but 1 less: a bit per argument, four to a digit,
// the lowest first. Worked out apart from the library, with every operation rounded to a double.
constexpr char shutterOneLess[] =
    "00000000000000000000000000000000000000000000000000000000000000000000000000000000"
    "000000000000000000000000000000000000000000000000000006488510040AAAAAA0000EFFFFFF"
    "DFFF551555FF7FFFFF74555DFDFFFFFF75555DFBFFFFF7F5555FEFFFFFDFF7559FFFFFFFFFFF555F"
    "FFFFFEFFFF75FFFFFFFFFFFFFFAFBFFDFFFBF3B7F1";
constexpr char exposureOneLess[] =
    "048C0800001080820000000000000450000020000045510000000000855500010000024555140000"
    "0800555550000000105555700000400455D5510001000000010800020000040008000A1000001000"
    "00001000002000004080000000000000000000000000000000000000000000000000000000000000"
    "000000000000000000000000000000000000000000";

int expectedFor(const char* oneLess, int argument) {
  const int digit = std::stoi(std::string(1, oneLess[argument / 4]), nullptr, 16);
  return 1125 - argument - (digit >> argument % 4 & 1);
}

TEST_F(Exposure, ShutterFormulaOverItsWholeRange) {
  plug(0x9E0, {.family = simulator::BridgeFamily::generation2});
  for (int value = 0; value < 1125; ++value) {
    SetExposureValue(0, value);
    ASSERT_EQ(at(0x0202) * 256 + at(0x0203), expectedFor(shutterOneLess, value)) << value;
  }
  for (int shutter = 0; shutter <= 1125; ++shutter) {
    sensor().set(0x0202, static_cast<std::uint8_t>(shutter / 256));
    sensor().set(0x0203, static_cast<std::uint8_t>(shutter % 256));
    ASSERT_EQ(GetExposureValue(0), expectedFor(exposureOneLess, shutter)) << shutter;
  }
}

TEST_F(Exposure, ReadsTheTimeOnEveryFamily) {
  const Reading rows[] = {
      {0x960, 500,
       "bus2, r62 80 fast, bus2, r62 80 fast, "
       "bus2, r78 3500, bus2, r78 3501, bus2, r78 3502"},
      {0x925, 500,
       "bus2, r62 80 fast, bus2, r62 80 fast, "
       "bus2, r78 3500, bus2, r78 3501, bus2, r78 3502"},
      {0x89F, 480, "bus2, r62 80 fast, bus2, r48 0015, bus2, r48 0016"},
      {0x9C5, 480,
       "bus2, r62 80 fast, bus2, r62 80 fast, "
       "bus2, r62 80 fast, bus2, r48 0015, bus2, r62 80 fast, bus2, r48 0016"},
      {0x9A0, 0x125 + 0x13,
       "bus2, r62 80 fast, bus2, r62 80 fast, bus2, r42 08 fast, "
       "bus2, r42 10 fast, bus2, r42 2E fast, bus2, r42 2D fast"},
      {0x9DF, 0x125 + 0x13,
       "bus2, r62 80 fast, bus2, r62 80 fast, bus2, r42 08 fast, "
       "bus2, r42 10 fast, bus2, r42 2E fast, bus2, r42 2D fast"},
      {0x9E0, 500,
       "bus2, r62 80 fast, bus2, "
       "r34 0340, r34 0341, r34 0202, r34 0203"},
      {0x930, 0, "bus2, r62 80 fast, bus2, r62 80 fast"},
  };
  for (const Reading& row : rows) {
    plug(row.pid);
    bWait = 9;
    EXPECT_EQ(trafficOf([&] { EXPECT_EQ(GetExposureValue(0), row.value); }), row.traffic)
        << std::hex << row.pid;
    EXPECT_EQ(bWait, row.value == 0 ? 0 : 1) << std::hex << row.pid;
  }
  plug(0x9A1);
  sensor().set(0x2E, 2);
  EXPECT_EQ(GetExposureValue(0), 0x125 + 0x213) << "the halves are added";
  plug(0x9E0);
  SetExposureValue(0, 1126);
  EXPECT_EQ(GetExposureValue(0), 1126) << "a longer frame is the exposure";
}

class WifiExposure : public Exposure {
 protected:
  void turnOn(int pid) {
    camera = std::make_unique<simulator::Camera>(static_cast<std::uint16_t>(pid));
    machine().wifi = wifiFront(*camera);
    s_mainhttp = "http://127.0.0.1:8080/";
    nCurrPid = nPid = pid;
    nTmpIdx = 90;
    machine().open = {};
    journal();
  }

  std::unique_ptr<simulator::Camera> camera;
};

TEST_F(WifiExposure, SendsCommands) {
  const std::string read80 = "http 1378 00800000, pause 5, ";
  const struct {
    int pid;
    void (*call)();
    std::string traffic;
  } rows[] = {
      {0x970, [] { SetExposureValue(-1, 100); },
       "pause 10, http 6520 350C0000, pause 10, http 6520 350D0060, pause 10, http 6520 35000000, "
       "pause 10, http 6520 35010006, pause 10, http 6520 35020040"},
      {0x880, [] { SetExposureValue(90, 1000); },
       "pause 10, http 6472 00150003, pause 10, http 6472 001600E8"},
      {0x9E0, [] { SetExposureValue(90, 100); }, ""},
      {0x970, [] { GetExposureValue(90); },
       read80 + read80 +
           "http 2424 35000000, pause 5, http 2424 35010000, pause 5, "
           "http 2424 35020000, pause 5"},
      {0x9D0, [] { GetExposureValue(-1); },
       read80 + read80 +
           "http 1346 00080000, pause 5, http 1346 00100000, pause 5, "
           "http 1346 002E0000, pause 5, http 1346 002D0000, pause 5"},
      {0x970, [] { SetAETarget(90, 0x50); },
       "http 6520 3A1E0050, http 6520 3A1B0070, http 6520 3A100052, http 6520 3A0F005E"},
      {0x9D0, [] { SetAETarget(-1, 0x50); }, read80 + "pause 10, http 5442 00250050"},
      {0x880, [] { GetAETarget(-1); }, "http 2376 038E0000, pause 5"},
      {0x870, [] { SetAutoExposure(-1, 0); },
       read80 + "http 2376 03800000, pause 5, pause 10, http 6472 03800054"},
      {0x9A0, [] { GetAutoExposure(-1); },
       read80 + read80 + "pause 50, http 1346 00130000, pause 5"},
  };
  for (const auto& row : rows) {
    turnOn(row.pid);
    row.call();
    EXPECT_EQ(accesses(), row.traffic) << std::hex << row.pid;
    EXPECT_EQ(complaintsOf(*camera), "") << std::hex << row.pid;
    EXPECT_EQ(nTmpIdx, 90);
  }
}

TEST_F(WifiExposure, IsTheWifiCameraUnderBothIndexes) {
  turnOn(0x970);
  for (const int index : {90, -1}) {
    nTmpIdx = 0;
    camera->sensor().set(0x3A1E, 0x61);
    EXPECT_EQ(GetAETarget(index), 0x61);
    EXPECT_EQ(nTmpIdx, 90);
    EXPECT_EQ(GetExposureValue(index), 500);
    EXPECT_EQ(GetAutoExposure(index), 1);
  }
}

TEST_F(WifiExposure, AnyArgumentsAreHarmless) {
  const int pids[] = {0, 0x870, 0x930, 0x970, 0x9A0, 0x9B0, 0x9C0, 0x9D0, 0x9E0};
  const int indexes[] = {INT_MIN, -2, -1, 0, 7, 8, 15, 90, INT_MAX};
  const qvx_long values[] = {INT_MIN, -1, 0x7FFFFFF0, INT_MAX};
  s_mainhttp = "http://127.0.0.1:8080/";
  for (const int pid : pids) {
    plug(pid);
    for (const int index : indexes) {
      for (const qvx_long value : values) {
        nCurrPid = pid;
        SetExposureValue(index, value);
        SetAETarget(index, value);
        SetAutoExposure(index, value);
        SetFlicker(index, value);
      }
      const qvx_long target = GetAETarget(index);
      const qvx_long exposure = GetExposureValue(index), automatic = GetAutoExposure(index);
      EXPECT_TRUE(pid != 0 || (target == 16 && exposure == 0 && automatic == 0)) << index;
    }
  }
}

}  // namespace
}  // namespace qvx::tests
