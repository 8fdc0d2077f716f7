// LED states: every register read and write, for every product id.
#include "controls/led_state.h"

#include <algorithm>
#include <climits>
#include <span>

#include "controls/lighting.h"
#include "qvx64/api.h"
#include "state/kept_state.h"
#include "tests/support/cameras.h"
#include "tests/support/product_ids.h"
#include "tests/support/wifi_registers.h"

namespace qvx::tests {
namespace {

// What the rules look at.
struct Seen {
  int pid;
  int features, board = 0xFF, kind = 0;  // registers 0x80, 0x84, 0x83

  bool says(int mask, int value) const { return (features & mask) == value; }
  // For the feature word, a register 0x80 that reads 0xFF does not exist.
  bool hasFeature(int bit) const { return features != 0xFF && (features & bit) != 0; }
  bool hasController() const {
    static const Ids ids = "968 978 998 9B0 9C0-9EF";
    return ids.contains(pid) && hasFeature(0x01);
  }
  bool isAskedForKind() const {
    static const Ids ids = "910-91F 960-99F 9B0 9C0-9EF";
    return ids.contains(pid) && features != 0xFF;
  }
  bool isAskedForBoard() const {
    static const Ids ids = "978-97F";
    return ids.contains(pid) || hasController();
  }
  bool hasBoard(int number) const { return isAskedForBoard() && board == number; }
  bool hasHalves() const { return says(0x0F, 0x0A) && (board & 0x0F) == 4; }
};

using When = bool (*)(const Seen&);
constexpr When always = [](const Seen&) { return true; };
constexpr When board5 = [](const Seen& seen) { return seen.hasBoard(5); };
constexpr When board255 = [](const Seen& seen) { return seen.hasBoard(255); };
constexpr When hasHalves = [](const Seen& seen) { return seen.hasHalves(); };
constexpr When hasAim = [](const Seen& seen) { return seen.hasFeature(0x10); };
constexpr When hasController = [](const Seen& seen) { return seen.hasController(); };
template <int mask, int value>
constexpr When says = [](const Seen& seen) { return seen.says(mask, value); };

std::ostream& operator<<(std::ostream& out, const Seen& seen) {
  return out << std::hex << "product id " << seen.pid << " with 0x80: " << seen.features
             << ", 0x84: " << seen.board << ", 0x83: " << seen.kind << std::dec;
}

// The first rule for the product id and the registers holds.
struct Rule {
  Ids ids;
  When when;
  const char *off = "", *on = "", *alternative = "", *other = "";  // states 0, 1, 2, all the rest
};

// "ask" reads the two registers by which a family's variants differ; "ring" is the ring's level,
// which depends on the kind of lights.
const Rule usbRules[] = {
    {"9E0-9EF", board255, "4=16 p 4=32 p", "4=16 p 4=15 p 3=6 p 4=32 p",
     "4=16 p 4=32 p 4=24 p 3=38 p 4=16 p"},
    {"978-97F", board255, "4=16 p 3=7 p", "3=7 p 4=15 p 3=6 p", "4=16 p 3=13 p"},
    {"968 978-97F 998", board5, "F2 0 F3 0 F2 1 F3 1 p 4=16 p 3=7 p",
     "F2 0 F3 0 F2 1 F3 1 p 4=15 p 3=6 p", "F2 0 F3 0 F2 1 F3 1 p 4=16 p 3=13 p"},
    {"9C0-9C7", board5, "R80=F5 p 4=16 p 3=7 p", "R80=F5 p 4=15 p 3=6 p", "R80=F5 p 4=16 p 3=13 p"},
    {"9B0", board5, "p 4=16 p 3=7 p", "p 4=15 p 3=6 p", "p 4=16 p 3=13 p"},
    {"9C8-9EF", board5, "F2 1 F3 1 p 4=16 p 3=7 p", "F2 1 F3 1 p 4=15 p 3=6 p",
     "F2 1 F3 1 p 4=16 p 3=13 p"},
    {vk4xxx_2, always, "R80=F0 p", "R80=F1"},
    {"9D0-9D2 9D7-9D8", says<6, 6>, "ask R80=F0 p", "ask R80=F1"},
    {"9C0-9C6", says<4, 4>, "ask ask R80=F0 p", "ask ask R80=F1"},
    {"9A0-9AF", always, "ask ask R80=F0 p", "ask ask R80=F1"},
    {vk4xxx_3, always, "ask ask R80=F2 p", "ask ask R80=F4", "R80=F1"},
    {vk7xxx_2, always, "ask ask F2 1 p F3 1 p 4=16 p p", "ask ask F2 1 F3 1 4=15 p p 3=6 p"},
    {vk7xxx_3, always, "ask ask F2 1 p F3 1 p 4=16 p p p 3=7 p p",
     "ask ask F2 1 F3 1 4=15 p p p 3=6 p p p p 3=7 p p", "F2 1 F3 1 4=16 p p 3=13 p 3=20 p"},
    {vk7xxxR4_2, always, "ask ask R80=F0", "ask ask R80=F4"},
    {vk7xxxR4_3, always, "ask ask R80=F0", "ask ask R80=F1", "R80=F4"},
    {"9E0-9EF", hasAim, "ask ask 4=16 p p p 3=6 p p 4=48 p p",
     "ask ask 131? 4=15 p p p 3=ring p p 4=48 p p", "4=16 p p 4=40 p p"},
    {"9E0-9EF", hasHalves, "ask ask 4=16 p p p 3=6 p p",
     "ask ask 128? p 132? p 131? p 4=7 p p 3=ring p", "128? 131? 132? 4=8 p p 3=ring p"},
    {"9E0-9EF", says<4, 4>, "ask ask 4=16 p p p 3=6 p p",
     "ask ask 128? p 132? p 131? p 4=15 p p 3=ring p", "128? 131? 132?"},
    {"9E0-9EF", always, "ask ask 4=16 p p p 3=6 p p", "ask ask 128? p 132? p 131? p",
     "128? 131? 132?"},
    {"9B0-9BF", says<15, 3>, "ask ask 128? P 4=16 p P p 3=6 p P p 3=7 p P",
     "ask ask 128? P 132? P 131? P 4=15 p P p 3=6 p P p 3=7 p P",
     "128? p 131? p 132? p 4=16 p p p 3=13 p p"},
    {"9B0-9BF", says<7, 3>, "ask ask 128? P 4=16 p P p 3=6 p P p 3=7 p P",
     "ask ask 128? P 132? P 131? P 4=15 p P p 3=ring p P",
     "128? p 131? p 132? p 4=16 p p p 3=13 p p"},
    {"9B0-9BF", hasHalves, "ask ask 128? P 4=16 p P p 3=6 p P",
     "ask ask 128? P 132? P 131? P 4=7 p P p 3=ring p P", "128? p 131? p 132? p 4=8 p p 3=ring p"},
    {"9B0-9BF", says<7, 2>, "ask ask 128? P 4=16 p P p 3=6 p P",
     "ask ask 128? P 132? P 131? P 4=15 p P p 3=ring p P", "128? p 131? p 132? p 4=5 p p 3=ring p"},
    {"9B0-9BF", always, "ask ask 128? P 4=16 p P p 3=6 p P",
     "ask ask 128? P 132? P 131? P 4=15 p P p 3=ring p P", "128? p 131? p 132? p"},
    {"000-FFF", always, "ask ask", "ask ask"},
};

const Rule wifiRules[] = {
    {"978", always, "4=16 3=7", "131? 4=15 3=ring", "4=16 3=13"},
    {"968 998 9B0 9C0-9EF", hasController, "4=16 3=7", "131? 4=15 3=ring", "4=16 3=13"},
    {"9D0-9DF", always, "4=16", "4=15 3=6", "4=16 3=0 3=13", "pins7=0"},
    {"9C0-9CF", always, "128? 4=16", "128? 4=15 3=6", "128? 4=16 3=0 3=13", "128? pins7=0"},
    {vk4xxx_2, always, "128? pins5=0", "128? pins5=1", "128? pins5=0", "128? pins5=0"},
    {vk7xxxR4_2, always, "128? pins5=0", "128? pins5=4", "128? pins5=4", "128? pins5=4"},
    {vk7xxxR4_3, always, "128? pins5=0", "128? pins5=1", "128? pins5=4", "128? pins5=0"},
    {vk7xxx_2, always, "128? 4=16", "128? 4=15 3=6", "128? 4=16 3=0 3=13", "128? pins7=0"},
    {vk7xxx_3, always, "128? pins7=0", "128? pins7=1", "128? pins7=2", "128? pins7=0"},
    {vk4xxx_3, always, "128? pins5=0", "128? pins5=4", "128? pins5=1", "128? pins5=4"},
    {"9A9-9AC", always, "128?", "128?", "128?", "128?"},
    {"9A0-9AD", always, "128? pins5=0", "128? pins5=1", "128? pins5=0", "128? pins5=0"},
    {"9AE", always, "128? pins5=0", "128? pins5=4", "128? pins5=1", "128? pins5=4"},
    {"000-FFF", always, "128? pins5=0", "128? pins5=0", "128? pins5=0", "128? pins5=0"},
};

// Other states than 0 to 3 go past the first two rules for Wi-Fi cameras.
std::string trafficBy(std::span<const Rule> rules, const Seen& seen, int state) {
  const auto rule = std::ranges::find_if(
      rules, [&](const Rule& each) { return each.ids.contains(seen.pid) && each.when(seen); });
  const char* const traffic[] = {rule->off, rule->on, rule->alternative, rule->other};
  return traffic[std::min(state, 3)];
}

// What comes before a register is written: two families are asked for on the wire, and the bus is
// selected on a bridge.
const struct {
  Ids ids;
  const char* traffic;
} beforeWrites[] = {
    {"9B0", "128? 128? "}, {"9B1-9BF", "b 128? b 128? "},   {"9C0-9CF", "b 128? b "},
    {"960-9DF", "b "},     {"9E0-9EF", "b 128? b 128? b "}, {"000-FFF", ""},
};

std::string writtenOut(const std::string& traffic, const Seen& seen, bool overWifi) {
  const bool overBridge = !overWifi && seen.pid != 0x9B0;
  const char* const beforeWrite = std::ranges::find_if(beforeWrites, [&](const auto& row) {
                                    return row.ids.contains(seen.pid);
                                  })->traffic;
  const std::string ring = seen.kind != 4 ? "3=6" : overWifi ? "3=49" : "3=31";
  std::istringstream words(traffic);
  std::string all;
  for (std::string word; words >> word;) {
    if (word == "ask")
      word = overBridge ? "b 128? b 132?" : "128? 132?";
    else if (word.ends_with('?') && overBridge)
      word = "b " + word;
    else if (word[1] == '=' && !overWifi)
      word = beforeWrite + word;
    all += (all.empty() ? "" : " ") +
           (word.ends_with("3=ring") ? word.substr(0, word.size() - 6) + ring : word);
  }
  return all;
}

class LedState : public LightsTest {
 protected:
  void program(const Seen& seen) {
    set(0x80, seen.features);
    set(0x84, seen.board);
    set(0x83, seen.kind);
  }
};

// Registers with every value that a rule looks at: half of all combinations at both ends of a
// rule's ranges (the other half at the id beside it), some at all other ids of cameras, and few at
// the ends of blocks without any.
class EveryLedState : public LedState {
 protected:
  EveryLedState() {
    plug(0x970);
    plugUsb3(0x9B0, usb3.port());
    machine().wifi = wifi.server();
    machine().workersInline = true;  // quicker, and the traffic is the same
  }

