// The DLL and a USB 3 camera through libusbK.dll, here the stand-in beside this program.
#include <cstdio>
#include <fstream>
#include <iterator>

#include "tests/windows/fixtures/library_copy.h"
#include "tests/windows/fixtures/virtual_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

constexpr char log[] = "usb3_transfers.log";

void expectTransferred(const char* lines) {
  std::ifstream file(log);
  const std::string all{std::istreambuf_iterator<char>(file), {}};
  EXPECT_NE(all.find(lines), std::string::npos) << all;
}

TEST(Usb3Camera, IsFoundOpenedMeasuredAndDriven) {
  // The stand-in reads the environment of the C runtime that it shares with this program.
  std::remove(log);
  _putenv("QVX_VIRTUAL_USB3=0x9B0");
  _putenv((std::string("QVX_VIRTUAL_USB3_LOG=") + log).c_str());
  const VirtualCameras cameras({"09b0,unit=plain"});
  SetVideoDeviceIndex(-1);
  ASSERT_EQ(Init(), 1);
  EXPECT_EQ(GetVideoDeviceCount(), 1);
  EXPECT_EQ(GetVideoDeviceIndex(), 0);
  EXPECT_GE(GetMAG(0), 1.0);
  expectTransferred("80 06 0100 0000 18: 12 01 00 03");
  expectTransferred("21 01 0303 0300 2: 62 80\nA1 81 0303 0300 1: ");
  openCamera(0);  // by index, now that its product id is known

  SetAETarget(0, 250);
  EXPECT_EQ(GetAETarget(0), 208) << "the brightest that the sensor takes";
  SetExposureValue(0, 100);
  expectTransferred("21 01 0300 0300 4: 78 35 01 06\n21 01 0300 0300 4: 78 35 02 40\n");
}

TEST(LibusbK, OfTheApplicationComesBeforeThatOfTheLibrary) {
  constexpr wchar_t name[] = L"libusbK.dll";
  const LibraryCopy copy(L"qvx-beside");
  copy.put(applicationFolder() / name, name);
  copy.function<decltype(SetVideoDeviceIndex)>("SetVideoDeviceIndex")(-1);
  copy.function<decltype(Init)>("Init")();
  EXPECT_TRUE(isLoaded(applicationFolder() / name));
  EXPECT_FALSE(isLoaded(copy.pathOf(name)));
}

}  // namespace
}  // namespace qvx::tests
