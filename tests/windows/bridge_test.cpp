// The DLL and bridge cameras through the system's own DirectShow and kernel streaming: simulated
// cameras registered as video inputs.
#include "tests/windows/fixtures/virtual_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

int presses = 0;

class BridgeCamera : public testing::Test {
 protected:
  static void openCamera(int index) {
    SetVideoDeviceIndex(index);
    ASSERT_EQ(Init(), 1);
    ASSERT_EQ(GetVideoDeviceIndex(), index);
  }

  // The magnification once the first window of samples is full.
  static double settledMagnification(int index) {
    pumpMessages(3000);
    return GetMAG(index);
  }
};

TEST_F(BridgeCamera, IsFoundReadAndHeard) {
  VirtualCameras cameras({"0970,zoom=63", "9b0,unit=plain", "0870,zoom=40"});
  openCamera(0);
  EXPECT_NE(copyOf(GetDeviceId(0)).find(L"vid_3c7e&pid_0970"), std::wstring::npos);
  EXPECT_NE(copyOf(GetDeviceId(1)).find(L"pid_0870"), std::wstring::npos) << "USB 3 comes last";
  EXPECT_NE(copyOf(GetDeviceId(2)).find(L"pid_09b0"), std::wstring::npos);
  EXPECT_EQ(copyOf(GetDeviceId(3)), L"");
  EXPECT_NEAR(settledMagnification(0), 63, 1.5);

  presses = 0;
  SetEventCallback([] { ++presses; });
  EnablePressKey(1);
  pumpMessages(600);
  cameras.holdButton(0, true);
  pumpMessages(1000);
  EXPECT_EQ(presses, 1);
  cameras.holdButton(0, false);
  cameras.set(0, "zoom=20");
  EXPECT_NEAR(settledMagnification(0), 20, 1.0);
  EXPECT_EQ(cameras.violations(0), "");
  EnablePressKey(0);
}

TEST_F(BridgeCamera, OlderFirmwareIsUnderstood) {
  VirtualCameras cameras({"0970,zoom=63,firmware=wide", "0970,zoom=30,firmware=narrow"});
  for (int index = 0; index < 2; ++index) {
    openCamera(index);
    EXPECT_NEAR(settledMagnification(index), index == 0 ? 63 : 30, 1.5) << index;
    EXPECT_EQ(cameras.violations(static_cast<std::size_t>(index)), "");
  }
}

TEST_F(BridgeCamera, SensorLensAndLightsAreDriven) {
  VirtualCameras cameras({"0998,zoom=63"});
  openCamera(0);
  SetExposureValue(0, 700);
  EXPECT_EQ(GetExposureValue(0), 700);
  SetAETarget(0, 90);
  EXPECT_EQ(GetAETarget(0), 90);
  SetAutoExposure(0, 0);
  EXPECT_EQ(GetAutoExposure(0), 0);
  SetAutoExposure(0, 1);
  EXPECT_EQ(GetAutoExposure(0), 1);
  SetFlicker(0, 2);

  qvx_long upper = 0, lower = 0;
  EXPECT_EQ(GetLensPosLimits(0, &upper, &lower), 1);
  EXPECT_EQ(upper, 71);
  EXPECT_EQ(lower, -27);
  SetLensPos(0, 20);

  EXPECT_EQ(GetConfig(0) & 0x42, 0x42);
  SetSEGLevel(0, 0x15);
  EXPECT_EQ(cameras.controllerRegister(0, 3), 0x15u);
  SetLEDState(0, 0);
  EXPECT_EQ(cameras.controllerRegister(0, 3), 7u);
  EXPECT_EQ(cameras.violations(0), "");
}

TEST_F(BridgeCamera, ThatIsUnpluggedLeavesTheLibraryUsable) {
  {
    VirtualCameras cameras({"0970,zoom=63"});
    openCamera(0);
    cameras.unplug();
    pumpMessages(600);
    EXPECT_GE(GetMAG(0), 0.5);
  }
  SetVideoDeviceIndex(0);
  EXPECT_EQ(Init(), 0);
  VirtualCameras cameras({"0970,zoom=63"});
  openCamera(0);
}

TEST_F(BridgeCamera, ThatRefusesEverythingCostsNoMoreThanItsLimits) {
  VirtualCameras cameras({"0970,zoom=63,fault=refuse"});
  SetVideoDeviceIndex(0);
  const ULONGLONG start = GetTickCount64();
  Init();
  EXPECT_LT(GetTickCount64() - start, 60000u);
}

}  // namespace
}  // namespace qvx::tests
