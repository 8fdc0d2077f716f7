#include "simulator/model/calibration.h"

#include <gtest/gtest.h>

#include <vector>

#include "simulator/model/product.h"

namespace qvx::simulator {
namespace {

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

}  // namespace
}  // namespace qvx::simulator
