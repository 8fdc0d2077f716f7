// The DLL and the picture properties of USB cameras through the system's own DirectShow.
#include "tests/windows/fixtures/virtual_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

struct Range {
  qvx_long least = 77, most = 77, step = 77, standard = 77;
  bool operator==(const Range&) const = default;
};

Range rangeOf(qvx_long property) {
  Range range;
  EXPECT_EQ(
      GetVideoProcAmpValueRange(&property, &range.least, &range.most, &range.step, &range.standard),
      0);
  return range;
}

TEST(PictureProperties, AreThoseOfTheCurrentCamera) {
  VirtualCameras cameras({"0970", "0870"});
  GetDeviceIDA(0);
  SetVideoDeviceIndex(1);
  SetVideoProcAmp(0, -20);
  SetVideoProcAmp(7, 5000);
  EXPECT_EQ(GetVideoProcAmp(0), -20);
  EXPECT_EQ(GetVideoProcAmp(7), 5000);
  EXPECT_EQ(rangeOf(5), (Range{72, 500, 1, 100}));
  SetVideoDeviceIndex(0);
  EXPECT_EQ(GetVideoProcAmp(0), 0) << "another camera's";
}

TEST(PictureProperties, ThatTheCameraLacksAreMinusOne) {
  VirtualCameras cameras({"0970"});
  GetDeviceIDA(0);
  SetVideoDeviceIndex(0);
  for (const int property : {6, -1, 2147483647}) {
    SetVideoProcAmp(property, 1);
    EXPECT_EQ(GetVideoProcAmp(property), -1) << property;
    EXPECT_EQ(rangeOf(property), (Range{-1, -1, -1, -1})) << property;
  }
}

TEST(PictureProperties, OfCamerasThatAreNotThere) {
  {
    VirtualCameras cameras({"0970"});
    GetDeviceIDA(0);
    SetVideoDeviceIndex(3);
    SetVideoProcAmp(0, 5);
    EXPECT_EQ(GetVideoProcAmp(0), -1);
    EXPECT_EQ(rangeOf(0), Range{});
    SetVideoDeviceIndex(0);
    EXPECT_EQ(GetVideoProcAmp(0), 0) << "untouched";
  }
  testing::internal::CaptureStdout();
  EXPECT_EQ(GetVideoProcAmp(0), 0);
  EXPECT_EQ(rangeOf(0), Range{});
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "No Device Found!\nNo Device Found!\n");
}

TEST(PictureProperties, ASystemMadeNameWithCapitalsIsNeverFound) {
  VirtualCameras cameras({"0970"}, simulator::Naming::system);
  GetDeviceIDA(0);
  SetVideoDeviceIndex(0);
  EXPECT_NE(copyOf(GetDeviceId(0)).find(L"vid_3c7e"), std::wstring::npos);
  EXPECT_EQ(GetVideoProcAmp(0), -1);
}

}  // namespace
}  // namespace qvx::tests
