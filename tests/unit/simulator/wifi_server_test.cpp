#include "simulator/model/wifi_server.h"

#include <gtest/gtest.h>

#include <string>

namespace qvx::simulator {
namespace {

constexpr char prefix[] = "/?action=commandcontrol&dest=0plugin=0&id=";

TEST(WifiServer, AnswersCommandsAndRefusesWhatTheFirmwareDoesNotKnow) {
  const struct {
    const char* command;
    const char* body;
    const char* said;  // the violation, or what the command meant
    std::uint16_t productId = 0x970;
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
      {"256&group=4&value=0", "res:-128", "read  GPIO port 1 -> 0x80  touch button", 0x9C0},
      {"1378&group=5&value=3604480", "res:-1", "controller: read of unknown register 0x37"},
      {"1378&group=5&value=8388609", "res:-1", "wifi: I2C data that cannot be: 0x01"},
      {"1378&group=5&value=25165824", "res:-1", "wifi: I2C register over a byte: 0x180"},
      {"5474&group=5&value=262400", "res:-1", "wifi: I2C data that cannot be: 0x100"},
      {"1634&group=5&value=8388608", "res:-1", "wifi: I2C data bytes: 0x02"},
      {"3426&group=5&value=8388608", "res:-1", "wifi: I2C register bytes: 0x03"},
      {"2402&group=5&value=8388608", "res:-1", "controller: bytes of register address: 0x02"},
      {"2376&group=5&value=889389056", "res:-1", "wifi: nothing on the I2C bus at 0x48"},
      {"-128&group=5&value=0", "res:-1", "wifi: unknown bits in I2C id 0xFFFFFF80"},
      {"512&group=4&value=0", "res:-1", "gpio: read of unknown port 0x2"},
      {"257&group=4&value=0", "res:-1", "wifi: GPIO read with a mask: 0x101"},
      {"1031&group=4&value=-1", "res:-1", "wifi: GPIO levels that cannot be: 0xFFFFFFFF"},
      {"2048&group=4&value=0", "res:-1", "wifi: unknown bits in GPIO id 0x800"},
      {"1378&group=6&value=0", "res:-1", "wifi: unknown group 0x06"},
      {"9963781&group=1&value=0", "res:-1", "wifi: unknown picture control 0x980905"},
      {"0&group=2&value=5", "res:-1", "wifi: unknown video mode 0x05"},
      {"1&group=2&value=0", "res:-1", "wifi: unknown video mode 0x00"},
      {"1032&group=4&value=0", "res:-1", "gpio: no outputs on port 0x0: pins 0x08"},
      {"1024&group=4&value=0", "res:-1", "gpio: no outputs on port 0x0: pins 0x00"},
      {"1296&group=4&value=0", "res:-1", "gpio: no outputs on port 0x1: pins 0x10", 0x9C0},
      {"1537&group=4&value=0", "res:-1", "gpio: no outputs on port 0x2: pins 0x01"},
      {"1029&group=4&value=2", "res:-1", "gpio: levels 0x02 outside the mask 0x05"},
  };
  for (const auto& expected : cases) {
    Camera camera(expected.productId);
    camera.gpio.touch(true);
    const WifiAnswer answer = WifiServer(camera).get(std::string(prefix) + expected.command);
    const bool isRefused = answer.body == "res:-1";
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body, expected.body) << expected.command;
    ASSERT_EQ(camera.violations.size(), isRefused ? 1U : 0U) << expected.command;
    EXPECT_EQ(isRefused ? camera.violations[0] : answer.description, expected.said);
  }
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
  EXPECT_EQ(camera.violations, Violations{});
}

TEST(WifiServer, TakesItsRequestsLiterally) {
  const std::string command = "/?action=commandcontrol&dest=0";
  std::vector<std::string> targets = {"", "/nothing", "/?action=snapshots",
                                      command.substr(1) + "plugin=0&id=1378&group=5&value=0"};
  for (const char* const rest :
       {"&plugin=0&id=1378&group=5&value=0", "plugin=0&id=01378&group=5&value=0",
        "plugin=0&id=+1378&group=5&value=0", "plugin=0&id=&group=5&value=0",
        "plugin=0&id=1378&group=5&value=0 ", "plugin=0&id=1378&group=5&value=4294967296",
        "plugin=0&id=1378&value=0&group=5"}) {
    targets.push_back(command + rest);
  }
  for (const std::string& target : targets) {
    Camera camera(0x970);
    EXPECT_EQ(WifiServer(camera).get(target).status, 404) << target;
    EXPECT_EQ(camera.violations.size(), 1U) << target;
  }
}

}  // namespace
}  // namespace qvx::simulator
