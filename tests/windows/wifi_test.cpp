// The DLL and Wi-Fi cameras over real HTTP; the one at port 8080 is a 0x970 with a turning zoom
// ring.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

TEST(WifiCamera, IsOpenedAndMeasured) {
  openCamera(90);
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

// Reads and deletes a file.
std::string taken(const wchar_t* path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  file.close();
  DeleteFileW(path);
  return content;
}

TEST(WifiCamera, StillsComeWholeAndInTheChosenSize) {
  openCamera(90);
  std::size_t last = SIZE_MAX;
  for (const auto& [width, height] : {std::pair{1280, 960}, std::pair{640, 480}}) {
    EXPECT_TRUE(SetWiFiVideoRes(width, height));
    std::ofstream("qvx-still-\u00E4.jpg") << std::string(1 << 20, 'x');  // must be replaced
    EXPECT_TRUE(GetWiFiImage("qvx-still-\xE4.jpg"));
    const std::string still = taken(L"qvx-still-\u00E4.jpg");
    EXPECT_TRUE(still.starts_with("\xFF\xD8"));
    EXPECT_TRUE(still.ends_with("\xFF\xD9"));
    EXPECT_LT(still.size(), last);
    last = still.size();
  }
  EXPECT_FALSE(GetWiFiImage("no-such-folder\\still.jpg"));
}

// With no address the camera is at port 8080.
bool opensCameraAt(const wchar_t* address) {
  SetEnvironmentVariableW(L"QVX64_WIFI_CAMERA", address);
  SetVideoDeviceIndex(90);
  return Init() == 1;
}

// Beside a camera 0x9E0 at port 8081.
TEST(WifiCamera, IsReachedAtItsAddressByOneProcess) {
  const auto fieldOfView = [](const wchar_t* address) {
    return opensCameraAt(address) ? FOVx(90, 1.0) : 0.0;
  };
  const double ofOne = fieldOfView(nullptr), ofOther = fieldOfView(L"127.0.0.1:8081");
  EXPECT_GT(ofOne, 0.0);
  EXPECT_GT(ofOther, 0.0);
  EXPECT_NE(ofOne, ofOther);
  EXPECT_EQ(fieldOfView(L"127.0.0.1:808l"), 0.0);
  EXPECT_EQ(fieldOfView(L"127.0.0.1"), ofOne);
  EXPECT_EQ(fieldOfView(L"127.0.0.1:8081"), ofOther);
}

// With a camera whose answers are faulty or missing.
TEST(StrangeCamera, NeitherHangsNorBreaksTheLibrary) {
  const ULONGLONG start = GetTickCount64();
  opensCameraAt(nullptr);
  pumpMessages(300);
  EXPECT_LT(GetTickCount64() - start, 15000u);
  EXPECT_FALSE(GetMAG(90) < 0.0);
}

}  // namespace
}  // namespace qvx::tests
