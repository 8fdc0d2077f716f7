// The DLL and bridge cameras through the system's own HID stack: simulated devices of a minidriver.
#include "tests/windows/fixtures/virtual_cameras.h"
#include "tests/windows/fixtures/virtual_hid.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

TEST(HidCamera, IsFoundAmongForeignDevicesReadAndHeard) {
  const VirtualCameras video({"0970,unit=plain"});  // a camera whose video interface has no unit
  VirtualHid devices({"0970,zoom=40,button=2s", "1234:0001,reports=none", "0970,reports=extra"});
  openCamera(0);
  static int presses = 0;
  SetEventCallback([] { ++presses; });
  EnablePressKey(1);
  EXPECT_TRUE(measures(0, 40)) << GetMAG(0);
  EXPECT_GE(presses, 1);
  EnablePressKey(0);
  devices.set(0, "zoom=20");
  EXPECT_TRUE(measures(0, 20)) << GetMAG(0);
  EXPECT_EQ(devices.violations(0), "");
}

TEST(HidCamera, OlderFirmwareIsUnderstood) {
  const VirtualCameras video({"0970,unit=plain"});
  for (const char* camera : {"0970,zoom=30,firmware=wide", "0970,zoom=30,chip=2"}) {
    VirtualHid devices({camera});
    openCamera(0);
    EXPECT_TRUE(measures(0, 30)) << camera << ": " << GetMAG(0);
    EXPECT_EQ(devices.violations(0), "") << camera;
  }
}

}  // namespace
}  // namespace qvx::tests
