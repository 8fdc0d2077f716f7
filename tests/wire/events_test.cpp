// The touch button on every transport: what is asked, and when the callback comes.
#include "api/events.h"

#include "etlib2/etLib2.h"
#include "qvx64/api.h"
#include "simulator/platform/cameras.h"
#include "state/device_state.h"
#include "tests/support/bytes.h"
#include "tests/support/library.h"
#include "transport/usb3.h"

namespace qvx::tests {
namespace {

using simulator::bridgeHidInterface;
using simulator::bridgeInput;
using simulator::VirtualBridge;

int presses = 0;

class Events : public LibraryTest {
 protected:
  Events() {
    presses = 0;
    s_mainhttp = "http://127.0.0.1:8080/";
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

  std::string gpioRead() {
    return "GET http://127.0.0.1:8080/?action=commandcontrol&dest=0plugin=0&id=256&group=4&value=0";
  }

  int pins = 0;
};

TEST_F(WifiButton, LatchingCamerasAreAcknowledged) {
  nCurrPid = 0x970;
  const std::string clear =
      "GET http://127.0.0.1:8080/?action=commandcontrol&dest=0plugin=0&id=1296&group=4&value=0";
  const struct {
    int pins, fired;
  } rows[] = {{0x08, 0}, {0x18, 1}, {0x18, 0}, {0x1F, 0}, {0x10, 0}, {0x18, 1}, {-1, 0}, {0, 0}};
  for (const auto& row : rows) {
    pins = row.pins;
    journal();
    EXPECT_EQ(firedIn(), row.fired) << row.pins;
    const Journal lines = journal();
    EXPECT_EQ(lines[1], gpioRead());
    EXPECT_EQ(std::count(lines.begin(), lines.end(), clear), row.fired);
  }
}

TEST_F(WifiButton, PlainCamerasReadNegativeWhilePressed) {
  for (const int pid : {0x870, 0x9D0, 0x9C0, 0x925}) {
    nCurrPid = pid;
    const struct { int pins, fired; } rows[] = {{-1, 1}, {-128, 0}, {0, 0}, {-5, 1}, {24, 0}};
    for (const auto& row : rows) {
      pins = row.pins;
      EXPECT_EQ(firedIn(), row.fired) << std::hex << pid << " " << row.pins;
    }
  }
  nCurrPid = 0x9A0;
  pins = -1;
  EXPECT_EQ(firedIn(), 0) << "a family without a button";
}

TEST_F(WifiButton, ACameraThatIsGoneCountsAsReleased) {
  nCurrPid = 0x870;
  pins = -1;
  tick();
  machine().wifi = nullptr;
  tick();
  EXPECT_EQ(m_MT, 0);
}

class BridgeButton : public Events {
 protected:
  void plug(VirtualBridge& camera) {
    machine().videoInputs = {bridgeInput(camera)};
    open(camera);
  }
  void plugHid(VirtualBridge& camera) {
    machine().hidInterfaces = {{bridgeHidInterface(camera)}};
    open(camera);
  }

