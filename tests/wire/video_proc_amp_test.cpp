// Picture properties: the steps through the capture system, and the Wi-Fi camera's two requests.
#include <climits>

#include "qvx64/api.h"
#include "tests/support/cameras.h"
#include "tests/support/every_export.h"

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
  EXPECT_EQ(GetVideoProcAmp(0), -5);
  EXPECT_EQ(journal(), session("get 0"));
  EXPECT_EQ(rangeOf(5), "0 72 500 1 100");
  EXPECT_EQ(journal(), session("range of 5"));
  EXPECT_EQ(other.picture.get(*simulator::pictureControl(0)).value, 0);
}

TEST_F(VideoProcAmpCapture, LeavesAllButTheListAndTheGraphOpen) {
  GetVideoProcAmp(0);
  simulator::OpenCounts expected;
  expected.comInitializations = 1;
  expected.captureFilters = expected.captureBuilders = 1;
  expected.streamConfigs = expected.videoProcAmps = 1;
  EXPECT_EQ(machine().open, expected);
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
  const struct {
    int property;
    qvx_long value;
    const char* sent;
  } rows[] = {{0, -64, "9963776&group=1&value=-64"},
              {1, 95, "9963777&group=1&value=95"},
              {2, 1, "9963779&group=1&value=1"},
              {3, 0, "9963778&group=1&value=0"},
              {4, 7, "9963803&group=1&value=7"},
              {5, 500, "9963792&group=1&value=500"},
              {0, INT_MIN, "9963776&group=1&value=-2147483648"}};
  for (const auto& row : rows) {
    machine().open = {};
    SetVideoProcAmp(row.property, row.value);
    EXPECT_EQ(journal(),
              Journal{"GET " + cameraUrl + "?action=commandcontrol&dest=0plugin=0&id=" + row.sent});
    EXPECT_EQ(machine().open.internetSessions, 0);
    EXPECT_EQ(machine().open.internetRequests, 1);
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
  EXPECT_EQ(machine().open.internetSessions, 3);
  EXPECT_EQ(machine().open.internetRequests, 3);
}

TEST_F(VideoProcAmpWifi, TakesEveryNegativeIndex) {
  for (const int index : {-1, -2, -3, INT_MIN}) {
    SetVideoDeviceIndex(index);
    EXPECT_EQ(GetVideoProcAmp(5), 100) << index;
  }
}

TEST_F(VideoProcAmpWifi, TakesEachReadAsADocument) {
  const std::string document = R"({"controls": [{"name": "Hue", "value": "9", "max": "40"}]})";
  const std::string others = R"({"controls": [{"name": "Gamma", "value": "1"}]})";
  const std::string padded = std::string(8192, ' ');
  const struct {
    std::vector<std::string> chunks;
    int value;
  } rows[] = {
      {{document}, 9},
      {{"junk", others, document}, 9},
      {{document.substr(0, 30), document.substr(30)}, 0},
      {{document.substr(0, 30), document.substr(30), document}, 9},
      {{padded + document}, 9},
      {{padded.substr(10) + document}, 0},
      {{others}, 0},
      {{std::string(1200, '['), document}, 9},
      {{}, 0},
  };
  for (const auto& row : rows) {
    for (const bool breaksOff : {false, true}) {
      machine().wifi = [&](const std::string&) {
        return simulator::HttpAnswer{true, row.chunks, breaksOff};
      };
      machine().open = {};
      EXPECT_EQ(GetVideoProcAmp(2), row.value);
      EXPECT_EQ(rangeOf(2), row.value != 0 ? "0 0 40 0 0" : leftAlone);
      EXPECT_EQ(machine().open.internetSessions, row.value != 0 ? 2 : 0);
      EXPECT_EQ(machine().open.internetRequests, row.value != 0 ? 2 : 0);
    }
  }
}

TEST_F(VideoProcAmpWifi, WithoutACamera) {
  machine().wifi = nullptr;
  SetVideoProcAmp(0, 1);
  EXPECT_EQ(GetVideoProcAmp(0), 0);
  EXPECT_EQ(rangeOf(0), leftAlone);
  EXPECT_EQ(machine().open, simulator::OpenCounts{});
}

TEST_F(VideoProcAmpWifi, ToleratesNullPointers) {
  qvx_long property = 5, least = 0;
  EXPECT_EQ(GetVideoProcAmpValueRange(nullptr, &least, &least, &least, &least), 0);
  EXPECT_EQ(journal(), Journal{});
  EXPECT_EQ(GetVideoProcAmpValueRange(&property, &least, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(least, 72);
  property = 6;
  EXPECT_EQ(GetVideoProcAmpValueRange(&property, nullptr, nullptr, nullptr, nullptr), 0);
}

}  // namespace
}  // namespace qvx::tests
