#include "simulator/model/wifi_server.h"

#include <gtest/gtest.h>

#include <string>

namespace qvx::simulator {
namespace {

constexpr char prefix[] = "/?action=commandcontrol&dest=0plugin=0&id=";

TEST(WifiServer, AnswersCommands) {
  const struct {
    const char* command;
    const char* body;
    const char* description;
  } cases[] = {
      {"1378&group=5&value=8388608", "res:86", "read  controller 0x80 -> 0x56  feature register"},
      {"1378&group=5&value=12910592", "res:2",
       "read  controller 0xC5 -> 0x02  calibration: parabola through three points"},
      {"5474&group=5&value=262159", "res:0", "write controller 0x04 <- 0x0F  light switch"},
      {"256&group=4&value=0", "res:24", "read  GPIO port 1 -> 0x18  touch button"},
      {"1031&group=4&value=1", "res:0", "write GPIO port 0 mask 0x07 levels 0x01"},
      {"1296&group=4&value=0", "res:0", "write GPIO port 1 mask 0x10 levels 0x00"},
      {"9963776&group=1&value=-12", "res:0", "Brightness <- -12"},
      {"9963803&group=1&value=99", "res:0", "Sharpness <- 7"},
      {"0&group=2&value=4", "res:0", "video mode <- 2592 x 1944"},
  };
  for (const auto& expected : cases) {
    Camera camera(0x970);
    camera.gpio().pressButton();
    const WifiAnswer answer = WifiServer(camera).get(std::string(prefix) + expected.command);
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body, expected.body);
    EXPECT_EQ(answer.description, expected.description);
    EXPECT_EQ(camera.violations()[0], "");
  }
}

TEST(WifiServer, RefusesWhatTheFirmwareDoesNotKnow) {
  const struct {
    const char* command;
    const char* violation;
  } cases[] = {
      {"1378&group=5&value=3604480", "controller: read of unknown register 0x37"},
      {"1378&group=5&value=8388609", "wifi: I2C data that cannot be: 0x01"},
      {"1378&group=5&value=25165824", "wifi: I2C register over a byte: 0x180"},
      {"5474&group=5&value=262400", "wifi: I2C data that cannot be: 0x100"},
      {"1634&group=5&value=8388608", "wifi: I2C data bytes: 0x02"},
      {"3426&group=5&value=8388608", "wifi: I2C register bytes: 0x03"},
      {"2402&group=5&value=8388608", "controller: bytes of register address: 0x02"},
      {"2376&group=5&value=889389056", "wifi: nothing on the I2C bus at 0x48"},
      {"-128&group=5&value=0", "wifi: unknown bits in I2C id 0xFFFFFF80"},
      {"512&group=4&value=0", "gpio: read of unknown port 0x2"},
      {"257&group=4&value=0", "wifi: GPIO read with a mask: 0x101"},
      {"1031&group=4&value=-1", "wifi: GPIO levels that cannot be: 0xFFFFFFFF"},
      {"2048&group=4&value=0", "wifi: unknown bits in GPIO id 0x800"},
      {"1378&group=6&value=0", "wifi: unknown group 0x06"},
      {"9963781&group=1&value=0", "wifi: unknown picture control 0x980905"},
      {"0&group=2&value=5", "wifi: unknown video mode 0x05"},
      {"1&group=2&value=0", "wifi: unknown video mode 0x00"},
  };
  for (const auto& expected : cases) {
    Camera camera(0x970);
    const WifiAnswer answer = WifiServer(camera).get(std::string(prefix) + expected.command);
    EXPECT_EQ(answer.body, "res:-1") << expected.command;
    EXPECT_EQ(camera.violations()[0], expected.violation);
    EXPECT_EQ(camera.violations().count(), 1U);
  }
}

TEST(WifiServer, TellsWhichRegisterAnAbsentDeviceWasAskedFor) {
  Camera camera(0x970);
  EXPECT_EQ(
      WifiServer(camera).get(std::string(prefix) + "2376&group=5&value=889389056").description,
      "read  I2C 0x48 0x3503: no answer");
}

TEST(WifiServer, TellsOfItsPictureControls) {
  Camera camera(0x970);
  WifiServer server(camera);
  server.get(std::string(prefix) + "9963792&group=1&value=120");
  const std::string document = server.get("/input_0_control.json").body;
  EXPECT_NE(document.find(R"("name": "Gamma", "id": "9963792", "type": "1", "min": "72", "max": )"
                          R"("500", "step": "1", "default": "100", "value": "120")"),
            std::string::npos)
      << document;
}

TEST(WifiServer, HandsOutWhatTheCameraSees) {
  Camera camera(0x970);
  EXPECT_EQ(WifiServer(camera).get("/?action=snapshot").status, 503);
  const WifiAnswer answer =
      WifiServer(camera, [](Camera&) { return std::string("jpeg"); }).get("/?action=snapshot");
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.contentType, "image/jpeg");
  EXPECT_EQ(answer.body, "jpeg");
  EXPECT_EQ(answer.description, "still of 1280 x 960 pixels, 4 bytes");
  EXPECT_EQ(camera.violations().count(), 0U);
}

TEST(WifiServer, TakesItsRequestsLiterally) {
  for (const char* const target : {
           "",
           "/nothing",
           "/?action=snapshots",
           "/?action=commandcontrol&dest=0&plugin=0&id=1378&group=5&value=0",
           "/?action=commandcontrol&dest=0plugin=0&id=01378&group=5&value=0",
           "/?action=commandcontrol&dest=0plugin=0&id=+1378&group=5&value=0",
           "/?action=commandcontrol&dest=0plugin=0&id=&group=5&value=0",
           "/?action=commandcontrol&dest=0plugin=0&id=1378&group=5&value=0 ",
           "/?action=commandcontrol&dest=0plugin=0&id=1378&group=5&value=4294967296",
           "/?action=commandcontrol&dest=0plugin=0&id=1378&value=0&group=5",
           "?action=commandcontrol&dest=0plugin=0&id=1378&group=5&value=0",
       }) {
    Camera camera(0x970);
    EXPECT_EQ(WifiServer(camera).get(target).status, 404) << target;
    EXPECT_EQ(camera.violations().count(), 1U) << target;
  }
}

TEST(WifiServer, TouchedButtonOfOtherFamiliesReadsNegative) {
  Camera camera(0x9C0);
  camera.gpio().pressButton();
  EXPECT_EQ(WifiServer(camera).get(std::string(prefix) + "256&group=4&value=0").body, "res:-128");
}

TEST(WifiServer, ProductIdStandsWhereClientsLook) {
  Camera camera(0x9c4);
  const std::string body = WifiServer(camera).get("/usbdevlist.json").body;
  const std::size_t vendor = body.find("0x3c7e");
  ASSERT_NE(vendor, std::string::npos);
  EXPECT_EQ(body.substr(vendor + 25, 5), "09C4\"");
  EXPECT_EQ(body.find("0x3c7e", vendor + 1), std::string::npos);
}

}  // namespace
}  // namespace qvx::simulator
