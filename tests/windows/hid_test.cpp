// The DLL and bridge cameras through the system's own HID stack: simulated devices of a minidriver.
#include <cmath>

#include "tests/windows/fixtures/virtual_cameras.h"
#include "tests/windows/fixtures/virtual_hid.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

TEST(HidCamera, IsFoundAmongForeignDevicesReadAndHeard) {
  const VirtualCameras video({"0970,unit=plain"});  // a camera whose video interface has no unit
  VirtualHid devices({"0970,zoom=40,button=2s", "1234:0001,reports=none", "0970,reports=extra"});
  SetVideoDeviceIndex(0);
  ASSERT_EQ(Init(), 1);
  static int presses = 0;
  SetEventCallback([] { ++presses; });
  EnablePressKey(1);
  pumpMessages(3000);
  EXPECT_NEAR(GetMAG(0), 40, 1.5);
  EXPECT_GE(presses, 1);
  EnablePressKey(0);
  devices.set(0, "zoom=20");
  pumpMessages(3000);
  EXPECT_NEAR(GetMAG(0), 20, 1.0);
  EXPECT_EQ(devices.violations(0), "");
}

// On a busy machine an access may come too late, and what Init read with it is lost: it tries
// again.
bool measures(double magnification) {
  for (int i = 0; i < 3; ++i) {
    if (Init() == 1) pumpMessages(3000);
    if (std::abs(GetMAG(0) - magnification) <= 1) return true;
  }
  return false;
}

TEST(HidCamera, OlderFirmwareIsUnderstood) {
  const VirtualCameras video({"0970,unit=plain"});
  for (const char* camera : {"0970,zoom=30,firmware=wide", "0970,zoom=30,chip=2"}) {
    VirtualHid devices({camera});
    SetVideoDeviceIndex(0);
    EXPECT_TRUE(measures(30)) << camera << ": " << GetMAG(0);
    EXPECT_EQ(devices.violations(0), "") << camera;
  }
}

}  // namespace
}  // namespace qvx::tests
