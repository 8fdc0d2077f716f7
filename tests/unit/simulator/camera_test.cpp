#include "simulator/model/camera.h"

#include <gtest/gtest.h>

#include <string>

namespace qvx::simulator {
namespace {

TEST(ZoomMotion, IsReadStrictly) {
  for (const char* const text :
       {"", "x", "0.9", "-5", "63x", "1.2.3", ".5", "1:200", "1:200/", "1:200/10", "1:200/0s",
        "1:200/10sx", "1:/10s", ":200/10s", "1234567", "1:200/1e3s"}) {
    EXPECT_FALSE(zoomMotionFrom(text)) << text;
  }
}

TEST(Camera, RingFollowsTheMotion) {
  // The line's encoder: x1 at 6.25, 0.2 per quarter of a unit, stops at x1 and x200.
  const struct {
    const char* motion;
    std::uint64_t after_ms;
    double magnification;
    int position, fraction;
    std::uint16_t productId = 0x930;  // 0x9C7 has no ring
  } cases[] = {
      {"1:200/10s", 0, 1, 6, 0x40},
      {"1:200/10s", 10'000, 200, 255, 0x00},
      {"1:200/10s", 20'000, 1, 6, 0x40},
      {"1:200/10s", 15'000, 100.4, 130, 0x80},
      {"10:60/5s", 1'000, 20, 30, 0x00},
      {"10:60/5s", 1'011, 20.2, 30, 0x40},
      {"10:60/5s", 1'009, 20, 30, 0x00},
      {"60:10/2.5s", 500, 50, 67, 0x80},
      {"500", 0, 200, 255, 0x00},
      {"63.4", 123'456, 63.4, 84, 0x40},
      {"1.2", 0, 1.2, 6, 0x80},
      {"1:9/100ms", 4'000'000'100, 9, 16, 0x40},
      {"1:200/1s", 500, 0, 0, 0x00, 0x9C7},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(std::string(expected.motion) + " after " + std::to_string(expected.after_ms));
    Camera camera(expected.productId);
    camera.advanceTo(77);  // a motion starts when it is set
    camera.setZoom(zoomMotionFrom(expected.motion).value());
    camera.advanceTo(77 + expected.after_ms);
    EXPECT_NEAR(camera.magnification(), expected.magnification, 0.05);
    EXPECT_EQ(camera.controller.at(0x01), expected.position);
    EXPECT_EQ(camera.controller.at(0x02), expected.fraction);
  }
}

TEST(Gpio, ButtonReadsAsTheFamilySays) {
  const struct {
    std::uint16_t productId;
    const char* steps;  // press, release, acknowledge
    int levels;
  } cases[] = {
      {0x970, "", 0x00},   {0x970, "p", 0x18},   {0x970, "pr", 0x18},
      {0x970, "pa", 0x08}, {0x970, "par", 0x00}, {0x970, "pap", 0x18},
      {0x9C0, "p", 0x80},  {0x920, "p", 0x80},   {0x870, "pr", 0x00},
  };
  for (const auto& expected : cases) {
    Violations violations;
    Gpio gpio(expected.productId, violations);
    for (const char step : std::string(expected.steps)) {
      if (step == 'p') gpio.touch(true);
      if (step == 'r') gpio.touch(false);
      if (step == 'a') gpio.write(buttonPort, 0x10, 0);
    }
    EXPECT_EQ(gpio.read(buttonPort), expected.levels) << std::hex << expected.productId;
    EXPECT_EQ(violations, Violations{});
  }
}

TEST(Gpio, WritesChangeThePinsInTheMaskOnly) {
  Violations violations;
  Gpio gpio(0x9C0, violations);
  gpio.write(lightPort, 0x07, 0x06);
  gpio.write(lightPort, 0x05, 0x01);
  EXPECT_FALSE(gpio.write(lightPort, 0x05, 0x02)) << "a level outside the mask";
  EXPECT_EQ(gpio.read(lightPort), 0x03);
}

}  // namespace
}  // namespace qvx::simulator
