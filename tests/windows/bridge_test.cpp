// The DLL and bridge cameras through the system's DirectShow and kernel streaming; the simulated
// cameras are registered as video inputs.
#include "tests/windows/fixtures/simulated_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

TEST(BridgeCamera, IsFoundReadHeardAndUnplugged) {
  constexpr ULONGLONG buttonPeriod_ms = 2000;
  const ULONGLONG begin_ms = GetTickCount64();
  SimulatedCameras cameras({"usb:0970,zoom=63,button=2s", "usb3:09b0", "usb:0870"});
  openCamera(0);
  EXPECT_NE(copyOf(GetDeviceId(0)).find(L"vid_3c7e&pid_0970"), std::wstring::npos);
  EXPECT_NE(copyOf(GetDeviceId(1)).find(L"pid_0870"), std::wstring::npos) << "USB 3 comes last";
  EXPECT_NE(copyOf(GetDeviceId(2)).find(L"pid_09b0"), std::wstring::npos);
  EXPECT_EQ(copyOf(GetDeviceId(3)), L"");

  static unsigned presses = 0;
  SetEventCallback([] { ++presses; });
  EnablePressKey(1);
  EXPECT_TRUE(measures(0, 63)) << GetMAG(0);
  cameras[0].with([](auto& device) { device.camera.setZoom({20, 20, 0}); });
  EXPECT_TRUE(measures(0, 20)) << GetMAG(0);
  EXPECT_TRUE(eventually(12'000, [] { return presses >= 3; }));
  EXPECT_LE(presses, (GetTickCount64() - begin_ms) / buttonPeriod_ms) << "one press told twice";
  EXPECT_TRUE(measures(0, 20)) << GetMAG(0) << " as the mean of a whole window";
  EXPECT_EQ(cameras.violations(0), "");

  cameras.unplug();
  pumpMessages(600);
  EXPECT_GE(GetMAG(0), 0.5);
  EnablePressKey(0);
  SetVideoDeviceIndex(0);
  EXPECT_EQ(Init(), 0);
}

}  // namespace
}  // namespace qvx::tests
