// Weeks of use in seconds: memory stays as it is, and nothing is left open but what is documented.
// With QVX_EFFORT=10, 1,000,000 ticks of the two timers and 100,000 calls of Init.
#include <gtest/gtest.h>

#include <random>

#include "tests/support/effort.h"
#include "tests/torture/memory.h"
#include "tests/torture/rig.h"

namespace qvx::tests {
namespace {

using simulator::Clock;
using simulator::Fault;
using simulator::OpenCounts;

constexpr std::uint64_t maxGrowth_bytes = 16 * 1024;

class Soak : public testing::TestWithParam<int> {
 protected:
  Soak() : rig(everyPath()[static_cast<std::size_t>(GetParam())]) {
    rig.machine().objectsKept = 16;
  }

  void expectFlat(std::uint64_t before_bytes) {
    EXPECT_LE(bytesAllocated(), before_bytes + maxGrowth_bytes);
  }

  Rig rig;
};

// Ticks of the two timers: a press of the button every two seconds, and the zoom ring never at
// rest.
class SoakTicks : public Soak {
 protected:
  void press(int times) {
    for (int tick = 0; tick < times * ticksPerPress; ++tick) {
      if (tick % ticksPerPress == 0) rig.pressButton(true);
      if (tick % ticksPerPress == 3) rig.pressButton(false);
      rig.call(everyCall().back());
    }
  }

  static constexpr int ticksPerPress = 8;
};

TEST_P(SoakTicks, KeepNothing) {
  const int presses = effort() * 12'500 / ticksPerPress;
  ASSERT_EQ(rig.init(), "1");
  rig.setZoom({1, 190, 7000});
  press(100);  // whatever is set up once
  const std::uint64_t before_bytes = bytesAllocated(), requests = rig.machine().operations();
  OpenCounts expected = rig.machine().open;
  Rig::pressesTold = 0;
  press(presses);
  expectFlat(before_bytes);
  EXPECT_EQ(Rig::pressesTold, presses);
  if (GetParam() == 0) {
    // Over Wi-Fi each request and its session stay open.
    const auto made = static_cast<int>(rig.machine().operations() - requests);
    expected.internetSessions += made;
    expected.internetRequests += made;
  }
  EXPECT_EQ(rig.machine().open, expected);
  EXPECT_GT(std::stod(rig.call(exportNamed("GetMAG"))), 1.0);
}

// Calls of Init, each on a camera just plugged in; one in ten with things going wrong, and with
// some other calls after it.
class SoakInit : public Soak {
 protected:
  std::size_t dice(std::size_t sides) { return generator_() % sides; }

  void initSomewhere() {
    const Path& path = everyPath()[dice(everyPath().size())];
    rig.change(path);
    rig.machine().timers.clear();  // every Init that measures adds one
    rig.choose();
    if (dice(10) == 0) {
      initInTrouble();
    } else {
      initInOrder(path);
    }
  }

  // What stays open besides the transport, which closes the one before.
  OpenCounts left() {
    OpenCounts left = rig.machine().open;
    left.comInitializations -= left.mutexHandles;
    left.filters = left.hidDevices = left.mutexHandles = 0;
    return left;
  }

  void initInOrder(const Path& path) {
    OpenCounts expected = left();
    const std::uint64_t before = rig.machine().operations();
    EXPECT_EQ(rig.call(exportNamed("Init")), "1");
    const auto requests = static_cast<int>(rig.machine().operations() - before);
    if (path.kind == Path::wifi) {
      // The probe leaves its request, the device list nothing, every read a session and a request.
      expected.internetSessions += requests - 2;
      expected.internetRequests += requests - 1;
    } else if (path.kind == Path::usb3) {
      ++expected.deviceLists;
      ++expected.usbHandles;
      expected.comInitializations += 2;  // the cameras are listed twice
    } else {
      ++expected.comInitializations;
    }
    EXPECT_EQ(left(), expected);
    EXPECT_EQ(rig.machine().open.filters, path.kind == Path::unit ? 1 : 0);
    EXPECT_EQ(rig.machine().open.hidDevices, path.kind == Path::hid ? 1 : 0);
    EXPECT_EQ(rig.machine().open.mutexHandles, path.overBridge() ? 1 : 0);
  }

  void initInTrouble() {
    const auto kind = dice(2) == 0 ? Fault::unplugs : Fault::fails;
    rig.machine().set(
        {kind, 1 + dice(200), Clock::forever, 0, {}, 1 + static_cast<unsigned>(dice(20))});
    rig.call(exportNamed("Init"));
    for (int i = 0; i < 5; ++i) rig.call(everyCall()[dice(everyCall().size())]);
    rig.machine().set({});
    EXPECT_LE(rig.machine().open.filters + rig.machine().open.hidDevices, 1);
    EXPECT_LE(rig.machine().open.mutexHandles, 1);
  }

 private:
  std::mt19937 generator_{static_cast<unsigned>(GetParam())};
};

TEST_P(SoakInit, LeavesWhatIsDocumented) {
  const int calls = effort() * 2'500;
  for (int i = 0; i < 500; ++i) initSomewhere();  // whatever is set up once
  const std::uint64_t before_bytes = bytesAllocated();
  for (int i = 0; i < calls && !HasFailure(); ++i) initSomewhere();
  expectFlat(before_bytes);
}

INSTANTIATE_TEST_SUITE_P(Path, SoakTicks, testing::Values(0, 2, 4, 6));
INSTANTIATE_TEST_SUITE_P(Dice, SoakInit, testing::Range(0, 4));

}  // namespace
}  // namespace qvx::tests
