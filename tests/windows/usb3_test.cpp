// The DLL and a USB 3 camera through libusbK.dll, here the stand-in beside this program.
#include <cstdio>
#include <fstream>

#include "tests/windows/fixtures/virtual_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

class Usb3Camera : public testing::Test {
 protected:
  // The stand-in reads the environment of the C runtime that it shares with this program.
  static void SetUpTestSuite() {
    std::remove(log);
    _putenv("QVX_VIRTUAL_USB3=0x9B0");
    _putenv((std::string("QVX_VIRTUAL_USB3_LOG=") + log).c_str());
  }

  static std::string transfers() {
    std::ifstream file(log);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  static constexpr char log[] = "usb3_transfers.log";
};

TEST_F(Usb3Camera, IsFoundOpenedAndMeasured) {
  const VirtualCameras cameras({"09b0,unit=plain"});
  SetVideoDeviceIndex(-1);
  ASSERT_EQ(Init(), 1);
  EXPECT_EQ(GetVideoDeviceCount(), 1);
  EXPECT_EQ(GetVideoDeviceIndex(), 0);
  EXPECT_GE(GetMAG(0), 1.0);
  const std::string seen = transfers();
  EXPECT_NE(seen.find("80 06 0100 0000 18: 12 01 00 03"), std::string::npos) << seen;
  EXPECT_NE(seen.find("21 01 0303 0300 2: 62 80\nA1 81 0303 0300 1: "), std::string::npos) << seen;
  SetVideoDeviceIndex(0);
  EXPECT_EQ(Init(), 1) << "by index, now that its product id is known";
}

TEST_F(Usb3Camera, SensorAndLensAreDriven) {
  const VirtualCameras cameras({"09b0,unit=plain"});
  SetVideoDeviceIndex(-1);
  ASSERT_EQ(Init(), 1);
  SetAETarget(0, 250);
  EXPECT_EQ(GetAETarget(0), 208) << "the brightest that the sensor takes";
  SetExposureValue(0, 100);
  SetAutoExposure(0, 0);
  EXPECT_EQ(GetAutoExposure(0), 0);
  SetLensPos(0, -5);
  const std::string seen = transfers();
  EXPECT_NE(seen.find("21 01 0300 0300 4: 78 35 01 06\n21 01 0300 0300 4: 78 35 02 40\n"),
            std::string::npos)
      << seen;
  EXPECT_TRUE(seen.ends_with("3: 62 08 02\n21 01 0302 0300 3: 18 06 91\n")) << seen;
}

}  // namespace
}  // namespace qvx::tests
