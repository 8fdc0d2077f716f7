// The lights of the lighting controller: what each command sends, on every transport.
#include "controls/lighting.h"

#include <climits>
#include <numeric>
#include <span>
#include <sstream>

#include "qvx64/api.h"
#include "tests/support/cameras.h"
#include "tests/support/wifi_registers.h"

namespace qvx::tests {
namespace {

using simulator::VirtualBridge;

using Command = void (*)(int, qvx_long);

using Lighting = LightsTest;

// A number, a level, and what is sent: "0x960 5: p 3=5 p", rows with "|" between them.
struct Sent {
  int number = 0;
  qvx_long level = 0;
  std::string traffic;
};

std::vector<Sent> sentIn(const std::string& rows) {
  std::vector<Sent> all;
  for (const std::string& row : itemsIn(rows)) {
    std::istringstream words(row);
    words.unsetf(std::ios::basefield);  // "0x" begins hexadecimal digits
    Sent& sent = all.emplace_back();
    words >> sent.number >> sent.level;
    sent.traffic = row.substr(row.find(": ") + 2);
  }
  return all;
}

struct Table {
  Command command;
  const char* rows;  // by product id
};

static_assert(QVX_RING_ON == 15 && QVX_AXIAL_OFF == 32 && QVX_AIM_OFF == 48);
static_assert((QVX_SEGMENT_3 | QVX_SEGMENT_4) == 12);

// Levels as they come, product ids of every row and both ends of its range.
const Table laterCommands[] = {
    {SetSEGSwitch,
     "0x960 15: 4=15 p|0x970 12: 4=12 p|0x9C0 32: 4=32 p|0x9E0 48: 4=48 p|0x960 271: 4=15 p|"
     "0x9B0 15: 4=15 p"},
    {SetSEGLevel,
     "0x960 5: p 3=5 p|0x960 -1: p 3=255 p|0x960 0: 4=16 p 3=0 p|0x9B0 0: 4=16 p 3=0 p"},
    {SetAXILevel,
     "0x9C0 6: 4=24 p 3=38 p|0x9C7 0: 4=32 p 3=32 p|0x9C8 0: p 3=7 p|0x9E0 -1: p 3=31 p|"
     "0x9EF 2147483647: 4=24 p 3=31 p|0x9D0 2: 3=13 p 3=9 p|0x960 2: p 3=13 p 3=9 p|"
     "0x99F 0: p p 3=7 p|0x9B0 0: p 3=7 p|0x9B0 6: 3=13 p 3=13 p"},
    {SetAimpointLevel,
     "0x9C0 5: 4=40 p 3=71 p|0x9C7 6: 4=40 p 3=70 p|0x9E0 0: 4=48 p 3=76 p|0x9EF -1: p 3=77 p|"
     "0x9E9 -2147483648: p 3=76 p|0x960 5: 3=12 p|0x99F 0: 3=7 p|0x9C8 5: |0x9D0 5: |"
     "0x9B0 1: 4=40 p 3=75 p"}};

// On 0x9B0 it counts, although there is no segment mode.
const Table firstCommands[] = {
    {SetSEGSwitch,
     "0x960 15: F2 1 F3 1 4=15 p|0x9C7 1: R80=F5 4=1 p|0x9C8 1: F2 1 F3 1 4=1 p|0x9B0 15: 4=15 p"},
    {SetSEGLevel, "0x960 5: F2 1 F3 1 p 3=5 p"},
    {SetAXILevel, "0x960 0: F2 1 F3 1 p p 3=7 p|0x9C7 0: 4=32 p 3=32 p|0x9D0 0: p 3=7 p"},
    {SetAimpointLevel, "0x960 1: F2 1 F3 1 3=8 p"}};

TEST_F(Lighting, TheFirstCommandEntersSegmentMode) {
  const auto check = [this](std::span<const Table> tables, int before) {
    for (const Table& table : tables) {
      for (const auto& [pid, level, expected] : sentIn(table.rows)) {
        pid == 0x9B0 ? plugUsb3(pid) : plug(pid);
        SEGCount[0] = before;
        table.command(0, level);
        EXPECT_EQ(traffic(), expected) << std::hex << pid << " " << level;
        EXPECT_EQ(SEGCount[0], before + 1);
      }
    }
  };
  check(firstCommands, 0);
  check(laterCommands, 1);
}

TEST_F(Lighting, TheFirstCommandOverWifiCountsUnderBothIndexes) {
  const Rows<int, Command, const char*> rows = {{0x960, SetSEGSwitch, "pins7=6 4=1 p 4=1 p"},
                                                {0x9C0, SetSEGLevel, "pins7=5 p 3=1 p p 3=1 p"},
                                                {0x9C8, SetSEGLevel, "pins7=6 p 3=1 p p 3=1 p"},
                                                {0x9B0, SetSEGSwitch, "pins7=6 4=1 p 4=1 p"}};
  for (const auto& [pid, command, expected] : rows) {
    plugWifi(pid);
    SEGCount[90] = 0;
    command(-1, 1);
    command(90, 1);
    EXPECT_EQ(traffic(), expected) << std::hex << pid;
    EXPECT_EQ(SEGCount[90], 2);
  }
}

TEST_F(Lighting, CountStartsOverAtOneAndIsKeptForEveryIndexThatHasOne) {
  plug(0x960);
  SEGCount[0] = 9998;
  SetSEGLevel(0, 1);
  SetAimpointLevel(0, 1);
  EXPECT_EQ(SEGCount[0], 1);
  traffic();
  SetSEGSwitch(0, 1);
  EXPECT_EQ(traffic(), "4=1 p") << "never back to 0";
  SEGCount[0] = 0;
  for (const int index : {100, INT_MAX, -2, INT_MIN}) {
    for (const Command command : {SetSEGSwitch, SetSEGLevel, SetAXILevel, SetAimpointLevel}) {
      command(index, INT_MIN);
      command(index, INT_MAX);
    }
    SetESEG(index, INT_MIN, INT_MAX);
    EXPECT_EQ(std::accumulate(SEGCount.begin(), SEGCount.end(), 0), 0) << index;
  }
  SetSEGSwitch(99, 0);
  EXPECT_EQ(SEGCount[99], 1);
}

TEST_F(Lighting, IndexesWithoutAProductIdGoByTheOneNotedLast) {
  plugUsb3(0x9B0);
  nCurrPid = 0x9B0;
  SetSEGSwitch(5, 15);
  EXPECT_EQ(traffic(), "4=15 p") << "to the USB 3 camera";
  plug(0x960);
  machine().videoInputs.clear();
  machine().hidInterfaces = std::vector(9, bridgeHidInterface(*bridge));
  etLib2_Init();
  nCurrPid = 0x960;
  SetSEGSwitch(8, 15);
  EXPECT_EQ(camera().controller.at(4), 15) << "to the ninth HID bridge";
}

TEST_F(Lighting, ModelIsThatOfTheCurrentDevice) {
  VirtualBridge current(0x9C0), other(0x960);
  plugBridges({&current, &other});
  SetAXILevel(1, 6);
  EXPECT_EQ(traffic(), "4=24 p 3=38 p") << "by the rule of 0x9C0";
  EXPECT_EQ(other.camera.controller.at(3), 38);
  SetSEGSwitch(1, 15);
  EXPECT_EQ(traffic(), "4=15 p");
  SEGCount[1] = 0;
  SetSEGSwitch(1, 15);
  EXPECT_EQ(traffic(), "R80=F5 4=15 p");
  EXPECT_EQ(current.chip.peek(0x80), 0xF5u) << "the mode of the current device, by its chip";
  EXPECT_EQ(other.chip.peek(0x80), 0xF0u);
  VideoDeviceIndex = 1;
  SetAXILevel(0, 0);
  EXPECT_EQ(traffic(), "F2 1 F3 1 p p 3=7 p");
  EXPECT_TRUE(current.chip.segmentMode()) << "and by command that of the device addressed";
}

TEST_F(Lighting, QuadrantsOnRingsThatHaveThem) {
  plug(0x9E2);
  nPid = 0x9E2;
  for (const auto& [quadrant, level, expected] :
       sentIn("2 12: 19=30 p 19=12 p|2 31: 19=31 p|1 300: 18=30 p 18=44 p|3 30: 20=30 p 20=30 p|"
              "3 5: 20=5 p|4 0: 21=30 p 21=0 p|0 7: 3=7 p|5 7: |-1 7: |2147483647 7: ")) {
    SetESEG(0, quadrant, level);
    EXPECT_EQ(traffic(), expected) << quadrant;
  }
  EXPECT_EQ(SEGCount[0], 0) << "these are not counted";
  set(0x83, 0);
  SetESEG(0, 2, 12);
  EXPECT_EQ(traffic(Reads::shown), "b 131?");
}

TEST_F(Lighting, QuadrantsOverWifi) {
  plugWifi(0x9C4);
  SetESEG(90, 3, 9);
  EXPECT_EQ(traffic(Reads::shown), "131? 20? 20=30 p 20=9 p");
  SetESEG(-1, 3, 12);
  EXPECT_EQ(traffic(), "") << "the kind is not read under this index";
  WifiRegisters wifi;
  plugUsb3(0x9B0);
  machine().wifi = wifi.server();
  set(0x83, 4);
  SetESEG(-1, 0, 12);
  EXPECT_EQ(traffic(Reads::shown), "131? 3=12 p") << "but of a USB 3 camera it is";
}

// On Wi-Fi the whole number goes out, not its low byte.
TEST_F(Lighting, WifiTakesWholeNumbers) {
  SEGCount[90] = 1;
  SetSEGLevel(90, 300);
  EXPECT_EQ(traffic(), "p 3=300 p");
  SetSEGLevel(90, -2);
  EXPECT_EQ(traffic(), "p 65535=65534 p");
}

TEST_F(Lighting, SegmentModeIsOnWhenBothAnswersSaySo) {
  const Rows<std::deque<std::vector<std::uint8_t>>, bool, const char*> rows = {
      {{{0, 1, 0}, {0, 1, 0}}, true, "F2 0 F3 1"},  // asked with what the first answer left
      {{{0, 0, 1}, {0, 0, 1}}, true, "F2 0 F3 0"},
      {{{0, 0, 1}, {0, 0, 0}}, false, "F2 0 F3 0"},
      {{{0, 0, 0}, {0, 1, 0}}, false, "F2 0 F3 0"},
      {{{0, 2, 2}, {0, 2, 2}}, false, "F2 0 F3 2"}};
  const auto node = plugScripted({});
  nPid = 0x960;
  for (const auto& [answers, isOn, expected] : rows) {
    node->replies = answers;
    EXPECT_EQ(isSEGMode(), isOn);
    EXPECT_EQ(traffic(), expected);
  }
  node->replies = {{0, 1, 1}};
  for (const int pid : {0x95F, 0x960, 0x99F, 0x9A0, 0x9C0}) {
    nPid = pid;
    EXPECT_EQ(isSEGMode(), pid == 0x960 || pid == 0x99F) << "others are not asked";
  }
  EXPECT_EQ(traffic(), "F2 0 F3 1 F2 0 F3 1");
}

}  // namespace
}  // namespace qvx::tests
