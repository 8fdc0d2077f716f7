// Sensor registers: where the three transports differ from each other, and reads from writes.
#include "transport/sensor.h"

#include "qvx64/api.h"
#include "tests/support/cameras.h"

namespace qvx::tests {
namespace {

class WifiSensor : public CameraTest {
 protected:
  WifiSensor() {
    machine().wifi = [this](const std::string&) { return answer; };
  }

  simulator::HttpAnswer answer{true, {"res:77"}};
};

TEST_F(WifiSensor, IsReadByFamilyAndWrittenByOperation) {
  const struct {
    int pid;
    const char *read90, *write88, *writeEmpia;
  } rows[] = {
      {0x970, "r78.3500 p5", "", "w78.3500=12"},
      {0x922, "r78.3500 p5", "", "w78.3500=12"},
      {0x921, "r48.3500 p5", "", "w48.3500=12"},
      {0x9B0, "r48.3500 p5", "", "w48.3500=12"},
      {0x870, "r48.3500 p5", "p10 w48.3500=12", "w48.3500=12"},
      {0x9A0, "r42.3500 p5", "p10 w42.3500=12", "w42.3500=12"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.pid);
    nPid = row.pid;
    EXPECT_EQ(ReadFrom90x(90, 0x3500), 77u);
    EXPECT_EQ(traffic(), row.read90);
    EXPECT_FALSE(WriteTo90x(90, 0x3500, 0x12));
    EXPECT_EQ(traffic(), "p10 w78.3500=12");
    nTmpIdx = 0;  // whose feature register asks nothing of Wi-Fi
    WriteEmpia_Sensor(0x3500, 0x12);
    EXPECT_EQ(traffic(), row.writeEmpia);
    EXPECT_EQ(WriteTo88x(90, 0x3500, 0x12), 0);
    EXPECT_TRUE(traffic().ends_with(row.write88));
    EXPECT_EQ(nTmpIdx, 90);
  }
}

TEST_F(WifiSensor, OfAnotherFamilyReadsAsTheDeviceWithoutAPath) {
  nPid = 0x970;
  nCurrPid = 0x971;
  EXPECT_EQ(ReadFrom88x(90, 0x15), 0u);
  EXPECT_EQ(nPid, 0x971);
  nPid = 0;
  nCurrPid = 0x9A0;
  WriteTo88x(90, 0x25, 1);
  EXPECT_EQ(nPid, 0x9A0);
}

// A read that is answered leaves its session and its request, a write the request alone.
TEST_F(WifiSensor, LeavesHandlesAsTheChannelDoes) {
  const struct {
    simulator::HttpAnswer answer;
    std::uint32_t read;
    int sessions, requests;  // after a read and a write
  } rows[] = {{{true, {"res:77"}}, 77, 1, 2},
              {{true,
                {std::string("res:12\0"
                             "34",
                             9)}},
               12,
               1,
               2},
              {{true, {}}, 0, 0, 1},
              {{false, {}}, 0, 0, 0}};
  nPid = 0x970;
  for (const auto& row : rows) {
    answer = row.answer;
    machine().open = {};
    EXPECT_EQ(ReadEmpia_Sensor(0x3500), row.read);
    WriteEmpia_Sensor(0x3500, 1);
    EXPECT_EQ(machine().open.internetSessions, row.sessions);
    EXPECT_EQ(machine().open.internetRequests, row.requests);
  }
}

class Usb3Sensor : public CameraTest {
 protected:
  Usb3Sensor() { plugUsb3(0x9B0); }
};

TEST_F(Usb3Sensor, TakesClassRequests) {
  EXPECT_EQ(GetAETarget(0), 0x38);
  EXPECT_EQ(journal(), (Journal{"usb 21 01 0301 0300 3: 78 3A 1E", "usb A1 81 0301 0300 1"}));
  bWait = 9;
  SetAETarget(0, 250);
  EXPECT_EQ(bWait, 1);
  EXPECT_EQ(journal(),
            (Journal{"usb 21 01 0300 0300 4: 78 3A 1E D0", "usb 21 01 0300 0300 4: 78 3A 1B E0",
                     "usb 21 01 0300 0300 4: 78 3A 10 D2", "usb 21 01 0300 0300 4: 78 3A 0F DE"}));
  SetExposureValue(0, 300);
  EXPECT_EQ(camera().sensor().at(0x3501), 300 / 16);
  journal();
  EXPECT_EQ(GetExposureValue(0), 0) << "set, but not told";
  EXPECT_EQ(traffic().find("r78"), std::string::npos);
  SetAutoExposure(0, 0);
  EXPECT_EQ(camera().sensor().at(0x3503), 7);
  EXPECT_EQ(GetAutoExposure(0), 0);
  SetFlicker(0, 2);
  EXPECT_EQ(camera().sensor().at(0x3C01), 0xB4);
}

TEST_F(Usb3Sensor, WriteTellsTheErrorOfTheFailedOpenNotOfTheTransfer) {
  machine().set({simulator::Fault::fails});
  EXPECT_FALSE(WriteTo90x(0, 0x3500, 1));
  ec = 31;
  EXPECT_TRUE(WriteTo90x(0, 0x3500, 1));
}

}  // namespace
}  // namespace qvx::tests
