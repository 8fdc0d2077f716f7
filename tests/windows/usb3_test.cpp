// The DLL and a USB 3 camera through libusbK.dll, here the stand-in beside this program.
#include "tests/windows/support.h"

#include <cstdio>
#include <fstream>

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

  std::string transfers() {
    std::ifstream file(log);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  static constexpr char log[] = "usb3_transfers.log";
};

// It has no video input here: its product id is known by the search in libusbK's list only.
TEST_F(Usb3Camera, IsFoundOpenedAndDescribed) {
  SetVideoDeviceIndex(-1);
  Init();
  EXPECT_EQ(GetVideoDeviceCount(), 1);
  EXPECT_EQ(GetVideoDeviceIndex(), 0);
  EXPECT_NE(transfers().find("80 06 0100 0000 18: 12 01 00 03"), std::string::npos) << transfers();
}

}  // namespace
}  // namespace qvx::tests
