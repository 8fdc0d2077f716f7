// Exposure, its automatic and the mains flicker: calls in, sensor registers out, for every family.
#include <climits>
#include <map>
#include <span>

#include "tests/support/cameras.h"
#include "tests/support/every_export.h"

namespace qvx::tests {
namespace {

struct Row {
  std::vector<int> pids;
  qvx_long value;  // that is set
  std::string traffic;
  std::string result = "";
  int waits = 1;   // `bWait` afterwards, from 9
  int before = 0;  // in the registers that are changed in part
};

struct Table {
  const char* call;
  std::vector<Row> rows;
};

class Exposure : public CameraTest {
 protected:
  int at(int reg) { return camera().sensor.at(static_cast<std::uint16_t>(reg)); }
  void setSensor(int reg, int value) {
    camera().sensor.set(static_cast<std::uint16_t>(reg), static_cast<std::uint8_t>(value));
  }

  void program(int value) {
    for (const int reg : {0x3503, 0x0380, 0x0120, 0x13}) setSensor(reg, value);
    const auto mode4xx7 = static_cast<std::uint32_t>(value);
    etLib2_RegWrite_DevNum(0, 0x1700, 2, &mode4xx7);
  }

  void check(const Table& table, const Row& row, int pid, int index) {
    SCOPED_TRACE(testing::Message() << table.call << std::hex << " 0x" << pid << " " << row.value);
    bWait = 9;
    nPid = pid;  // which the flicker goes by
    nTmpIdx = index < 0 ? 90 : index;
    journal();
    EXPECT_EQ(exportNamed(table.call).call({.index = index, .value = row.value}), row.result);
    EXPECT_EQ(traffic(), row.traffic);
    EXPECT_EQ(bWait, row.waits);
    EXPECT_EQ(nPid, pid);
    EXPECT_EQ(nTmpIdx, index < 0 ? 90 : index);
  }
};

const std::string ask = "b r62.80f ";  // the feature register, by predicates
// What fits any target comes before the target and its bounds.
const std::string opened = "cmd1E:00000101 cmd1E:0000000180 cmd1E:00000201FF ";

const Table bridgeTables[] = {
    {"SetExposureValue",
     {{{0x960}, 100, "b w78.350C=00 b w78.350D=60 b w78.3500=00 b w78.3501=06 b w78.3502=40"},
      {{0x92F},
       QVX_EXPOSURE_MAX,
       "b w78.350C=00 b w78.350D=0F b w78.3500=0F b w78.3501=FF b w78.3502=F0"},
      {{0x962}, 4096, "b w78.350C=10 b w78.350D=10 b w78.3500=01 b w78.3501=00 b w78.3502=00"},
      {{0x970}, -1, "b w78.350C=00 b w78.350D=40 b w78.3500=00 b w78.3501=00 b w78.3502=F0"},
      {{0x870}, 1000, "b w48.0015=03 b w48.0016=E8"},
      {{0x899}, 65535, "b w48.0015=FF b w48.0016=FF"},
      {{0x910, 0x919}, 256, "b w48.0015=01 b w48.0016=00"},
      {{0x9C0, 0x9CF}, 1000, ask + "b w48.0015=03 " + ask + "b w48.0016=E8"},
      {{0x9E0}, 2000, "w34.0340=07 w34.0341=D0 w34.0202=00 w34.0203=00"},
      {{0x9E1}, 1125, "w34.0340=04 w34.0341=65 w34.0202=00 w34.0203=00"},
      {{0x9E2}, 1124, "w34.0340=04 w34.0341=65 w34.0202=00 w34.0203=00"},
      {{0x9E7}, 100, "w34.0340=04 w34.0341=65 w34.0202=04 w34.0203=01"},
      {{0x9EF}, -5, "w34.0340=04 w34.0341=65 w34.0202=04 w34.0203=65"},
      // split before it is cut to 65535
      {{0x9E0}, 70000, "w34.0340=11 w34.0341=70 w34.0202=00 w34.0203=00"},
      {{0x89A, 0x91A, 0x930, 0x95F, 0x9A0, 0x9D0, 0x9F0}, 100, "", "", 0}}},
    {"GetExposureValue",
     {{{0x960, 0x925}, 0, ask + ask + "b r78.3500 b r78.3501 b r78.3502", "500"},
      {{0x89F}, 0, ask + "b r48.0015 b r48.0016", "480"},
      {{0x9C5}, 0, ask + ask + ask + "b r48.0015 " + ask + "b r48.0016", "480"},
      {{0x9A0, 0x9DF}, 0, ask + ask + "b r42.08f b r42.10f b r42.2Ef b r42.2Df", "312"},
      {{0x9E0}, 0, ask + "b r34.0340 r34.0341 r34.0202 r34.0203", "500"},
      {{0x930}, 0, "b r62.80f b r62.80f", "0", 0}}},
    {"SetAETarget",
     {{{0x99F}, 0x50, "b w78.3A1E=50 b w78.3A1B=70 b w78.3A10=52 b w78.3A0F=5E", "", 0},
      {{0x920}, 0xFF, "b w78.3A1E=FF b w78.3A1B=1F b w78.3A10=01 b w78.3A0F=0D", "", 0},
      {{0x880}, 0x50, "b w48.038E=50 b w48.085C=01"},
      {{0x9C0}, 0x50, ask + ask + "b w48.038E=50 " + ask + "b w48.085C=01"},
      {{0x9A0, 0x9D0}, 0x50, ask + "b w42.25=50"},
      {{0x9E0}, 0x50, ask + ask + opened + "cmd1E:0000000150 cmd1E:0000020160 cmd1E:0000010140"},
      {{0x9E1}, 20, ask + ask + opened + "cmd1E:0000000115 cmd1E:0000020125 cmd1E:0000010105"},
      {{0x9E2}, 999, ask + ask + opened + "cmd1E:00000001F0 cmd1E:00000201 cmd1E:00000101E0"},
      {{0x930}, 0x50, "b r62.80f b r62.80f", "", 0}}},
    {"GetAETarget",
     {{{0x970, 0x925}, 0, "b r78.3A1E", "56"},
      {{0x91F}, 0, "b r48.038E", "64"},
      {{0x9C1}, 0, ask + ask + "b r48.038E", "64"},
      {{0x9A5, 0x9D5}, 0, ask + "b r42.25f", "72"},
      {{0x9E5}, 0, ask + ask + "cmd1D:00000001", "64"},
      {{0x930}, 0, "b r62.80f b r62.80f", "1", 0}}},
    {"SetAutoExposure",
     {{{0x9E0}, 1, ask + "r1700.2 w1700=8123", "", 1, 0x0123},
      {{0x9E0}, 0, ask + "r1700.2 w1700=0123", "", 1, 0x8123},
      {{0x9E0}, -1, ask + "r1700.2 w1700=0123", "", 1, 0x8123},
      {{0x970}, 1, ask + "b r78.3503 b w78.3503=00", "", 1, 0xF9},
      {{0x925}, -1, ask + "b r78.3503 b w78.3503=00", "", 1, 0xF9},
      {{0x970}, 0, ask + "b r78.3503 b w78.3503=FF", "", 1, 0xF8},
      {{0x970}, 2, ask + "b r78.3503 b w78.3503=F9", "", 1, 0xF9},
      {{0x870}, 1, ask + "b r48.0380 b w48.0380=55", "", 1, 0x54},
      {{0x870}, -1, ask + "b r48.0380 b w48.0380=55", "", 1, 0x54},
      {{0x870}, 0, ask + "b r48.0380 b w48.0380=54", "", 1, 0x55},
      {{0x870}, -2, ask + "b r48.0380 b w48.0380=55", "", 1, 0x55},
      {{0x9D0}, 1, ask + ask + "b r42.13f b w42.13=BD b w42.0E=D5", "", 1, 0xAA},
      {{0x9A0}, -1, ask + ask + "b r42.13f b w42.13=BD b w42.0E=D5", "", 1, 0xAA},
      {{0x9A0}, 0, ask + ask + "b r42.13f b w42.13=B8 b w42.0E=15", "", 1, 0xAA},
      {{0x9A0}, 2, ask + ask + "b r42.13f b w42.13=AA", "", 1, 0xAA},
      {{0x930}, 1, "b r62.80f b r62.80f", "", 0}}},
    {"GetAutoExposure",
     {{{0x9E0}, 0, ask + "r1700.2", "1", 9},
      {{0x9E0}, 0, ask + "r1700.2", "0", 9, 0x7FFF},
      {{0x970}, 0, ask + "b r78.3503", "1", 9},
      {{0x92F}, 0, ask + "b r78.3503", "0", 9, 0x01},
      {{0x870}, 0, ask + "b r48.0380", "1", 9},
      {{0x870}, 0, ask + "b r48.0380", "0", 9, 0xFE},
      {{0x9C0}, 0, ask + ask + ask + "b r48.0380", "1", 9},
      {{0x9A0}, 0, ask + ask + "p50 b r42.13f", "1", 9},
      {{0x9D0}, 0, ask + ask + "p50 b r42.13f", "0", 9, 0xFE},
      {{0x930}, 0, "b r62.80f b r62.80f", "0", 9}}},
    {"SetFlicker",
     {{{0x970}, QVX_FLICKER_DETECT, "b w78.3C01=34", "", 9},
      {{0x970}, QVX_FLICKER_60_HZ, "b w78.3C01=B4 b w78.3C00=00", "", 9},
      {{0x970}, QVX_FLICKER_50_HZ, "b w78.3C01=B4 b w78.3C00=04", "", 9},
      {{0x970}, 3, "", "", 9},
      {{0x871}, 1, "b r48.0120 b w48.0120=F1", "", 9, 0xF0},
      {{0x871}, 2, "b r48.0120 b w48.0120=F0", "", 9, 0xF1},
      {{0x871}, 0, "b r48.0120 b w48.0120=F1", "", 9, 0xF1},
      {{0x871}, -7, "b r48.0120 b w48.0120=F0", "", 9, 0xF0},
      {{0x9A0}, 1, "b w42.22=7F b w42.23=03", "", 9},
      {{0x9D0}, 2, "b w42.22=99 b w42.23=02", "", 9},
      {{0x9D0}, 0, "", "", 9}}},
};

const std::string askWifi = "r62.80 p5 ";
const Table wifiTables[] = {
    {"SetExposureValue",
     {{{0x970},
       100,
       "p10 w78.350C=00 p10 w78.350D=60 p10 w78.3500=00 p10 w78.3501=06 p10 w78.3502=40"},
      {{0x880}, 1000, "p10 w48.0015=03 p10 w48.0016=E8"},
      {{0x9E0}, 100, ""}}},
    {"GetExposureValue",
     {{{0x970}, 0, askWifi + askWifi + "r78.3500 p5 r78.3501 p5 r78.3502 p5", "500"},
      {{0x9D0}, 0, askWifi + askWifi + "r42.08 p5 r42.10 p5 r42.2E p5 r42.2D p5", "312"}}},
    {"SetAETarget",
     {{{0x970}, 0x50, "w78.3A1E=50 w78.3A1B=70 w78.3A10=52 w78.3A0F=5E", "", 0},
      {{0x9D0}, 0x50, askWifi + "p10 w42.25=50"}}},
    {"GetAETarget", {{{0x880}, 0, "r48.038E p5", "64"}, {{0x970}, 0, "r78.3A1E p5", "56"}}},
    {"SetAutoExposure", {{{0x870}, 0, askWifi + "r48.0380 p5 p10 w48.0380=54"}}},
    {"GetAutoExposure", {{{0x9A0}, 0, askWifi + askWifi + "p50 r42.13 p5", "1", 9}}},
};

// It can be set, but not read.
const Table usb3Tables[] = {
    {"SetExposureValue",
     {{{0x9B0}, 300, "w78.350C=01 w78.350D=1A w78.3500=00 w78.3501=12 w78.3502=C0"}}},
    {"GetExposureValue", {{{0x9B0}, 0, "r62.80 r62.80", "0", 0}}},
    {"SetAETarget", {{{0x9B0}, 250, "w78.3A1E=D0 w78.3A1B=E0 w78.3A10=D2 w78.3A0F=DE"}}},
    {"GetAETarget", {{{0x9B0}, 0, "r78.3A1E", "56"}}},
    {"SetAutoExposure", {{{0x9B0}, 0, "r62.80 r78.3503 w78.3503=07"}}},
    {"GetAutoExposure", {{{0x9B0}, 0, "r62.80 r78.3503", "1", 9}}},
    {"SetFlicker", {{{0x9B0}, 2, "w78.3C01=B4 w78.3C00=04", "", 9}}}};

TEST_F(Exposure, OfEveryFamilyOnEveryTransport) {
  const auto checkAll = [this](std::span<const Table> tables, const std::vector<int>& indexes,
                               const std::function<void(int)>& plugIn) {
    for (const Table& table : tables)
      for (const Row& row : table.rows)
        for (const int pid : row.pids)
          for (const int index : indexes) {
            plugIn(pid);
            if (row.before != 0) program(row.before);
            check(table, row, pid, index);
          }
  };
  checkAll(bridgeTables, {0}, [this](int pid) { plug(pid); });
  checkAll(usb3Tables, {0}, [this](int pid) { plugUsb3(pid); });
  checkAll(wifiTables, {90, -1}, [this](int pid) { plugWifi(pid); });
}

TEST_F(Exposure, LongestExposureGoesInSteps) {
  const Rows<int, int, int> rows = {
      {63, 0, 64},    {64, 0, 96},      {132, 0, 96},    {133, 0, 149}, {265, 0, 149},
      {266, 1, 26},   {532, 1, 26},     {533, 2, 37},    {999, 2, 37},  {1000, 3, 248},
      {1001, 3, 249}, {INT_MIN, 0, 64}, {INT_MAX, 1, 15}};
  plug(0x970);
  for (const auto& [value, high, low] : rows) {
    SetExposureValue(0, value);
    EXPECT_EQ(std::pair(at(0x350C), at(0x350D)), std::pair(high, low)) << value;
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
  std::map<qvx_long, int> timesOff;
  plug(0x9E0);
  machine().workersInline = true;
  for (int value = 0; value <= 1125; ++value) {
    SetExposureValue(0, value);
    if (value < 1125) {
      ASSERT_EQ(at(0x0202) * 256 + at(0x0203), expectedFor(shutterOneLess, value)) << value;
      ++timesOff[GetExposureValue(0) - value];
    }
    setSensor(0x0202, value / 256);
    setSensor(0x0203, value % 256);
    ASSERT_EQ(GetExposureValue(0), expectedFor(exposureOneLess, value)) << value;
  }
  EXPECT_EQ(timesOff, (std::map<qvx_long, int>{{-1, 88}, {0, 649}, {1, 388}})) << "as noted";
  SetExposureValue(0, 1126);
  EXPECT_EQ(GetExposureValue(0), 1126) << "a longer frame is the exposure";
}

// Every register with a value of its own. The sensor at 0x42 has two exposures, which are added.
TEST_F(Exposure, IsReadFromEveryRegister) {
  const Rows<int, std::map<int, int>, qvx_long> rows = {
      {0x970, {{0x3500, 0x0F}, {0x3501, 0xA5}, {0x3502, 0x7C}}, 0xFA57},
      {0x870, {{0x15, 0xFE}, {0x16, 0xDC}}, 0xFEDC},
      {0x9A1, {{0x08, 0xA1}, {0x10, 0xB2}, {0x2E, 0xC3}, {0x2D, 0xD4}}, 0xA1B2 + 0xC3D4},
      {0x9E0, {{0x0340, 0xFE}, {0x0341, 0xDC}}, 0xFEDC}};
  for (const auto& [pid, registers, lines] : rows) {
    plug(pid);
    for (const auto& [reg, value] : registers) setSensor(reg, value);
    EXPECT_EQ(GetExposureValue(0), lines) << std::hex << pid;
  }
}

TEST_F(Exposure, TargetWithoutAProductId) {
  bWait = 9;
  EXPECT_EQ(GetAETarget(0), 16);
  EXPECT_EQ(traffic(), "");
  EXPECT_EQ(bWait, 0);
  nCurrPid = 0x970;
  GetAETarget(0);
  EXPECT_EQ(nPid, 0x970) << "the fallback stays";
}

// By `nPid` alone: the block of ids from each row's first to the next row's takes this sensor's
// writes.
TEST_F(Exposure, FlickerKnowsItsRanges) {
  const std::pair<int, std::string> rows[] = {
      {-1, ""},       {0x870, "w48"},     {0x890, ""},    {0x900, "w78"},
      {0x90A, ""},    {0x910, "w48"},     {0x920, "w78"}, {0x950, ""},
      {0x960, "w78"}, {0x9A0, "w42"},     {0x9B0, "w78"}, {0x9C0, "w48"},
      {0x9D0, "w42"}, {0x9E0, "capture"}, {0x9F0, ""},    {0xA71, ""}};
  for (const auto* row = rows; row + 1 != std::end(rows); ++row) {
    for (int pid = row->first; pid < row[1].first; ++pid) {
      nPid = pid;
      printedBy([] { SetFlicker(-1, 1); });
      const std::string all = traffic();
      EXPECT_EQ(all.empty(), row->second.empty()) << std::hex << pid;
      EXPECT_NE(all.find(row->second), std::string::npos) << std::hex << pid;
    }
  }
}

// The property counts 50 Hz as 1 and 60 Hz as 2, the function the other way round.
TEST_F(Exposure, FlickerIsAPropertyOfTheCurrentDeviceOn4xx7) {
  plug(0x9E0);
  GetDeviceIDA(0);
  const std::string sets[] = {"", "capture: set 13 to 2 manually", "capture: set 13 to 1 manually",
                              ""};
  for (int mode = 0; mode < 4; ++mode) {
    nPid = 0x9E0;
    journal();
    SetFlicker(5, mode);
    const std::string all = traffic();
    EXPECT_EQ(all.find("capture: set") == std::string::npos, sets[mode].empty()) << mode;
    EXPECT_NE(all.find(sets[mode]), std::string::npos) << mode;
  }
}

}  // namespace
}  // namespace qvx::tests