  void forEveryCamera(std::span<const Rule> rules, const std::function<void(const Seen&)>& call) {
    const Ids cameras = "86F-8A0 90F-930 95F-9F0";
    for (int pid = 0; pid < allProductIds; ++pid) {
      if (!cameras.contains(pid) && pid % 16 != 0 && pid % 16 != 15) continue;
      const bool isEdge = std::ranges::any_of(
          rules, [=](const Rule& rule) { return rule.when != always && rule.ids.hasEdgeAt(pid); });
      const int step = isEdge ? 2 : pid >= 0x960 && pid < 0x9F0 ? 13 : 52;
      int turn = pid;
      for (const int features :
           {0xFF, 0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x0A, 0x0B, 0x0E, 0x10, 0x8A}) {
        for (const int board : {255, 5, 0x14, 3}) {
          ++turn;  // with every other board, the kinds change places
          for (const int kind : {3, 4}) {
            if (turn++ % step == 0) call({pid, features, board, kind});
          }
        }
      }
    }
  }

  // What an earlier call may have left agrees with the camera.
  void program(const Seen& seen) {
    LedState::program(seen);
    for (const auto& [reg, value] :
         {std::pair(0x80, seen.features), {0x84, seen.board}, {0x83, seen.kind}}) {
      usb3.camera.controller.set(static_cast<std::uint8_t>(reg), static_cast<std::uint8_t>(value));
      wifi.values[reg] = value;
    }
    name(0, seen.pid);
    nCurrPid = seen.pid;
    ul80 = static_cast<std::uint32_t>(seen.features);
    ul84 = static_cast<std::uint32_t>(seen.board);
    SEGCount[0] = 1;
  }

