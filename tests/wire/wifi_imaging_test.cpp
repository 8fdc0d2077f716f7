// Stills of the Wi-Fi camera and its video modes.
#include "qvx64/api.h"
#include "tests/support/cameras.h"
#include "tests/support/every_export.h"

namespace qvx::tests {
namespace {

using simulator::HttpAnswer;

class WifiImage : public CameraTest {
 protected:
  void answer(std::vector<std::string> chunks, bool breaksOff = false) {
    machine().wifi = [=](const std::string&) { return HttpAnswer{true, chunks, breaksOff}; };
  }
  std::string saved(const std::wstring& path = L"still.jpg") { return machine().files.at(path); }
};

TEST_F(WifiImage, IsSavedAsItComes) {
  answer({"\xFF\xD8 first ", std::string("\0second", 7)});
  machine().files[L"still.jpg"] = "of yesterday, and longer than the new one";
  EXPECT_TRUE(GetWiFiImage("still.jpg"));
  EXPECT_EQ(saved(), "\xFF\xD8 first " + std::string("\0second", 7));
  EXPECT_EQ(journal(), (Journal{"session past proxies", "GET " + cameraUrl + "?action=snapshot"}));
  EXPECT_EQ(machine().open, simulator::OpenCounts{});
}

TEST_F(WifiImage, OfAnySizeIsCopied) {
  for (const std::size_t size : {1u, 1999u, 2000u, 2001u, 4000u, 50'000'000u}) {
    answer({std::string(size, 'j')});
    EXPECT_TRUE(GetWiFiImage("still.jpg"));
    EXPECT_EQ(saved().size(), size);
  }
}

TEST_F(WifiImage, CutByTheCameraOrTheDiskIsNotTold) {
  for (const std::size_t size : {3000u, 0u}) {
    answer(std::vector<std::string>(size / 3000, std::string(size, 'j')), true);
    EXPECT_TRUE(GetWiFiImage("still.jpg"));
    EXPECT_EQ(saved().size(), size);
  }
  machine().diskRoom = 2500;
  answer({std::string(9000, 'j')});
  EXPECT_TRUE(GetWiFiImage("still.jpg"));
  EXPECT_EQ(saved().size(), 2500u);
  EXPECT_EQ(machine().open, simulator::OpenCounts{});
}

TEST_F(WifiImage, WithoutACameraIsTrueAndNoFile) {
  EXPECT_TRUE(GetWiFiImage("still.jpg"));
  EXPECT_TRUE(machine().files.empty());
  EXPECT_EQ(machine().open.internetSessions, 1) << "stays open";
  EXPECT_EQ(machine().open.internetRequests, 0);
}

TEST_F(WifiImage, IsFalseWhereNoFileCanBe) {
  answer({"picture"});
  for (const char* const path : {"missing\\still.jpg", "", static_cast<const char*>(nullptr)}) {
    EXPECT_FALSE(GetWiFiImage(path));
  }
  EXPECT_TRUE(machine().files.empty());
  EXPECT_EQ(machine().open, simulator::OpenCounts{});
}

TEST_F(WifiImage, TakesTheNameByteByByteUpToItsEnd) {
  answer({"picture"});
  machine().folders.insert(L"C:\\Bilder");
  EXPECT_TRUE(
      GetWiFiImage("C:\\Bilder\\gr\xFC\xDF"
                   "e.jpg"));
  EXPECT_EQ(saved(L"C:\\Bilder\\gr\u00FC\u00DFe.jpg"), "picture");
  // Exactly as long as the name: a look past its end would be noticed.
  const std::vector<char> unterminated(256, 'n');
  EXPECT_TRUE(GetWiFiImage(unterminated.data()));
  EXPECT_EQ(saved(std::wstring(256, L'n')), "picture");
  std::vector<char> exact = {'a', '\0'};
  EXPECT_TRUE(GetWiFiImage(exact.data()));
  EXPECT_EQ(saved(L"a"), "picture");
}

struct Mode {
  int width, height;
  const char* command;
};

// The tables that cameras are sold with, by one product id of each end of a family.
const struct {
  std::vector<int> pids;
  const char* listed;
  std::vector<Mode> modes;
} families[] = {
    {{0x960, 0x99F},
     "1 5 640x480 1280x960 1600x1200 2048x1536 2592x1944",
     {{640, 480, "1"}, {1280, 960, "0"}, {1600, 1200, "2"}, {2048, 1536, "3"}, {2592, 1944, "4"}}},
    {{0x920, 0x92F},
     "1 3 640x480 1280x960 1600x1200",
     {{640, 480, "1"}, {1280, 960, "0"}, {1600, 1200, "2"}}},
    {{0x9D0, 0x9DF, 0x9A0, 0x9AF}, "1 1 640x480", {{640, 480, "0"}}},
    {{0x870, 0x89F, 0x910, 0x91F, 0x9C0, 0x9CF},
     "1 2 640x480 1280x1024",
     {{640, 480, "0"}, {1280, 1024, "3"}}},
};

class WifiVideo : public CameraTest {
 protected:
  WifiVideo() {
    machine().wifi = [](const std::string&) { return HttpAnswer{true, {"res:0"}}; };
    SetVideoDeviceIndex(90);
    nTmpIdx = 90;
  }
};

TEST_F(WifiVideo, ListsAndChoosesTheModesOfTheFamily) {
  const std::string choose =
      "GET " + cameraUrl + "?action=commandcontrol&dest=0plugin=0&id=0&group=2&value=";
  for (const auto& family : families) {
    for (const int pid : family.pids) {
      nPid = pid;
      EXPECT_EQ(exportNamed("GetWiFiVideoCaps").call({}), family.listed) << pid;
      EXPECT_TRUE(GetWiFiVideoCaps(nullptr, nullptr, nullptr));
      for (const Mode& mode : family.modes) {
        journal();
        EXPECT_TRUE(SetWiFiVideoRes(mode.width, mode.height));
        // The last family is asked for on the wire, unless the product id alone says it.
        const bool asks = pid >= 0x920 && pid <= 0x9FF;
        EXPECT_EQ(traffic(), (asks ? "r62.80 p5 p10 " : "p10 ") + choose + mode.command) << pid;
      }
    }
  }
}

TEST_F(WifiVideo, WritesNothingForOtherCameras) {
  for (const int pid : {0, 0x86F, 0x8A0, 0x95F, 0x9B0, 0x9E0}) {
    nPid = pid;
    qvx_long count = 77;
    short width = 77, height = 77;
    EXPECT_FALSE(GetWiFiVideoCaps(&count, &width, &height)) << pid;
    EXPECT_EQ(count + width + height, 3 * 77);
    EXPECT_FALSE(SetWiFiVideoRes(640, 480)) << pid;
  }
}

TEST_F(WifiVideo, SendsNothingForASizeThatIsNone) {
  nPid = 0x970;
  for (const auto& [width, height] :
       {std::pair{1280, 1024}, {640, 481}, {0, 0}, {-640, 480}, {66176, 480}}) {
    EXPECT_FALSE(SetWiFiVideoRes(width, height)) << width;
  }
  EXPECT_EQ(traffic().find("p10"), std::string::npos);
}

TEST_F(WifiVideo, IsForDevice90Only) {
  nPid = 0x970;
  for (const int index : {0, 7, -1, 91}) {
    SetVideoDeviceIndex(index);
    EXPECT_FALSE(SetWiFiVideoRes(640, 480)) << index;
  }
  EXPECT_EQ(journal(), Journal{});
  qvx_long count = 0;
  EXPECT_TRUE(GetWiFiVideoCaps(&count, nullptr, nullptr)) << "whatever the index";
}

}  // namespace
}  // namespace qvx::tests
