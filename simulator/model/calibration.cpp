#include "simulator/model/calibration.h"

#include <bit>
#include <cstddef>

#include "simulator/model/controller.h"

namespace qvx::simulator {

namespace {

namespace reg = controller_register;

int quarters(double position) {
  return static_cast<int>(position * quartersPerUnit + 0.5);
}

std::uint32_t nearest(double value) {
  return static_cast<std::uint32_t>(value + 0.5);
}

double pointAt(const Calibration& calibration, std::size_t point) {
  return magnificationAt(calibration, quarters(calibration.positions[point]));
}

void storeLowByteFirst(Registers& registers, std::size_t first, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) {
    registers[first + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (8 * i));
  }
}

// A decimal floating-point number: 14 bits of mantissa, above them the power of ten to divide by,
// as high as possible.
std::uint32_t decimalFloat(double value) {
  constexpr std::uint32_t maxMantissa = 0x3FFF, maxExponent = 3;
  std::uint32_t exponent = 0;
  while (exponent < maxExponent && nearest(value * 10) <= maxMantissa) {
    value *= 10;
    ++exponent;
  }
  return exponent << 14 | nearest(value);
}

void storeNothing(const Calibration& /*calibration*/, Registers& /*registers*/) {}

void storeFourPoints(const Calibration& calibration, Registers& registers) {
  for (std::size_t point = 0; point < 4; ++point) {
    storeLowByteFirst(registers, reg::fourPointsY + 2 * point,
                      decimalFloat(pointAt(calibration, point)), 2);
    storeLowByteFirst(registers, reg::fourPointsX + 2 * point,
                      static_cast<std::uint32_t>(quarters(calibration.positions[point])), 2);
  }
}

void storeBytes(const Calibration& calibration, Registers& registers) {
  for (std::size_t point = 0; point < 3; ++point) {
    std::uint8_t* const stored = &registers[reg::threePoints + 2 * point];
    stored[0] = static_cast<std::uint8_t>(nearest(pointAt(calibration, point)));
    stored[1] = static_cast<std::uint8_t>(nearest(calibration.positions[point]));
  }
}

// The high byte counts 255 (not 256), so that neither byte reaches the value of an erased register.
void storeHundredths(const Calibration& calibration, Registers& registers) {
  constexpr std::uint32_t highWeight = 255;
  for (std::size_t point = 0; point < 3; ++point) {
    const std::uint32_t hundredths = nearest(pointAt(calibration, point) * 100);
    const std::uint32_t whole = hundredths / 100;
    std::uint8_t* const stored = &registers[reg::threePoints + 4 * point];
    stored[0] = static_cast<std::uint8_t>(whole / highWeight);
    stored[1] = static_cast<std::uint8_t>(whole % highWeight);
    stored[2] = static_cast<std::uint8_t>(hundredths % 100);
    stored[3] = static_cast<std::uint8_t>(nearest(calibration.positions[point]));
  }
}

// The highest power first.
void storeFloats(const Calibration& calibration, Registers& registers) {
  for (std::size_t i = 0; i < 3; ++i) {
    const auto coefficient = static_cast<float>(calibration.coefficients[2 - i]);
    storeLowByteFirst(registers, reg::threePoints + 4 * i,
                      std::bit_cast<std::uint32_t>(coefficient), 4);
  }
}

using enum CalibrationForm;

// In the order of CalibrationForm. The stored points are free of rounding errors, so that a client
// computes exactly this curve from them. Every ring covers x6 to x195 at least.
constexpr Calibration calibrations[] = {
    {none, erased, erased, storeNothing, {}, {}},
    {line, 1, erased, storeFourPoints, {-4, 0.8}, {6.25, 106.25, 206.25, 255}},
    {parabola, 2, erased, storeFourPoints, {-4.75, 0.44, 0.0016}, {12.5, 100, 200, 250}},
    {cubic, 3, erased, storeFourPoints, {-27.4, 0.52, 0.0008, 0.0000032}, {50, 100, 150, 250}},
    {bytes, erased, erased, storeBytes, {-0.45, 0.28, 0.002}, {5, 105, 205, 255}},
    {hundredths, erased, 1, storeHundredths, {-2.43, 0.336, 0.0032}, {10, 110, 240, 255}},
    {floats2, erased, 2, storeFloats, {1, 0.3, 0.002}, {0, 100, 200, 250}},
    {floats3, erased, 3, storeFloats, {1, 1.2, -0.0016}, {0, 100, 200, 250}},
    {floats4, erased, 4, storeFloats, {-1.5, 0.5, 0.00125}, {5, 100, 200, 255}},
};

}  // namespace

const Calibration& calibrationFor(CalibrationForm form) {
  return calibrations[static_cast<std::size_t>(form)];
}

double magnificationAt(const Calibration& calibration, int position_quarters) {
  const double x = static_cast<double>(position_quarters) / quartersPerUnit;
  const auto& c = calibration.coefficients;
  return c[0] + x * (c[1] + x * (c[2] + x * c[3]));
}

int quartersFor(const Calibration& calibration, double magnification) {
  int low = quarters(calibration.positions.front());
  int high = quarters(calibration.positions.back());
  while (high - low > 1) {
    const int middle = (low + high) / 2;
    (magnificationAt(calibration, middle) <= magnification ? low : high) = middle;
  }
  const double below = magnification - magnificationAt(calibration, low);
  const double above = magnificationAt(calibration, high) - magnification;
  return below <= above ? low : high;
}

void store(const Calibration& calibration, Registers& registers) {
  registers[reg::calibrationDegree] = calibration.degree;
  registers[reg::calibrationKind] = calibration.kind;
  calibration.storePoints(calibration, registers);
}

}  // namespace qvx::simulator