  WifiRegisters wifi;
  simulator::VirtualBridge usb3{0x9B0};
};

TEST_F(EveryLedState, OfUsbCameras) {
  forEveryCamera(usbRules, [this](const Seen& seen) {
    const bool isUsb3 = seen.pid >= 0x9B0 && seen.pid <= 0x9BF;
    for (const int state : {0, 1, 2, 3}) {
      if (state == 3 && seen.features != 0x01) continue;  // sends nothing anywhere
      if (bridge->chip.segmentMode()) plug(0x970);
      program(seen);
      nTmpIdx = 5;  // whoever was used last
      SetLEDState(0, state);
      const std::string asked = seen.isAskedForKind() ? "128? 131? " : "128? ",
                        begins = seen.isAskedForBoard() ? "p 132? " : "p ";
      EXPECT_EQ(traffic(Reads::shown),
                writtenOut(asked + (isUsb3 ? "" : "b ") + begins + trafficBy(usbRules, seen, state),
                           seen, false))
          << seen << " state " << state;
      EXPECT_EQ(nTmpIdx, 0);
    }
  });
}

TEST_F(EveryLedState, OfWifiCameras) {
  forEveryCamera(wifiRules, [this](const Seen& seen) {
    for (const int state : {0, 1, 2, 3, 7}) {
      program(seen);
      nTmpIdx = 90;
      SetLEDState(90, state);
      const std::string asked = seen.isAskedForKind() ? "128? 131? " : "128? ";
      const std::span<const Rule> rules = std::span(wifiRules).subspan(state > 3 ? 2 : 0);
      EXPECT_EQ(traffic(Reads::shown),
                writtenOut(asked + trafficBy(rules, seen, state), seen, true))
          << seen << " state " << state;
    }
  });
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

// Under index -1 nothing is read from the Wi-Fi camera once the feature word is known.
TEST_F(LedState, WifiCameraUnderItsOtherIndex) {
  plugWifi(0x978);
  program({0x978, 0x01, 0xFF, 4});
  SetLEDState(-1, 1);
  EXPECT_EQ(traffic(Reads::shown), "128? 131? 4=15 3=6");
}

// State 2 of 0x9E0 to 0x9EF reads the registers and then goes by what was known before.
TEST_F(LedState, GoesByKnownRegistersWhereTheRuleSaysSo) {
  plug(0x9E0);
  program({0x9E0, 0x0A, 4});
  SEGCount[0] = 1;
  ul80 = 0;
  SetLEDState(0, 2);
  EXPECT_EQ(traffic(), "p");
  ul80 = 0x0A;
  ul84 = 4;
  program({0x9E0, 0x00, 0});
  SetLEDState(0, 2);
  EXPECT_EQ(traffic(), "p 4=8 p p 3=6 p");
}

TEST_F(LedState, SegmentModeIsEnteredOnce) {
  plug(0x998);
  program({0, 0x01, 5});
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
  program({0, 0x01, 5});
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
