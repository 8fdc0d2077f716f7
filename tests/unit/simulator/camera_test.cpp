// The parts of a camera: zoom ring with its encoder and calibration, pins, controller, lens drivers
// and lights.
#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <string>
#include <vector>

#include "simulator/model/calibration.h"
#include "simulator/model/camera.h"
#include "simulator/model/illumination.h"
#include "simulator/model/product.h"

namespace qvx::simulator {
namespace {

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

using enum CalibrationForm;

constexpr CalibrationForm everyForm[] = {line,       parabola, cubic,   bytes,
                                         hundredths, floats2,  floats3, floats4};

TEST(Calibration, RingRisesFromStopToStopAndIsFoundAgain) {
  for (const CalibrationForm form : everyForm) {
    SCOPED_TRACE(static_cast<int>(form));
    const Calibration& calibration = calibrationFor(form);
    const int first = quartersFor(calibration, 1), last = quartersFor(calibration, 1000);
    EXPECT_LE(magnificationAt(calibration, first), 6);
    EXPECT_GE(magnificationAt(calibration, last), 195);
    EXPECT_LE(last, 1023);
    for (int quarters = first; quarters < last; ++quarters) {
      const double here = magnificationAt(calibration, quarters);
      ASSERT_LT(here, magnificationAt(calibration, quarters + 1)) << quarters;
      ASSERT_EQ(quartersFor(calibration, here), quarters);
      ASSERT_EQ(quartersFor(calibration, here + 1e-3), quarters);
    }
  }
}

// Worked out by hand from the points on each curve.
TEST(Calibration, RegistersHoldWhatTheFirmwareStores) {
  const struct {
    CalibrationForm form;
    int kind, degree;
    std::size_t first;
    std::vector<int> registers;
  } cases[] = {
      // 1 at 6.25, 81 at 106.25, 161 at 206.25, 200 at 255
      {line, 255, 1, 0x60, {0xE8, 0xC3, 0xA4, 0x9F, 0xE4, 0xBE, 0xD0, 0x47}},
      {line, 255, 1, 0x68, {0x19, 0x00, 0xA9, 0x01, 0x39, 0x03, 0xFC, 0x03}},
      // 1 at 12.5, 55.25 at 100, 147.25 at 200, 205.25 at 250
      {parabola, 255, 2, 0x60, {0xE8, 0xC3, 0x95, 0x95, 0x85, 0xB9, 0x05, 0x48}},
      {parabola, 255, 2, 0x68, {0x32, 0x00, 0x90, 0x01, 0x20, 0x03, 0xE8, 0x03}},
      // 1 at 50, 35.8 at 100, 79.4 at 150, 202.6 at 250
      {cubic, 255, 3, 0x60, {0xE8, 0xC3, 0xFC, 0x8D, 0x04, 0x9F, 0xEA, 0x47}},
      {cubic, 255, 3, 0x68, {0xC8, 0x00, 0x90, 0x01, 0x58, 0x02, 0xE8, 0x03}},
      // 1 at 5, 51 at 105, 141 at 205
      {bytes, 255, 255, 0x40, {1, 5, 51, 105, 141, 205}},
      // 1.25 at 10, 73.25 at 110, 262.53 = 1 * 255 + 7.53 at 240
      {hundredths, 1, 255, 0x40, {0, 1, 25, 10, 0, 73, 25, 110, 1, 7, 53, 240}},
      // 0.00125 x x + 0.5 x - 1.5
      {floats4, 4, 255, 0x40, {0x0A, 0xD7, 0xA3, 0x3A, 0, 0, 0, 0x3F, 0, 0, 0xC0, 0xBF}},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(static_cast<int>(expected.form));
    Registers registers{};
    store(calibrationFor(expected.form), registers);
    EXPECT_EQ(registers[0xC3], expected.kind);
    EXPECT_EQ(registers[0xC5], expected.degree);
    const auto* const stored = registers.data() + expected.first;
    EXPECT_EQ(std::vector<int>(stored, stored + expected.registers.size()), expected.registers);
  }
}

using Bytes = std::vector<std::uint8_t>;

TEST(Controller, FeatureRegisterAgreesWithWhatIsBuiltIn) {
  for (std::uint16_t productId = 0x600; productId < 0xA00; ++productId) {
    const Product& product = productFor(productId);
    const Camera camera(productId);
    const Controller& controller = camera.controller;
    const bool hasZoom = product.magnification != CalibrationForm::none;
    const bool zeroAt40 = product.lens == Lens::zeroAt40 || product.lens == Lens::zeroAt40Wide;
    EXPECT_FALSE(hasZoom && zeroAt40) << std::hex << productId;
    if (controller.at(0x80) == erased) continue;
    EXPECT_EQ((controller.at(0x80) & 0x40) != 0, hasZoom) << std::hex << productId;
    EXPECT_EQ((controller.at(0x80) & 0x80) != 0, controller.at(0xCA) != erased)
        << std::hex << productId;
  }
}

TEST(I2cDevices, AcknowledgeWhatTheyHaveAndReportTheRest) {
  enum Kind { read, write };
  const struct {
    std::uint16_t productId;
    std::uint8_t address;
    Kind kind;
    Bytes reg, data;        // what is written, or what is read
    const char* violation;  // none: acknowledged
    double offset = 0;      // of the lens
    std::uint8_t direction = 1;
  } cases[] = {
      {0x970, 0x62, read, {0x80}, {0x56}, ""},
      {0x970, 0x62, read, {0x68}, {0x32, 0x00, 0x90, 0x01}, ""},
      {0x970, 0x62, read, {0xCA}, {0, 0}, "controller: read of unknown register 0xCB"},
      {0x970, 0x62, read, {0x37}, {0}, "controller: read of unknown register 0x37"},
      {0x970, 0x62, read, {0x12}, {0}, "controller: read of unknown register 0x12"},
      {0x9E4, 0x62, read, {0x12}, {31}, ""},  // has quadrants
      {0x970, 0x62, read, {}, {0}, "controller: bytes of register address: 0x00"},
      {0x970, 0x62, read, {0x00, 0x80}, {0}, "controller: bytes of register address: 0x02"},
      {0x970, 0x62, read, {0x80}, {}, "controller: no data for register 0x80"},
      {0x970, 0x62, write, {0x04}, {0x0F}, ""},
      {0x890, 0x62, write, {0x04}, {0x0F}, "controller: write of unknown register 0x04"},
      {0x970, 0x62, write, {0x60}, {0}, "controller: write of read-only register 0x60"},
      {0x970, 0x62, write, {3}, {1, 2}, "controller: write of several bytes from register 0x03"},
      {0x9E0, 0x62, write, {0x08}, {2}, ""},
      {0x9E0, 0x62, write, {0x08}, {3}, "controller: unknown lens direction 0x03"},
      {0x9C0, 0x62, write, {0x08}, {1}, "controller: write of unknown register 0x08"},
      {0x990, 0x46, write, {}, {118 + 30}, "", 30},
      {0x985, 0x46, write, {0x40}, {110 - 5}, "", -5},
      {0x990, 0x46, write, {0x50}, {0}, "", -118},
      {0x990, 0x46, write, {0x41}, {1}, "lens: unknown register 0x41"},
      {0x990, 0x46, write, {0, 0}, {1}, "lens: unknown register 0x00"},
      {0x990, 0x46, write, {}, {1, 2}, "lens: bytes of position: 0x02"},
      {0x990, 0x46, read, {}, {0}, "lens: read of bytes: 0x01"},
      {0x9E0, 0x18, write, {0x06}, {0x91}, "", 5},
      {0x9E0, 0x18, write, {0x06}, {0x91}, "", -5, 2},
      {0x9E0, 0x18, write, {0xC6}, {0x91}, "", 5},
      {0x9E0, 0x18, write, {0x06}, {0x90}, "lens: coil word without its mark: 0x90"},
      {0x9E0, 0x18, write, {}, {0x06, 0x91}, "lens: bytes of coil word: 0x02"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(testing::Message() << std::hex << row.productId << " row " << &row - cases);
    Camera camera(row.productId);
    camera.controller.set(0x08, row.direction);
    I2cDevice& device = *camera.placeAt(row.address)->device;
    const bool isFine = *row.violation == 0;
    Bytes found(row.data.size());
    EXPECT_EQ(row.kind == write ? device.write(row.reg, row.data) : device.read(row.reg, found),
              isFine);
    EXPECT_EQ(camera.violations, isFine ? Violations{} : Violations{row.violation});
    EXPECT_EQ(camera.lens.offset, row.offset);
    if (!isFine || row.address != controllerAddress) continue;
    if (row.kind == write) device.read(row.reg, found);
    EXPECT_EQ(found, row.data);
  }
  EXPECT_FALSE(Camera(0x970).placeAt(0x46)) << "has no lens";
  EXPECT_FALSE(Camera(0x990).placeAt(0x18)) << "has no voice coil";
}

TEST(Controller, FractionBelongsToThePositionReadBefore) {
  Violations violations;
  Controller controller(0x970, violations);
  const auto read = [&](std::uint8_t reg) {
    std::uint8_t value = 0;
    controller.read({&reg, 1}, {&value, 1});
    return int{value};
  };
  controller.set(0x01, 10);
  controller.set(0x02, 0xC0);
  EXPECT_EQ(read(0x01), 10);
  controller.set(0x02, 0x00);
  EXPECT_EQ(read(0x02), 0xC0);
  EXPECT_EQ(read(0x02), 0x00);
}

struct Write {
  std::uint8_t reg, value;
};

TEST(Illumination, FollowsTheRegisters) {
  const struct {
    const char* what;
    std::uint16_t productId;
    std::vector<Write> writes;
    double ring, axial, aim;
  } cases[] = {
      {"power-up", 0x9E0, {}, 0, 0, 0},
      {"half of the segments", 0x970, {{4, 5}, {3, 6}}, 0.5, 0, 0},
      {"the level before the switch", 0x970, {{3, 3}, {4, 15}}, 0.5, 0, 0},
      {"ring off, level kept", 0x970, {{3, 6}, {4, 15}, {4, 16}}, 0, 0, 0},
      {"axial beside the ring", 0x970, {{4, 15}, {3, 6}, {3, 13}}, 1, 1, 0},
      {"axial dark again", 0x970, {{3, 13}, {3, 7}}, 0, 0, 0},
      {"axial needs its switch", 0x9E0, {{3, 38}}, 0, 0, 0},
      {"axial with its switch", 0x9E0, {{4, 24}, {3, 35}}, 0, 0.5, 0},
      {"and without it again", 0x9E0, {{4, 24}, {3, 38}, {4, 32}}, 0, 0, 0},
      {"aim counts backwards", 0x9E0, {{4, 40}, {3, 70}}, 0, 0, 1},
      {"aim off", 0x9E0, {{4, 40}, {3, 70}, {4, 48}}, 0, 0, 0},
      {"finer levels with quadrants", 0x9E2, {{4, 15}, {3, 31}}, 1, 0, 0},
      {"a plain ring has none of them", 0x9E0, {{4, 15}, {3, 31}}, 0, 0, 0},
      {"a dark quadrant", 0x9E2, {{4, 15}, {3, 31}, {0x13, 0}}, 0.75, 0, 0},
      {"quadrants by themselves", 0x998, {{4, 15}, {3, 49}}, 1, 0, 0},
      {"no such switch", 0x970, {{4, 15}, {3, 6}, {4, 17}}, 1, 0, 0},
  };
  for (const auto& row : cases) {
    Illumination lights(row.productId);
    for (const Write& write : row.writes) lights.take(write.reg, write.value);
    const auto lit = lights.quadrants();
    EXPECT_DOUBLE_EQ(std::reduce(lit.begin(), lit.end()) / 4, row.ring) << row.what;
    EXPECT_DOUBLE_EQ(lights.axial(), row.axial) << row.what;
    EXPECT_DOUBLE_EQ(lights.aim(), row.aim) << row.what;
  }
}

}  // namespace
}  // namespace qvx::simulator
