// LED states: every rule, as a camera that it is for sees it.
#include "controls/led_state.h"

#include <climits>
#include <span>

#include "controls/lighting.h"
#include "qvx64/api.h"
#include "state/kept_state.h"
#include "tests/support/cameras.h"

namespace qvx::tests {
namespace {

struct Registers {
  std::uint8_t features, board = 0xFF, kind = 0;  // 0x80, 0x84, 0x83
};

class LedState : public LightsTest {
 protected:
  void program(const Registers& registers) {
    set(0x80, registers.features);
    set(0x84, registers.board);
    set(0x83, registers.kind);
  }
};

struct States {
  std::uint16_t pid;
  Registers registers;
  const char* traffic[4];  // by state; the last one: state 7, over Wi-Fi
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

const States wifiFamilies[] = {
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

TEST_F(LedState, OfEveryCamera) {
  const struct {
    std::function<void(int pid)> plugIn;
    int index;
    std::span<const States> rows;
  } transports[] = {
      {[this](int pid) { plug(pid); }, 0, families},
      {[this](int pid) { plugUsb3(pid); }, 0, usb3},
      {[this](int pid) { plugWifi(pid); }, 90, wifiFamilies},
  };
  for (const auto& transport : transports) {
    for (const States& row : transport.rows) {
      for (int i = 0; i < 4 && row.traffic[i] != nullptr; ++i) {
        const int state = i == 3 ? 7 : i;
        SCOPED_TRACE(testing::Message() << std::hex << row.pid << " state " << state);
        transport.plugIn(row.pid);
        program(row.registers);
        // What the predicates and the board leave, for state 2 of the cameras that go by it.
        ul80 = row.registers.features;
        ul84 = row.registers.board;
        nTmpIdx = 5;  // whoever was used last
        SEGCount[0] = 1;
        SetLEDState(transport.index, state);
        EXPECT_EQ(traffic(), row.traffic[i]);
        EXPECT_EQ(nTmpIdx, transport.index == 0 ? 0 : nTmpIdx);
      }
    }
  }
}

TEST_F(LedState, WifiStatesThatAreKept) {
  // After states 0, 1, 2 and 7, from 9 before each.
  for (const auto& [pid, kept] : {std::pair(0x978, "0999"),
                                  {0x920, "0999"},
                                  {0x9AE, "0121"},
                                  {0x9AD, "9999"},
                                  {0x9D0, "9999"}}) {
    for (int i = 0; i < 4; ++i) {
      nCurrPid = pid;
      m_LEDStatus = 9;
      SetLEDState(90, i == 3 ? 7 : i);
      EXPECT_EQ(m_LEDStatus, kept[i] - '0') << std::hex << pid << " state " << i;
    }
  }
}

TEST_F(LedState, WifiSegmentsAndProgressThatAreChosen) {
  nCurrPid = 0x9D9;
  nProgress = 8;
  for (const auto& [segment, expected] : {std::pair(&m_LED1Status, "4=1 3=8 3=13"),
                                          {&m_LED2Status, "4=3 3=8 3=13"},
                                          {&m_LED3Status, "4=7 3=8 3=13"},
                                          {&m_LED4Status, "4=15 3=8 3=13"}}) {
    *segment = 1;
    SetLEDState(90, 2);
    EXPECT_EQ(traffic(), expected);
  }
}

// State 3 is taken by cameras with a lighting controller, and does nothing there. Under index -1
// nothing is read from the Wi-Fi camera once the feature word is known.
TEST_F(LedState, WifiOddities) {
  plugWifi(0x978);
  program({0x01, 0xFF, 4});
  SetLEDState(90, 3);
  EXPECT_EQ(traffic(Reads::shown), "128? 131?") << "the feature word's";
  SetLEDState(90, 1);
  EXPECT_EQ(traffic(Reads::shown), "128? 131? 131? 4=15 3=49");
  SetLEDState(-1, 1);
  EXPECT_EQ(traffic(Reads::shown), "128? 131? 4=15 3=6");
}

// The reads: of the feature word, of the families that ask, and of the rule itself.
TEST_F(LedState, ReadsInOrder) {
  const std::string word = "b 128? ", asks = "b 128? b 132? ", write = "b 128? b 128? b ";
  const struct {
    std::uint16_t pid;
    Registers registers;
    int state;
    std::string traffic;
  } rows[] = {
      {0x870, {0xFF}, 0, word + "b p R80=F0 p"},
      {0x9A0, {0xFF}, 1, word + "b p " + asks + asks + "R80=F1"},
      {0x922, {0xFF}, 2, word + "b p R80=F4"},
      {0x9E0, {0x01}, 3, word + "b 131? b p b 132?"},
      {0x9E0, {0x01}, 0, word + "b 131? b p b 132? " + write + "4=16 p " + write + "4=32 p"},
      {0x9E0, {0x00}, 1, word + "b 131? b p " + asks + asks + "b 128? p b 132? p b 131? p"},
      {0x9E0, {0x00}, 2, word + "b 131? b p b 128? b 131? b 132?"},
  };
  for (const auto& row : rows) {
    plug(row.pid);
    program(row.registers);
    SetLEDState(0, row.state);
    EXPECT_EQ(traffic(Reads::shown), row.traffic) << std::hex << row.pid << " " << row.state;
  }
}

// State 2 of 0x9E0 to 0x9EF reads the registers and then goes by what was known before.
TEST_F(LedState, GoesByKnownRegistersWhereTheRuleSaysSo) {
  plug(0x9E0);
  program({0x0A, 4});
  SEGCount[0] = 1;
  ul80 = 0;
  SetLEDState(0, 2);
  EXPECT_EQ(traffic(), "p");
  ul80 = 0x0A;
  ul84 = 4;
  program({0x00, 0});
  SetLEDState(0, 2);
  EXPECT_EQ(traffic(), "p 4=8 p p 3=6 p");
}

TEST_F(LedState, SegmentModeIsEnteredOnce) {
  plug(0x998);
  program({0x01, 5});
  SetLEDState(0, 1);
  traffic();
  SetLEDState(0, 2);
  EXPECT_EQ(traffic(), "p F2 0 F3 0 p 4=16 p 3=13 p");
  EXPECT_EQ(SEGCount[0], 0) << "not counted as a lighting command";
  set(0x84, 7);
  SetLEDState(0, 0);
  EXPECT_EQ(traffic(), "p F2 1 p F3 1 p F2 1 F3 1 4=16 p p p 3=7 p p") << "the first one counted";
}

TEST_F(LedState, OtherStatesAndDevicesChangeNothing) {
  plug(0x9E0);
  program({0x01, 5});
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

}  // namespace
}  // namespace qvx::tests
