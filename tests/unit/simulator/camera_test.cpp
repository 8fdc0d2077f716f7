#include "simulator/model/camera.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qvx::simulator {
namespace {

TEST(ZoomMotion, IsReadStrictly) {
  const struct {
    const char* text;
    double from, to;
    std::uint32_t sweep_ms;
  } valid[] = {
      {"63", 63, 63, 0},
      {"1.5", 1.5, 1.5, 0},
      {"1:200/10s", 1, 200, 10'000},
      {"200:1/2.5s", 200, 1, 2'500},
      {"20:40/250ms", 20, 40, 250},
  };
  for (const auto& expected : valid) {
    SCOPED_TRACE(expected.text);
    const auto motion = zoomMotionFrom(expected.text);
    ASSERT_TRUE(motion);
    EXPECT_DOUBLE_EQ(motion->from, expected.from);
    EXPECT_DOUBLE_EQ(motion->to, expected.to);
    EXPECT_EQ(motion->sweep_ms, expected.sweep_ms);
  }
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
  } cases[] = {
      {"1:200/10s", 0, 1, 6, 0x40},
      {"1:200/10s", 10'000, 200, 255, 0x00},
      {"1:200/10s", 20'000, 1, 6, 0x40},
      {"1:200/10s", 15'000, 100.4, 130, 0x80},
      {"10:60/5s", 1'000, 20, 30, 0x00},
      {"10:60/5s", 1'011, 20.2, 30, 0x40},
      {"10:60/5s", 1'009, 20, 30, 0x00},
      {"60:10/5s", 1'000, 50, 67, 0x80},
      {"500", 0, 200, 255, 0x00},
      {"63.4", 123'456, 63.4, 84, 0x40},
      {"1:9/100ms", 4'000'000'100, 9, 16, 0x40},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(std::string(expected.motion) + " after " + std::to_string(expected.after_ms));
    Camera camera(0x930);
    camera.advanceTo(77);  // a motion starts when it is set
    camera.setZoom(*zoomMotionFrom(expected.motion));
    camera.advanceTo(77 + expected.after_ms);
    EXPECT_NEAR(camera.magnification(), expected.magnification, 0.05);
    EXPECT_EQ(camera.controller().at(0x01), expected.position);
    EXPECT_EQ(camera.controller().at(0x02), expected.fraction);
  }
}

TEST(Camera, WithoutARingIgnoresTheMotion) {
  Camera camera(0x9C7);
  camera.setZoom({1, 200, 1000});
  camera.advanceTo(500);
  EXPECT_EQ(camera.magnification(), 0);
  EXPECT_EQ(camera.controller().at(0x01), 0);
}

TEST(Gpio, ButtonReadsAsTheFamilySays) {
  enum Step { press, release, acknowledge };
  const struct {
    std::uint16_t productId;
    std::vector<Step> steps;
    int levels;
  } cases[] = {
      {0x970, {}, 0x00},
      {0x970, {press}, 0x18},
      {0x970, {press, release}, 0x18},
      {0x970, {press, acknowledge}, 0x08},
      {0x970, {press, acknowledge, release}, 0x00},
      {0x970, {press, acknowledge, press}, 0x18},
      {0x9C0, {press}, 0x80},
      {0x920, {press}, 0x80},
      {0x870, {press, release}, 0x00},
  };
  for (const auto& expected : cases) {
    Violations violations;
    Gpio gpio(expected.productId, violations);
    for (const Step step : expected.steps) {
      if (step == press) gpio.pressButton();
      if (step == release) gpio.releaseButton();
      if (step == acknowledge) gpio.write(buttonPort, 0x10, 0);
    }
    EXPECT_EQ(gpio.read(buttonPort), expected.levels) << std::hex << expected.productId;
    EXPECT_EQ(violations.count(), 0U);
  }
}

TEST(Gpio, WritesChangeThePinsInTheMaskOnly) {
  const struct {
    std::uint8_t port, mask, levels;
    int lights;  // after the write, 0x06 before
    const char* violation;
  } cases[] = {
      {0, 0x05, 0x01, 0x03, ""},
      {0, 0x07, 0x00, 0x00, ""},
      {0, 0x05, 0x02, 0x06, "gpio: levels 0x02 outside the mask 0x05"},
      {0, 0x08, 0x00, 0x06, "gpio: no outputs on port 0x0: pins 0x08"},
      {0, 0x00, 0x00, 0x06, "gpio: no outputs on port 0x0: pins 0x00"},
      {1, 0x10, 0x00, 0x06, "gpio: no outputs on port 0x1: pins 0x10"},  // latches nothing
      {2, 0x01, 0x00, 0x06, "gpio: no outputs on port 0x2: pins 0x01"},
  };
  for (const auto& expected : cases) {
    Violations violations;
    Gpio gpio(0x9C0, violations);
    gpio.write(lightPort, 0x07, 0x06);
    EXPECT_EQ(gpio.write(expected.port, expected.mask, expected.levels), *expected.violation == 0);
    EXPECT_EQ(gpio.read(lightPort), expected.lights);
    EXPECT_EQ(violations[0], expected.violation);
  }
}

}  // namespace
}  // namespace qvx::simulator
