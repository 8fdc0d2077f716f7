// The DLL and the picture properties of USB cameras through the system's DirectShow.
#include <array>

#include "tests/windows/fixtures/simulated_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

using Range = std::array<qvx_long, 4>;
constexpr Range none = {-1, -1, -1, -1}, leftAlone = {77, 77, 77, 77};

Range rangeOf(qvx_long property) {
  auto [min, max, step, defaultValue] = leftAlone;
  EXPECT_EQ(GetVideoProcAmpValueRange(&property, &min, &max, &step, &defaultValue), 0);
  return {min, max, step, defaultValue};
}

TEST(PictureProperties, AreThoseOfTheCurrentCamera) {
  SimulatedCameras cameras({"usb:0970", "usb:0870"});
  GetDeviceIDA(0);
  SetVideoDeviceIndex(1);
  SetVideoProcAmp(0, -20);
  SetVideoProcAmp(7, 5000);
  EXPECT_EQ(GetVideoProcAmp(0), -20);
  EXPECT_EQ(GetVideoProcAmp(7), 5000);
  EXPECT_EQ(rangeOf(5), (Range{72, 500, 1, 100}));
  EXPECT_EQ(GetVideoProcAmp(6), -1) << "the camera lacks it";
  EXPECT_EQ(rangeOf(6), none);
  SetVideoDeviceIndex(0);
  EXPECT_EQ(GetVideoProcAmp(0), 0) << "another camera's";
  SetVideoDeviceIndex(3);
  SetVideoProcAmp(0, 5);
  EXPECT_EQ(GetVideoProcAmp(0), -1) << "no camera's";
  EXPECT_EQ(rangeOf(0), leftAlone);
}

TEST(PictureProperties, WithoutAnyCamera) {
  SetVideoDeviceIndex(0);
  testing::internal::CaptureStdout();
  EXPECT_EQ(GetVideoProcAmp(0), 0);
  EXPECT_EQ(rangeOf(0), leftAlone);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "No Device Found!\nNo Device Found!\n");
}

}  // namespace
}  // namespace qvx::tests
