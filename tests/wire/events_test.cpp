// The touch button on every transport: what is read from the camera, and when the callback runs.
#include "api/events.h"

#include "qvx64/api.h"
#include "tests/support/cameras.h"

namespace qvx::tests {
namespace {

int presses = 0;

class Events : public CameraTest {
 protected:
  Events() {
    presses = 0;
    SetEventCallback([] { ++presses; });
    EnablePressKey(1);
    journal();
  }

  void tick(int ticks = 1) { machine().pumpMessages(static_cast<std::uint64_t>(250 * ticks)); }

  // How often the callback came in one tick.
  int firedIn(int ticks = 1) {
    const int before = presses;
    tick(ticks);
    return presses - before;
  }
};

TEST_F(Events, PollsOnlyWhenEnabledExactly) {
  VideoDeviceIndex = 90;
  for (const int value : {0, 2, -1}) {
    EXPECT_EQ(EnablePressKey(value), 0);
    nCurrPid = 0x970 + value;
    tick();
    EXPECT_EQ(journal(), Journal{}) << value;
    EXPECT_EQ(nPid, nCurrPid) << "the product id is refreshed all the same";
  }
  EXPECT_EQ(EnablePressKey(1), 1);
  FireEvent();
  EXPECT_EQ(presses, 1);
  SetEventCallback(nullptr);
  FireEvent();
  EXPECT_EQ(presses, 1);
  EXPECT_EQ(machine().timers.size(), 2u) << "each call starts a timer";
}

class WifiButton : public Events {
 protected:
  WifiButton() {
    VideoDeviceIndex = nTmpIdx = 90;
    machine().wifi = [this](const std::string& url) -> simulator::HttpAnswer {
      if (url.find("id=256&group=4") == std::string::npos) return {true, {"res:0"}};
      return {true, {"res:" + std::to_string(pins)}};
    };
  }

  int pins = 0;
};

TEST_F(WifiButton, LatchingCamerasAreAcknowledged) {
  nCurrPid = 0x970;
  const std::string gpio = cameraUrl + "?action=commandcontrol&dest=0plugin=0&id=";
  const Journal looks = {"pause 10", "GET " + gpio + "256&group=4&value=0"};
  const Journal acknowledges = {"pause 10", "GET " + gpio + "1296&group=4&value=0"};
  const std::pair<int, int> rows[] = {{0x08, 0}, {0x18, 1}, {0x18, 0}, {0x1F, 0},
                                      {0x10, 0}, {0x18, 1}, {-1, 0},   {0, 0}};
  for (const auto& [read, fired] : rows) {
    pins = read;
    EXPECT_EQ(firedIn(), fired) << read;
    Journal lines = journal();
    lines.resize(fired == 0 ? 2 : 4);  // what other families look at comes after it
    EXPECT_EQ(lines, fired == 0 ? looks : looks + acknowledges) << read;
  }
}

TEST_F(WifiButton, PlainCamerasReadNegativeWhilePressed) {
  for (const int pid : {0x870, 0x9D0, 0x9C0, 0x925, 0x9A0}) {
    nCurrPid = pid;
    for (const auto& [read, fired] : {std::pair(-1, 1), {-128, 0}, {0, 0}, {-5, 1}, {24, 0}}) {
      pins = read;
      EXPECT_EQ(firedIn(), pid == 0x9A0 ? 0 : fired) << std::hex << pid << " " << read;
    }
  }
}

using BridgeButton = Events;

TEST_F(BridgeButton, FiresWhenTheBitComesOn) {
  for (const int pid : {0x870, 0x925, 0x9D0, 0x9C0, 0x9E1}) {
    plug(pid);
    m_MT = 0;
    tick();
    EXPECT_EQ(traffic().substr(0, 7), pid == 0x9E1 ? "r0608.1" : "r0085.1");
    bridge->chip.touch(true);
    EXPECT_EQ(firedIn(3), 1) << std::hex << pid;
    bridge->chip.touch(false);
    EXPECT_EQ(firedIn(), 0);
  }
  plug(0x870);
  m_MT = 0;
  bridge->chip.touch(true);
  EXPECT_EQ(firedIn(), 0) << "pressed since before the first look";
}

TEST_F(BridgeButton, SevenThousandsAreAskedByCommand) {
  plug(0x970);
  bridge->chip.touch(true);
  EXPECT_EQ(firedIn(), 1);
  EXPECT_TRUE(traffic().starts_with("r0085.1 cmdF0:F5 cmdF0:F50001"))
      << "acknowledged as it was read";
  EXPECT_EQ(firedIn(), 0) << "the acknowledged press is over";
  bridge->chip.touch(false);
  bridge->chip.touch(true);
  EXPECT_EQ(firedIn(), 1);
  plugScripted({{0xF4, 0, 1}});
  EXPECT_EQ(firedIn(), 1) << "also of firmware that answers otherwise";
  EXPECT_TRUE(traffic().starts_with("r0085.1 cmdF0:F5 cmdF0:F50001"));
}

TEST_F(BridgeButton, ASilentCameraFiresNothing) {
  plug(0x870);
  tick();
  bridge->chip.touch(true);
  machine().set({simulator::Fault::fails});
  EXPECT_EQ(firedIn(3), 0);
  VideoDeviceIndex = 5;
  EXPECT_EQ(firedIn(), 0);
}

class Usb3Button : public Events {
 protected:
  Usb3Button() {
    plugUsb3(0x9B0, button);
    name(0, 0x9B1);  // its feature register is not read over USB 3
  }

  // The tick, counted from 1, at which the callback comes; 0 for none. A sample below 0 is not
  // answered.
  int firesAt(const std::vector<int>& samples) {
    timer_2_proc::barry = -1;
    button->replies.clear();
    for (const int sample : samples) {
      button->replies.emplace_back(sample < 0 ? 0 : 1, static_cast<std::uint8_t>(sample));
    }
    EnablePressKey(1);
    int fired = 0;
    for (int i = 1; i <= std::ssize(samples); ++i) fired = firedIn() != 0 ? i : fired;
    return fired;
  }

  std::shared_ptr<ScriptedPort> button = std::make_shared<ScriptedPort>();
};

TEST_F(Usb3Button, DebouncesThreeSamples) {
  const Rows<std::vector<int>, int> rows = {
      {{1, 1, 1}, 3},    {{1, 0, 1, 1}, 4},         {{1, 1, 0, 1}, 4},      {{0, 1, 1}, 3},
      {{0, 0, 0, 0}, 0}, {{-1, 1, -1, 1, 2, 1}, 6}, {{1, 1, 1, 1, 1, 1}, 6}};
  for (const auto& [samples, tick] : rows) {
    EXPECT_EQ(firesAt(samples), tick) << testing::PrintToString(samples);
  }
}

TEST_F(Usb3Button, SendsTheseRequests) {
  const Journal sample = {"usb 21 01 0201 0300 1: 13", "usb A1 81 0201 0300 1"};
  EXPECT_EQ(firesAt({1, 1, 1}), 3);
  EXPECT_EQ(journal(), sample + Journal{"usb 21 01 0200 0300 1: 13 00"} + sample + sample +
                           Journal{"usb 21 01 0200 0300 2: 13 00"});
}

}  // namespace
}  // namespace qvx::tests
