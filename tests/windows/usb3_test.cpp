// The DLL and a USB 3 camera through libusbK.dll, here the stand-in beside the test program.
#include "tests/windows/fixtures/library_copy.h"
#include "tests/windows/fixtures/simulated_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

TEST(Usb3Camera, IsFoundOpenedMeasuredAndDriven) {
  SimulatedCameras cameras({"usb3:09b0"});
  const auto expectTransferred = [&cameras](const char* lines) {
    EXPECT_NE(cameras.accesses(0).find(lines), std::string::npos) << cameras.accesses(0);
  };
  SetVideoDeviceIndex(-1);
  ASSERT_EQ(Init(), 1);
  EXPECT_EQ(GetVideoDeviceCount(), 1);
  EXPECT_EQ(GetVideoDeviceIndex(), 0);
  EXPECT_GE(GetMAG(0), 1.0);
  expectTransferred("control 80 06 0100 0000 18: 12 01 00 03");
  expectTransferred("control 21 01 0303 0300 2: 62 80\ncontrol A1 81 0303 0300 1: ");
  openCamera(0);  // by index, now that its product id is known
  EXPECT_EQ(cameras.violations(0), "");
}

TEST_F(LibusbK, OfTheApplicationComesBeforeThatOfTheLibrary) {
  inChild([this] {
    const auto ofTheApplication = applicationFolder() / usbLibrary;
    const LibraryCopy copy(copies / L"beside");
    copy.put(ofTheApplication);
    copy.openUsb3();
    EXPECT_TRUE(isLoaded(ofTheApplication));
    EXPECT_FALSE(copy.usesOwnUsbLibrary());
  });
}

}  // namespace
}  // namespace qvx::tests
