// LED states: every rule, as a camera that it is for sees it.
#include "controls/led_state.h"

#include <climits>

#include "controls/lighting.h"
#include "qvx64/api.h"
#include "tests/support/light_cameras.h"

namespace qvx::tests {
namespace {

using simulator::VirtualBridge;

struct Registers {
  std::uint8_t features, board = 0xFF, kind = 0;  // 0x80, 0x84, 0x83
};

void program(simulator::Camera& camera, const Registers& registers) {
  camera.controller().set(0x80, registers.features);
  camera.controller().set(0x84, registers.board);
  camera.controller().set(0x83, registers.kind);
}

class LedState : public LightsTest {};

struct States {
  std::uint16_t pid;
  Registers registers;
  const char* traffic[3];  // by state
};

// By the family alone. Every call starts with a pause; lighting commands have pauses of their own.
const States families[] = {
    {0x870, {0xFF}, {"p R80=F0 p", "p R80=F1", "p"}},
    {0x9D8, {0x06}, {"p R80=F0 p", "p R80=F1", "p"}},
    {0x9D8, {0x04}, {"p", "p", "p"}},
    {0x9C6, {0x04}, {"p R80=F0 p", "p R80=F1", "p"}},
    {0x9C6, {0x02}, {"p", "p", "p"}},
    {0x9AF, {0xFF}, {"p R80=F0 p", "p R80=F1", "p"}},
    {0x91E, {0x86}, {"p R80=F2 p", "p R80=F4", "p R80=F1"}},
    {0x877, {0xFF}, {"p", "p", "p"}},
    {0x980, {0x06}, {"p F2 1 p F3 1 p 4=16 p p", "p F2 1 F3 1 4=15 p p 3=6 p", "p"}},
    {0x96D,
     {0x02},
     {"p F2 1 p F3 1 p 4=16 p p p 3=7 p p", "p F2 1 F3 1 4=15 p p p 3=6 p p p p 3=7 p p",
      "p F2 1 F3 1 4=16 p p 3=13 p 3=20 p"}},
    {0x925, {0xFF}, {"p R80=F0", "p R80=F4", "p"}},
    {0x928, {0xFF}, {"p R80=F0", "p R80=F1", "p R80=F4"}},
    {0x9E5,
     {0x10},
     {"p 4=16 p p p 3=6 p p 4=48 p p", "p 4=15 p p p 3=6 p p 4=48 p p", "p 4=16 p p 4=40 p p"}},
    {0x9EF,
     {0x10, 0xFF, 4},
     {"p 4=16 p p p 3=6 p p 4=48 p p", "p 4=15 p p p 3=31 p p 4=48 p p", "p 4=16 p p 4=40 p p"}},
    // by variant and board
    {0x9E0, {0x00}, {"p 4=16 p p p 3=6 p p", "p p p p", "p"}},
    {0x9E0, {0x0A, 0x14}, {"p 4=16 p p p 3=6 p p", "p p p p 4=7 p p 3=6 p", "p 4=8 p p 3=6 p"}},
    {0x9E0, {0x8A, 4, 4}, {"p 4=16 p p p 3=6 p p", "p p p p 4=7 p p 3=31 p", "p 4=8 p p 3=31 p"}},
    {0x9E0, {0x0A, 3}, {"p 4=16 p p p 3=6 p p", "p p p p", "p"}},
    {0x9E0, {0x0E, 3, 4}, {"p 4=16 p p p 3=6 p p", "p p p p 4=15 p p 3=31 p", "p"}},
    // by the board that register 0x84 tells
    {0x9EF,
     {0x01},
     {"p 4=16 p 4=32 p", "p 4=16 p 4=15 p 3=6 p 4=32 p", "p 4=16 p 4=32 p 4=24 p 3=38 p 4=16 p"}},
    {0x978, {0x00}, {"p 4=16 p 3=7 p", "p 3=7 p 4=15 p 3=6 p", "p 4=16 p 3=13 p"}},
    {0x97F, {0x01}, {"p 4=16 p 3=7 p", "p 3=7 p 4=15 p 3=6 p", "p 4=16 p 3=13 p"}},
    {0x9C6,
     {0x01, 5},
     {"p R80=F5 p 4=16 p 3=7 p", "p R80=F5 p 4=15 p 3=6 p", "p R80=F5 p 4=16 p 3=13 p"}},
    {0x9D4,
     {0x01, 5},
     {"p F2 1 F3 1 p 4=16 p 3=7 p", "p F2 1 F3 1 p 4=15 p 3=6 p", "p F2 1 F3 1 p 4=16 p 3=13 p"}},
    {0x998,
     {0x01, 5},
     {"p F2 0 F3 0 F2 1 F3 1 p 4=16 p 3=7 p", "p F2 0 F3 0 F2 1 F3 1 p 4=15 p 3=6 p",
      "p F2 0 F3 0 F2 1 F3 1 p 4=16 p 3=13 p"}},
    {0x970, {0x01, 5}, {"p F2 1 p F3 1 p 4=16 p p", "p F2 1 F3 1 4=15 p p 3=6 p", "p"}},
};

TEST_F(LedState, BridgeCameras) {
  for (const States& row : families) {
    for (int state = 0; state < 3; ++state) {
      SCOPED_TRACE(testing::Message() << std::hex << row.pid << " state " << state);
      VirtualBridge camera(row.pid);
      program(camera.camera, row.registers);
      plugBridges({&camera});
      // What the predicates and the board leave, for state 2 of the cameras that go by it.
      ul80 = row.registers.features;
      ul84 = row.registers.board;
      nTmpIdx = 5;  // whoever was used last
      SEGCount[0] = 1;
      SetLEDState(0, state);
      EXPECT_EQ(traffic(), row.traffic[state]);
      EXPECT_EQ(complaintsOf(camera.camera), "");
      EXPECT_EQ(nTmpIdx, 0);
    }
  }
}

const States usb3[] = {
    {0x9B0,
     {0x03},
     {"p P 4=16 p P p 3=6 p P p 3=7 p P", "p P P P 4=15 p P p 3=6 p P p 3=7 p P",
      "p p p p 4=16 p p p 3=13 p p"}},
    {0x9B0,
     {0x0B, 0xFF, 4},
     {"p P 4=16 p P p 3=6 p P p 3=7 p P", "p P P P 4=15 p P p 3=31 p P",
      "p p p p 4=16 p p p 3=13 p p"}},
    {0x9B0,
     {0x0A, 4, 4},
     {"p P 4=16 p P p 3=6 p P", "p P P P 4=7 p P p 3=31 p P", "p p p p 4=8 p p 3=31 p"}},
    {0x9B0,
     {0x0A, 3},
     {"p P 4=16 p P p 3=6 p P", "p P P P 4=15 p P p 3=6 p P", "p p p p 4=5 p p 3=6 p"}},
    {0x9B0, {0x04}, {"p P 4=16 p P p 3=6 p P", "p P P P 4=15 p P p 3=6 p P", "p p p p"}},
    {0x9B0, {0x01, 5}, {"p p 4=16 p 3=7 p", "p p 4=15 p 3=6 p", "p p 4=16 p 3=13 p"}},
    // read over the bridge, which is not there
    {0x9B1, {0x03}, {"p P 4=16 p P p 3=6 p P", "p P P P 4=15 p P p 3=6 p P", "p p p p"}},
};

TEST_F(LedState, Usb3Cameras) {
  for (const States& row : usb3) {
    for (int state = 0; state < 3; ++state) {
      SCOPED_TRACE(testing::Message() << std::hex << row.pid << " state " << state);
      simulator::Camera camera(row.pid);
      program(camera, row.registers);
      plugUsb3(camera);
      SEGCount[0] = 1;
      SetLEDState(0, state);
      EXPECT_EQ(traffic(), row.traffic[state]);
      EXPECT_EQ(complaintsOf(camera), "");
    }
  }
}

struct WifiStates {
  std::uint16_t pid;
  Registers registers;
  const char* traffic[4];  // states 0, 1, 2 and 7
};

const WifiStates wifiFamilies[] = {
    {0x978, {0x00, 0xFF, 3}, {"4=16 3=7", "4=15 3=6", "4=16 3=13", "pins7=0"}},
    {0x978, {0x00, 0xFF, 4}, {"4=16 3=7", "4=15 3=49", "4=16 3=13", "pins7=0"}},
    {0x9E0, {0x01}, {"4=16 3=7", "4=15 3=6", "4=16 3=13", "pins5=0"}},
    {0x9D0, {0x01}, {"4=16 3=7", "4=15 3=6", "4=16 3=13", "pins7=0"}},
    {0x9DF, {0x00}, {"4=16", "4=15 3=6", "4=16 3=0 3=13", "pins7=0"}},
    {0x9C0, {0x00}, {"4=16", "4=15 3=6", "4=16 3=0 3=13", "pins7=0"}},
    {0x870, {0xFF}, {"pins5=0", "pins5=1", "pins5=0", "pins5=0"}},
    {0x920, {0xFF}, {"pins5=0", "pins5=4", "pins5=4", "pins5=4"}},
    {0x922, {0xFF}, {"pins5=0", "pins5=1", "pins5=4", "pins5=0"}},
    {0x967, {0x00}, {"4=16", "4=15 3=6", "4=16 3=0 3=13", "pins7=0"}},
    {0x969, {0x00}, {"pins7=0", "pins7=1", "pins7=2", "pins7=0"}},
    {0x872, {0xFF}, {"pins5=0", "pins5=4", "pins5=1", "pins5=4"}},
    {0x9A9, {0xFF}, {"", "", "", ""}},
    {0x9AD, {0xFF}, {"pins5=0", "pins5=1", "pins5=0", "pins5=0"}},
    {0x9AE, {0xFF}, {"pins5=0", "pins5=4", "pins5=1", "pins5=4"}},
    {0x9AF, {0xFF}, {"pins5=0", "pins5=0", "pins5=0", "pins5=0"}},
};

TEST_F(LedState, WifiCameras) {
  const int states[] = {0, 1, 2, 7};
  for (const WifiStates& row : wifiFamilies) {
    simulator::Camera camera(row.pid);
    program(camera, row.registers);
    plugWifi(camera);
    for (int i = 0; i < 4; ++i) {
      SetLEDState(90, states[i]);
      EXPECT_EQ(traffic(), row.traffic[i]) << std::hex << row.pid << " state " << states[i];
    }
    EXPECT_EQ(complaintsOf(camera), "");
  }
}

TEST_F(LedState, WifiStatesThatAreKept) {
  const struct {
    int pid, kept[4];  // after states 0, 1, 2 and 7, from 9 before each
  } rows[] = {{0x978, {0, 9, 9, 9}},
              {0x920, {0, 9, 9, 9}},
              {0x9AE, {0, 1, 2, 1}},
              {0x9AD, {9, 9, 9, 9}},
              {0x9D0, {9, 9, 9, 9}}};
  const int states[] = {0, 1, 2, 7};
  for (const auto& row : rows) {
    for (int i = 0; i < 4; ++i) {
      nCurrPid = row.pid;
      m_LEDStatus = 9;
      SetLEDState(90, states[i]);
      EXPECT_EQ(m_LEDStatus, row.kept[i]) << std::hex << row.pid << " state " << states[i];
    }
  }
}

TEST_F(LedState, WifiSegmentsAndProgressThatAreChosen) {
  nCurrPid = 0x9D9;
  m_LED1Status = m_LED4Status = 1;
  nProgress = 8;
  SetLEDState(90, 2);
  EXPECT_EQ(traffic(), "4=9 3=8 3=13");
}

// State 3 is taken by cameras with a lighting controller, and does nothing there. Under index -1
// nothing is read from the Wi-Fi camera once the feature word is known.
TEST_F(LedState, WifiOddities) {
  simulator::Camera camera(0x978);
  program(camera, {0x01, 0xFF, 4});
  plugWifi(camera);
  SetLEDState(90, 3);
  EXPECT_EQ(traffic(Reads::shown), "128? 131?") << "the feature word's";
  SetLEDState(90, 1);
  EXPECT_EQ(traffic(Reads::shown), "128? 131? 131? 4=15 3=49");
  SetLEDState(-1, 1);
  EXPECT_EQ(traffic(Reads::shown), "128? 131? 4=15 3=6");
}

// The reads: of the feature word, of the families that ask, and of the rule itself.
TEST_F(LedState, ReadsInOrder) {
  const std::string word = "bus 128? ", asks = "bus 128? bus 132? ",
                    write = "bus 128? bus 128? bus ";
  const struct {
    std::uint16_t pid;
    Registers registers;
    int state;
    std::string traffic;
  } rows[] = {
      {0x870, {0xFF}, 0, word + "bus p R80=F0 p"},
      {0x9A0, {0xFF}, 1, word + "bus p " + asks + asks + "R80=F1"},
      {0x922, {0xFF}, 2, word + "bus p R80=F4"},
      {0x9E0, {0x01}, 3, word + "bus 131? bus p bus 132?"},
      {0x9E0, {0x01}, 0, word + "bus 131? bus p bus 132? " + write + "4=16 p " + write + "4=32 p"},
      {0x9E0,
       {0x00},
       1,
       word + "bus 131? bus p " + asks + asks + "bus 128? p bus 132? p bus 131? p"},
      {0x9E0, {0x00}, 2, word + "bus 131? bus p bus 128? bus 131? bus 132?"},
  };
  for (const auto& row : rows) {
    VirtualBridge camera(row.pid);
    program(camera.camera, row.registers);
    plugBridges({&camera});
    SetLEDState(0, row.state);
    EXPECT_EQ(traffic(Reads::shown), row.traffic) << std::hex << row.pid << " " << row.state;
  }
}

// State 2 of 0x9E0 to 0x9EF reads the registers and then goes by what was known before.
TEST_F(LedState, GoesByKnownRegistersWhereTheRuleSaysSo) {
  VirtualBridge camera(0x9E0);
  program(camera.camera, {0x0A, 4});
  plugBridges({&camera});
  SEGCount[0] = 1;
  ul80 = 0;
  SetLEDState(0, 2);
  EXPECT_EQ(traffic(), "p");
  ul80 = 0x0A;
  ul84 = 4;
  program(camera.camera, {0x00, 0});
  SetLEDState(0, 2);
  EXPECT_EQ(traffic(), "p 4=8 p p 3=6 p");
}

TEST_F(LedState, SegmentModeIsEnteredOnce) {
  VirtualBridge camera(0x998);
  program(camera.camera, {0x01, 5});
  plugBridges({&camera});
  SetLEDState(0, 1);
  traffic();
  SetLEDState(0, 2);
  EXPECT_EQ(traffic(), "p F2 0 F3 0 p 4=16 p 3=13 p");
  EXPECT_EQ(SEGCount[0], 0) << "not counted as a lighting command";
  camera.camera.controller().set(0x84, 7);
  SetLEDState(0, 0);
  EXPECT_EQ(traffic(), "p F2 1 p F3 1 p F2 1 F3 1 4=16 p p p 3=7 p p") << "the first one counted";
}

TEST_F(LedState, OtherStatesAndDevicesChangeNothing) {
  VirtualBridge camera(0x9E0);
  program(camera.camera, {0x01, 5});
  plugBridges({&camera});
  for (const int state : {3, -1, INT_MIN, INT_MAX}) {
    SetLEDState(0, state);
    EXPECT_EQ(traffic(), "p") << state;
  }
  for (const int index : {1, 7, 8, 12345, INT_MIN, INT_MAX}) {
    SetLEDState(index, 1);
    EXPECT_EQ(traffic(), "p") << index;
    EXPECT_EQ(nPid, 0);
  }
}

TEST_F(LedState, ShowsInTheLightOfBridgeCameras) {
  for (const int pid : {0x870, 0x872, 0x922, 0x960, 0x978, 0x9C0, 0x9D0, 0x9E2, 0x9E9}) {
    VirtualBridge camera(static_cast<std::uint16_t>(pid));
    plugBridges({&camera});
    SetLEDState(0, 1);
    EXPECT_GT(camera.brightness(), 0.15) << std::hex << pid;
    SetLEDState(0, 0);
    EXPECT_EQ(camera.brightness(), 0) << std::hex << pid;
    etLib2_Release();
  }
}

TEST_F(LedState, ShowsInTheLightOfWifiCameras) {
  for (const int pid : {0x870, 0x922, 0x960, 0x978, 0x9AE, 0x9D4}) {
    simulator::Camera camera(static_cast<std::uint16_t>(pid));
    plugWifi(camera);
    SetLEDState(90, 1);
    EXPECT_GT(camera.brightness(), 0.5) << std::hex << pid;
    SetLEDState(90, 0);
    EXPECT_EQ(camera.brightness(), 0) << std::hex << pid;
  }
}

}  // namespace
}  // namespace qvx::tests
