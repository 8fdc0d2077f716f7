// The DLL and a Wi-Fi camera over real HTTP: a simulated camera 0x970 whose ring turns is switched
// on while this runs.
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

TEST(WifiCamera, IsOpenedAndMeasured) {
  SetVideoDeviceIndex(90);
  ASSERT_EQ(Init(), 1);
  EXPECT_EQ(GetVideoDeviceIndex(), 90);
  EXPECT_EQ(copyOf(GetDeviceId(90)), L"");
  // The family of product id 0x970: pixels of 0.2744 * 2592 / 640.
  EXPECT_NEAR(FOVx(90, 1.0), 352000 * 0.2744 * 2592 / 640, 0.01);

  const double first = GetMAG(90);
  EXPECT_GT(first, 1.0);
  EXPECT_EQ(GetMAG(90), first) << "nothing is measured without messages";
  bool changed = false;
  for (int i = 0; i < 8; ++i) {
    pumpMessages(260);
    changed = changed || GetMAG(90) != first;
    EXPECT_GE(GetMAG(90), 0.5);
    EXPECT_LT(GetMAG(90), 210.0);
  }
  EXPECT_TRUE(changed);
}

TEST(WifiCamera, ButtonIsPolledWithoutHarm) {
  static int presses = 0;
  SetEventCallback([] { ++presses; });
  EXPECT_EQ(EnablePressKey(1), 1);
  pumpMessages(600);
  EXPECT_EQ(presses, 0);
  EXPECT_EQ(EnablePressKey(0), 0);
  FireEvent();
  EXPECT_EQ(presses, 1);
}

TEST(WifiCamera, MayBeOpenedAgainAndAgain) {
  for (int i = 0; i < 5; ++i) {
    SetVideoDeviceIndex(90);
    EXPECT_EQ(Init(), 1);
    EXPECT_EQ(GetVideoDeviceIndex(), 90);
  }
}

}  // namespace
}  // namespace qvx::tests
