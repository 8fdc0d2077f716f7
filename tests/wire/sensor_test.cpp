// Sensor registers: where the three transports differ from each other, and reads from writes.
#include "transport/sensor.h"

#include "qvx64/api.h"
#include "simulator/platform/cameras.h"
#include "state/device_state.h"
#include "tests/support/accesses.h"
#include "tests/support/library.h"
#include "transport/usb3.h"

namespace qvx::tests {
namespace {

class WifiSensor : public LibraryTest {
 protected:
  WifiSensor() {
    s_mainhttp = "http://127.0.0.1:8080/";
    machine().wifi = [this](const std::string&) { return answer; };
  }

  std::string accesses() { return Accesses::in(journal()); }

  simulator::HttpAnswer answer{true, {"res:77"}};
};

TEST_F(WifiSensor, IsReadByFamilyAndWrittenByOperation) {
  const struct {
    int pid;
    const char *read90, *write90, *write88, *writeEmpia;
  } rows[] = {
      {0x970, "http 2424 35000000, pause 5", "pause 10, http 6520 35000012", "",
       "http 6520 35000012"},
      {0x922, "http 2424 35000000, pause 5", "pause 10, http 6520 35000012", "",
       "http 6520 35000012"},
      {0x921, "http 2376 35000000, pause 5", "pause 10, http 6520 35000012", "",
       "http 6472 35000012"},
      {0x9B0, "http 2376 35000000, pause 5", "pause 10, http 6520 35000012", "",
       "http 6472 35000012"},
      {0x870, "http 2376 35000000, pause 5", "pause 10, http 6520 35000012",
       "pause 10, http 6472 35000012", "http 6472 35000012"},
      {0x9A0, "http 1346 35000000, pause 5", "pause 10, http 6520 35000012",
       "pause 10, http 5442 35000012", "http 5442 35000012"},
  };
  for (const auto& row : rows) {
    nPid = row.pid;
    EXPECT_EQ(ReadFrom90x(90, 0x3500), 77u);
    EXPECT_EQ(accesses(), row.read90) << std::hex << row.pid;
    EXPECT_FALSE(WriteTo90x(90, 0x3500, 0x12));
    EXPECT_EQ(accesses(), row.write90) << std::hex << row.pid;
    nTmpIdx = 0;  // whose feature register asks nothing of Wi-Fi
    WriteEmpia_Sensor(0x3500, 0x12);
    EXPECT_EQ(accesses(), row.writeEmpia) << std::hex << row.pid;
    EXPECT_EQ(WriteTo88x(90, 0x3500, 0x12), 0);
    const std::string written = accesses();
    EXPECT_TRUE(written.ends_with(row.write88)) << written << std::hex << row.pid;
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

TEST_F(WifiSensor, LeavesHandlesAsTheChannelDoes) {
  const auto opened = [this] {
    const auto counts = machine().open;
    machine().open = {};
    return std::pair(counts.internetSessions, counts.internetRequests);
  };
  nPid = 0x970;
  EXPECT_EQ(ReadEmpia_Sensor(0x3500), 77u);
  EXPECT_EQ(opened(), std::pair(1, 1));
  WriteEmpia_Sensor(0x3500, 1);
  EXPECT_EQ(opened(), std::pair(0, 1)) << "the session is closed, the request is not";
  answer.chunks = {
      std::string("res:12\0"
                  "34",
                  9)};
  EXPECT_EQ(ReadEmpia_Sensor(0x3500), 12u);
  opened();
  answer.chunks = {};
  EXPECT_EQ(ReadEmpia_Sensor(0x3500), 0u);
  answer.reachable = false;
  EXPECT_EQ(ReadEmpia_Sensor(0x3500), 0u);
  WriteEmpia_Sensor(0x3500, 1);
  EXPECT_EQ(opened(), std::pair(0, 0));
}

class Usb3Sensor : public LibraryTest {
 protected:
  Usb3Sensor() {
    machine().usbDevices = {
        {cameraVendorId, 0x9B0, "A", "Camera", "Maker", {}, true, simulator::usb3Front(camera)}};
    strOrvaDevice[0] = "vid_3c7e&pid_09b0";
    nPid = 0x9B0;
    testing::internal::CaptureStdout();
    U3Open();
    testing::internal::GetCapturedStdout();
    journal();
  }

  simulator::Camera camera{0x9B0};
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
  EXPECT_EQ(camera.sensor().at(0x3501), 300 / 16);
  journal();
  EXPECT_EQ(GetExposureValue(0), 0) << "set, but not told";
  for (const std::string& line : journal()) EXPECT_EQ(line.find(" 0301 "), std::string::npos);
  SetAutoExposure(0, 0);
  EXPECT_EQ(camera.sensor().at(0x3503), 7);
  EXPECT_EQ(GetAutoExposure(0), 0);
  SetFlicker(0, 2);
  EXPECT_EQ(camera.sensor().at(0x3C01), 0xB4);
  EXPECT_EQ(complaintsOf(camera), "");
}

TEST_F(Usb3Sensor, ReadsAs255WithoutAnAnswer) {
  machine().set({simulator::Fault::fails});
  EXPECT_EQ(GetAETarget(0), 255);
  EXPECT_FALSE(WriteTo90x(0, 0x3500, 1));
  ec = 31;
  EXPECT_TRUE(WriteTo90x(0, 0x3500, 1)) << "the error of the failed open, not of the transfer";
}

}  // namespace
}  // namespace qvx::tests
