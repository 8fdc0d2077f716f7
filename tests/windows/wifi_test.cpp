// The DLL and a Wi-Fi camera over real HTTP: a simulated camera 0x970 whose ring turns is switched
// on while this runs.
#include <filesystem>
#include <fstream>
#include <iterator>

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

TEST(WifiCamera, SensorAndLightsAreDriven) {
  SetVideoDeviceIndex(90);
  ASSERT_EQ(Init(), 1);
  SetExposureValue(90, 700);
  EXPECT_EQ(GetExposureValue(90), 700);
  SetAETarget(90, 90);
  EXPECT_EQ(GetAETarget(90), 90);
  SetAutoExposure(90, 0);
  EXPECT_EQ(GetAutoExposure(90), 0);
  SetAutoExposure(-1, 1);
  EXPECT_EQ(GetAutoExposure(90), 1);
  EXPECT_EQ(GetConfig(90) & 0x46, 0x46);
  for (const int state : {0, 2, 1}) SetLEDState(90, state);
}

TEST(WifiCamera, PicturePropertiesAreSetAndRead) {
  SetVideoDeviceIndex(90);
  SetVideoProcAmp(5, 180);
  EXPECT_EQ(GetVideoProcAmp(5), 180);
  SetVideoProcAmp(5, 100);
  qvx_long property = 0, least = 0, most = 0, step = 0, standard = 77;
  EXPECT_EQ(GetVideoProcAmpValueRange(&property, &least, &most, &step, &standard), 0);
  EXPECT_EQ(least, -64);
  EXPECT_EQ(most, 64);
  EXPECT_EQ(step, 1);
  EXPECT_EQ(standard, 0);
}

// The file's content, after which the file is gone.
std::string taken(const wchar_t* path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  file.close();
  DeleteFileW(path);
  return content;
}

TEST(WifiCamera, StillsComeWholeAndInTheChosenSize) {
  SetVideoDeviceIndex(90);
  ASSERT_EQ(Init(), 1);
  qvx_long count = 0;
  short widths[5] = {}, heights[5] = {};
  ASSERT_TRUE(GetWiFiVideoCaps(&count, widths, heights));
  ASSERT_EQ(count, 5);
  std::size_t last = 0;
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(SetWiFiVideoRes(widths[i], heights[i]));
    EXPECT_TRUE(GetWiFiImage("qvx-still-\xE4.jpg"));
    const std::string still = taken(L"qvx-still-\u00E4.jpg");
    EXPECT_TRUE(still.starts_with("\xFF\xD8"));
    EXPECT_TRUE(still.ends_with("\xFF\xD9"));
    EXPECT_GT(still.size(), last);
    last = still.size();
  }
  EXPECT_FALSE(GetWiFiImage("no-such-folder\\still.jpg"));
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
