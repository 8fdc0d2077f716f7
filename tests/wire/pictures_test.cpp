// Pictures: their properties, by the steps through the capture system and by the Wi-Fi camera's two
// requests; the Wi-Fi camera's stills and its video modes.
#include <algorithm>
#include <climits>
#include <iterator>
#include <sstream>

#include "qvx64/api.h"
#include "tests/support/cameras.h"
#include "tests/support/every_export.h"
#include "tests/support/product_ids.h"

namespace qvx::tests {
namespace {

using simulator::VirtualBridge;

// The result, then the range: -7 stands for a value that is left alone.
std::string rangeOf(int property) {
  return exportNamed("GetVideoProcAmpValueRange").call({.index = property});
}

const std::string unknown = "0 -1 -1 -1 -1", leftAlone = "0 -7 -7 -7 -7";

class VideoProcAmpCapture : public CameraTest {
 protected:
  VideoProcAmpCapture() {
    machine().videoInputs = {bridgeInput(other, "1"), bridgeInput(camera, "2")};
    SetVideoDeviceIndex(1);
    GetDeviceIDA(1);
    machine().open = {};
    journal();
  }

  VirtualBridge other{0x970}, camera{0x970};
};

Journal session(const std::string& request) {
  return {"capture: list inputs",     "capture: open filter",        "capture: create graph",
          "capture: create builder",  "capture: find stream config", "capture: count capabilities",
          "capture: query amplifier", "capture: " + request,         "capture: release graph",
          "capture: release list"};
}

TEST_F(VideoProcAmpCapture, AsksTheCurrentCameraInTheseSteps) {
  SetVideoProcAmp(0, -5);
  EXPECT_EQ(journal(), session("set 0 to -5 manually"));
  simulator::OpenCounts leftOpen;  // all but the list and the graph
  leftOpen.comInitializations = leftOpen.captureFilters = leftOpen.captureBuilders = 1;
  leftOpen.streamConfigs = leftOpen.videoProcAmps = 1;
  EXPECT_EQ(machine().open, leftOpen);
  EXPECT_EQ(GetVideoProcAmp(0), -5);
  EXPECT_EQ(journal(), session("get 0"));
  EXPECT_EQ(rangeOf(5), "0 72 500 1 100");
  EXPECT_EQ(journal(), session("range of 5"));
  EXPECT_EQ(other.camera.picture.get(*simulator::pictureControl(0)).value, 0);
}

TEST_F(VideoProcAmpCapture, PropertyThatTheCameraLacksIsMinusOne) {
  for (const int index : {1, 90}) {
    SetVideoDeviceIndex(index);
    for (const int property : {6, 10, -1, INT_MIN, INT_MAX}) {
      SetVideoProcAmp(property, 1);
      EXPECT_EQ(GetVideoProcAmp(property), -1) << property;
      EXPECT_EQ(rangeOf(property), unknown) << property;
    }
  }
  EXPECT_EQ(traffic().find("GET"), std::string::npos) << "the Wi-Fi camera is not asked";
}

TEST_F(VideoProcAmpCapture, FindsNoCameraUnderAnotherName) {
  const Journal search = {"capture: list inputs", "capture: release list"};
  for (const int index : {2, 7, 8, 91, INT_MAX}) {
    SetVideoDeviceIndex(index);
    journal();
    EXPECT_EQ(GetVideoProcAmp(0), -1) << index;
    EXPECT_EQ(rangeOf(0), leftAlone) << index;
    EXPECT_EQ(journal(), search + search) << index;
  }
  // The table has lower-case paths; a name with a capital letter is another one.
  SetVideoDeviceIndex(1);
  machine().videoInputs[1].path[0] = L'A';
  strOrvaDevice[1][0] = 'a';
  EXPECT_EQ(GetVideoProcAmp(0), -1);
  EXPECT_EQ(machine().open, simulator::OpenCounts{});
}

// Every call says it; a property reads as -1 where a camera was found.
TEST_F(VideoProcAmpCapture, SaysWhatIsMissing) {
  const auto check = [](const std::string& message, int value) {
    EXPECT_EQ(printedBy([=] { EXPECT_EQ(GetVideoProcAmp(0), value); }), message);
    EXPECT_EQ(printedBy([] { SetVideoProcAmp(0, 1); }), message);
    EXPECT_EQ(printedBy([] { EXPECT_EQ(rangeOf(0), leftAlone); }), message);
  };
  machine().videoInputs[1].picture = nullptr;
  check("\nDevice does not support IAMVideoProcAmp!\n", -1);
  machine().open = {};
  machine().videoInputs.clear();
  check("No Device Found!\n", 0);
  EXPECT_EQ(machine().open, simulator::OpenCounts{});
}

TEST_F(VideoProcAmpCapture, OutlivesTheFailureOfEveryStep) {
  // Without a graph, a builder or the stream settings the amplifier is still asked.
  const int values[] = {0, -1, 32, 32, 32, 32, -1, -1};
  for (std::uint64_t step = 1; step <= 8; ++step) {
    machine().set({simulator::Fault::fails, step, 1});
    printedBy([&] { EXPECT_EQ(GetVideoProcAmp(1), values[step - 1]) << step; });
  }
}

class VideoProcAmpWifi : public CameraTest {
 protected:
  VideoProcAmpWifi() {
    plugWifi(0x970);
    SetVideoDeviceIndex(90);
  }
};

TEST_F(VideoProcAmpWifi, SendsACommandAndDoesNotReadItsAnswer) {
  const Rows<int, qvx_long, int> rows = {{0, -64, 9963776},    {1, 95, 9963777}, {2, 1, 9963779},
                                         {3, 0, 9963778},      {4, 7, 9963803},  {5, 500, 9963792},
                                         {0, INT_MIN, 9963776}};
  for (const auto& [property, value, id] : rows) {
    machine().open = {};
    SetVideoProcAmp(property, value);
    EXPECT_EQ(journal(), Journal{"GET " + cameraUrl + "?action=commandcontrol&dest=0plugin=0&id=" +
                                 formatted("%d&group=1&value=%d", id, value)});
    EXPECT_EQ(openHttp(), std::pair(0, 1));
  }
}

TEST_F(VideoProcAmpWifi, ReadsTheControlDocument) {
  SetVideoProcAmp(3, 17);
  machine().open = {};
  journal();
  EXPECT_EQ(GetVideoProcAmp(3), 17);
  EXPECT_EQ(journal(), Journal{"GET " + cameraUrl + "input_0_control.json"});
  EXPECT_EQ(rangeOf(2), "0 -40 40 1 0");
  EXPECT_EQ(rangeOf(4), "0 0 7 1 2");
  EXPECT_EQ(openHttp(), std::pair(3, 3));
  for (const int index : {-1, -2, -3, INT_MIN}) {
    SetVideoDeviceIndex(index);
    EXPECT_EQ(GetVideoProcAmp(5), 100) << "under every negative index";
  }
}

TEST_F(VideoProcAmpWifi, TakesEachReadAsADocument) {
  const std::string document = R"({"controls": [{"name": "Hue", "value": "9", "max": "40"}]})";
  const std::string others = R"({"controls": [{"name": "Gamma", "value": "1"}]})";
  const std::string padded = std::string(8192, ' ');
  using Chunks = std::vector<std::string>;
  const Rows<Chunks, int> rows = {{{document}, 9},
                                  {{"junk", others, document}, 9},
                                  {{document.substr(0, 30), document.substr(30)}, 0},
                                  {{document.substr(0, 30), document.substr(30), document}, 9},
                                  {{padded + document}, 9},
                                  {{padded.substr(10) + document}, 0},
                                  {{others}, 0},
                                  {{std::string(1200, '['), document}, 9},
                                  {Chunks{}, 0}};
  for (const auto& [chunks, value] : rows) {
    for (const bool breaksOff : {false, true}) {
      answerWifi(chunks, breaksOff);
      machine().open = {};
      EXPECT_EQ(GetVideoProcAmp(2), value);
      EXPECT_EQ(rangeOf(2), value != 0 ? "0 0 40 0 0" : leftAlone);
      EXPECT_EQ(openHttp(), value != 0 ? std::pair(2, 2) : std::pair(0, 0));
    }
  }
}

TEST_F(VideoProcAmpWifi, ToleratesNullPointers) {
  qvx_long property = 5, min = 0;
  EXPECT_EQ(GetVideoProcAmpValueRange(nullptr, &min, &min, &min, &min), 0);
  EXPECT_EQ(journal(), Journal{});
  EXPECT_EQ(GetVideoProcAmpValueRange(&property, &min, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(min, 72);
  property = 6;
  EXPECT_EQ(GetVideoProcAmpValueRange(&property, nullptr, nullptr, nullptr, nullptr), 0);
}

class WifiImage : public CameraTest {
 protected:
  std::string saved(const std::wstring& path = L"still.jpg") { return machine().files.at(path); }
};

TEST_F(WifiImage, IsSavedAsItComes) {
  answerWifi({"\xFF\xD8 first ", std::string("\0second", 7)});
  machine().files[L"still.jpg"] = "of yesterday, and longer than the new one";
  EXPECT_TRUE(GetWiFiImage("still.jpg"));
  EXPECT_EQ(saved(), "\xFF\xD8 first " + std::string("\0second", 7));
  EXPECT_EQ(journal(), (Journal{"session past proxies", "GET " + cameraUrl + "?action=snapshot"}));
  EXPECT_EQ(machine().open, simulator::OpenCounts{});
}

// A picture that the camera or the disk cuts short is not reported.
TEST_F(WifiImage, OfAnySizeIsCopied) {
  const auto expectSaved = [this](std::size_t sent, bool breaksOff, std::size_t kept) {
    answerWifi(std::vector(sent == 0 ? 0 : 1, std::string(sent, 'j')), breaksOff);
    EXPECT_TRUE(GetWiFiImage("still.jpg"));
    EXPECT_EQ(saved().size(), kept);
  };
  for (const std::size_t size : {1u, 1999u, 2000u, 2001u, 4000u, 50'000'000u}) {
    expectSaved(size, false, size);
  }
  for (const std::size_t size : {3000u, 0u}) expectSaved(size, true, size);
  machine().diskRoom = 2500;
  expectSaved(9000, false, 2500);
  EXPECT_EQ(machine().open, simulator::OpenCounts{});
}

TEST_F(WifiImage, WithoutACameraIsTrueAndNoFile) {
  EXPECT_TRUE(GetWiFiImage("still.jpg"));
  EXPECT_TRUE(machine().files.empty());
  EXPECT_EQ(openHttp(), std::pair(1, 0)) << "the session stays open";
}

TEST_F(WifiImage, IsFalseWhereNoFileCanBe) {
  answerWifi({"picture"});
  for (const char* const path : {"missing\\still.jpg", "", static_cast<const char*>(nullptr)}) {
    EXPECT_FALSE(GetWiFiImage(path));
  }
  EXPECT_TRUE(machine().files.empty());
  EXPECT_EQ(machine().open, simulator::OpenCounts{});
}

TEST_F(WifiImage, TakesTheNameByteByByteUpToItsEnd) {
  answerWifi({"picture"});
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

// The sizes of each family, and the numbers that select them on the wire.
const struct {
  Ids ids;
  const char *sizes, *numbers;
} families[] = {
    {"960-99F", "640x480 1280x960 1600x1200 2048x1536 2592x1944", "10234"},
    {"920-92F", "640x480 1280x960 1600x1200", "102"},
    {"9D0-9DF 9A0-9AF", "640x480", "0"},
    {"870-89F 910-91F 9C0-9CF", "640x480 1280x1024", "03"},
    {"000-FFF", "", ""},
};

class WifiVideo : public CameraTest {
 protected:
  WifiVideo() {
    answerWifi({"res:0"});
    SetVideoDeviceIndex(90);
    nTmpIdx = 90;
  }
};

TEST_F(WifiVideo, ListsAndChoosesTheModesOfTheFamily) {
  const std::string choose =
      "GET " + cameraUrl + "?action=commandcontrol&dest=0plugin=0&id=0&group=2&value=";
  constexpr std::pair<int, int> tried[] = {{640, 480},   {1280, 960},  {1600, 1200}, {2048, 1536},
                                           {2592, 1944}, {1280, 1024}, {640, 481},   {0, 0},
                                           {-640, 480},  {66176, 480}};
  const Ids knownWithoutAsking = "870-89F 910-91F";
  for (int pid = 0; pid < 0xA80; pid += pid < 0x860 ? 16 : 1) {
    const auto& family =
        *std::ranges::find_if(families, [=](auto& row) { return row.ids.contains(pid); });
    std::istringstream words(family.sizes);
    const std::vector<std::string> sizes{std::istream_iterator<std::string>(words), {}};
    nPid = pid;
    const std::string listed = "1 " + std::to_string(sizes.size()) + ' ' + family.sizes;
    EXPECT_EQ(exportNamed("GetWiFiVideoCaps").call({}), sizes.empty() ? "0 0" : listed) << pid;
    qvx_long count = 77;
    EXPECT_EQ(GetWiFiVideoCaps(&count, nullptr, nullptr), !sizes.empty());
    EXPECT_EQ(count, sizes.empty() ? 77 : std::ssize(sizes));
    for (const auto& [width, height] : tried) {
      const auto number = static_cast<std::size_t>(
          std::ranges::find(sizes, formatted("%dx%d", width, height)) - sizes.begin());
      const bool known = number < sizes.size();
      journal();
      EXPECT_EQ(SetWiFiVideoRes(width, height), known) << std::hex << pid << ' ' << width;
      const std::string asks = knownWithoutAsking.contains(pid) ? ""
                               : known                          ? "r62.80 p5 "
                                                                : "r62.80 p5";
      EXPECT_EQ(traffic(), asks + (known ? "p10 " + choose + family.numbers[number] : ""));
    }
  }
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