 private:
  void open(VirtualBridge& camera) {
    char path[32];
    std::snprintf(path, sizeof path, "vid_3c7e&pid_%04x", camera.camera.productId());
    strOrvaDevice[0] = path;
    etLib2_Init();
    journal();
  }
};

TEST_F(BridgeButton, FiresWhenTheBitComesOn) {
  for (const int pid : {0x870, 0x925, 0x9D0, 0x9C0, 0x9E1}) {
    VirtualBridge camera(static_cast<std::uint16_t>(pid));
    plug(camera);
    m_MT = 0;
    camera.chip.pressButton();
    EXPECT_EQ(firedIn(), 0) << "pressed since before the first look " << std::hex << pid;
    camera.chip.releaseButton();
    EXPECT_EQ(firedIn(), 0);
    camera.chip.pressButton();
    EXPECT_EQ(firedIn(3), 1) << std::hex << pid;
    camera.chip.releaseButton();
    EXPECT_EQ(firedIn(), 0);
    EXPECT_EQ(complaintsOf(camera.camera), "");
  }
}

TEST_F(BridgeButton, ReadsTheRegisterOfItsFamily) {
  VirtualBridge camera(0x9E1);
  plug(camera);
  tick();
  EXPECT_EQ(journal(), (Journal{"set 5A215226/26: 08 06 01" + zeros(29), "get 5A215226/26 32"}));
  VirtualBridge other(0x870);
  plug(other);
  tick();
  EXPECT_EQ(journal(), (Journal{"set 5A215226/26: 85 00 01" + zeros(29), "get 5A215226/26 32"}));
}

TEST_F(BridgeButton, SevenThousandsAreAskedByCommand) {
  VirtualBridge camera(0x970);
  plug(camera);
  camera.chip.pressButton();
  EXPECT_EQ(firedIn(), 1);
  const Journal lines = journal();
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[2], "set C66D125B/2: F0 F5" + zeros(254));
  EXPECT_EQ(lines[3], "get C66D125B/2 256");
  EXPECT_TRUE(lines[4].starts_with("set C66D125B/2: F0 F5 00 01 "))
      << "acknowledged as it was read";
  EXPECT_EQ(firedIn(), 0) << "the acknowledged press is over";
  camera.chip.releaseButton();
  camera.chip.pressButton();
  EXPECT_EQ(firedIn(), 1);
  EXPECT_EQ(complaintsOf(camera.camera), "");
}

TEST_F(BridgeButton, WorksOverHid) {
  for (const int pid : {0x970, 0x870}) {
    VirtualBridge camera(static_cast<std::uint16_t>(pid));
    machine().videoInputs.clear();
    plugHid(camera);
    m_MT = 0;
    tick();
    camera.chip.pressButton();
    EXPECT_EQ(firedIn(), 1) << std::hex << pid;
    EXPECT_EQ(complaintsOf(camera.camera), "");
  }
}

TEST_F(BridgeButton, ASilentCameraFiresNothing) {
  VirtualBridge camera(0x870);
  plug(camera);
  tick();
  camera.chip.pressButton();
  machine().set({simulator::Fault::fails});
  EXPECT_EQ(firedIn(3), 0);
  VideoDeviceIndex = 5;
  EXPECT_EQ(firedIn(), 0);
}

// A camera that answers one sample after the other.
class Sampled final : public simulator::ControlEndpoint {
 public:
  std::vector<int> samples;  // below 0: no answer

  std::optional<std::size_t> transfer(const simulator::UsbSetup& setup,
                                      std::span<std::uint8_t> buffer) override {
    if (setup.value != 0x0201 || setup.request != 0x81) return buffer.size();
    const int sample = samples.empty() ? -1 : samples.front();
    if (!samples.empty()) samples.erase(samples.begin());
    if (sample < 0) return std::nullopt;
    buffer[0] = static_cast<std::uint8_t>(sample);
    return 1;
  }
};

class Usb3Button : public Events {
 protected:
  Usb3Button() {
    machine().usbDevices = {{cameraVendorId, 0x9B0, "A", "", "", {}, true, button}};
    nPid = 0x9B0;
    testing::internal::CaptureStdout();
    U3Open();
    testing::internal::GetCapturedStdout();
    strOrvaDevice[0] = "vid_3c7e&pid_09b1";  // its feature register is not read over USB 3
    journal();
  }

  // The tick, counted from 1, at which the callback comes; 0 for none.
  int firesAt(std::vector<int> samples) {
    timer_2_proc::barry = -1;
    button->samples = samples;
    EnablePressKey(1);
    int fired = 0;
    for (int i = 1; i <= static_cast<int>(samples.size()); ++i) {
      if (firedIn() != 0) fired = i;
    }
    return fired;
  }

  std::shared_ptr<Sampled> button = std::make_shared<Sampled>();
};

TEST_F(Usb3Button, OpeningSwitchesPollingOff) {
  tick();
  EXPECT_EQ(journal(), Journal{});
}

TEST_F(Usb3Button, DebouncesThreeSamples) {
  EXPECT_EQ(firesAt({1, 1, 1}), 3);
  EXPECT_EQ(firesAt({1, 0, 1, 1}), 4);
  EXPECT_EQ(firesAt({0, 1, 1}), 3);
  EXPECT_EQ(firesAt({0, 0, 0, 0}), 0);
  EXPECT_EQ(firesAt({-1, 1, -1, 1, 2, 1}), 6);
  EXPECT_EQ(firesAt({1, 1, 1, 1, 1, 1}), 6) << "and once more after three further samples";
}

TEST_F(Usb3Button, SendsTheseRequests) {
  const Journal sample = {"usb 21 01 0201 0300 1: 13", "usb A1 81 0201 0300 1"};
  EXPECT_EQ(firesAt({1, 1, 1}), 3);
  EXPECT_EQ(journal(), sample + Journal{"usb 21 01 0200 0300 1: 13 00"} + sample + sample +
                           Journal{"usb 21 01 0200 0300 2: 13 00"});
}

}  // namespace
}  // namespace qvx::tests
