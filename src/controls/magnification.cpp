#include "controls/magnification.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "controls/device_selection.h"
#include "base/single_precision.h"
#include "models/families.h"
#include "platform/timers.h"
#include "state/kept_state.h"
#include "transport/controller.h"

namespace qvx {

namespace {

using namespace controller;

constexpr std::uint32_t pauseAfterCalibrationRead_ms = 50;
constexpr float lowestRate = 1.0F;

std::uint32_t readCalibration(std::uint32_t reg) {
  return ReadFromPIC(nTmpIdx, reg);
}

std::uint32_t readSlowly(std::uint32_t reg) {
  const std::uint32_t value = readCalibration(reg);
  platform::pause(pauseAfterCalibrationRead_ms);
  return value;
}

struct FourPoints {
  std::array<float, 4> x, y;
};

// Always all eight values, even where a fit uses fewer.
FourPoints readFourPoints() {
  constexpr int positions = 0, magnifications = 1;
  FourPoints points{};
  for (std::uint32_t i = 0; i < 4; ++i) {
    points.x[i] = GetMag4PointsRawData(positions, fourPointsX + 2 * i);
  }
  for (std::uint32_t i = 0; i < 4; ++i) {
    points.y[i] = GetMag4PointsRawData(magnifications, fourPointsY + 2 * i);
  }
  return points;
}

// A 3x3 determinant, expanded along the first row.
template <class T>
T determinant3(T m11, T m12, T m13, T m21, T m22, T m23, T m31, T m32, T m33) {
  return m11 * (m22 * m33 - m23 * m32) - m12 * (m21 * m33 - m23 * m31) +
         m13 * (m21 * m32 - m22 * m31);
}

// The nine factors of the controller's three-point fits, from the transposed matrix. The sixth
// takes t33 where a textbook has t32: the calibration was made with this formula.
template <class T>
std::array<T, 9> fitFactors(T t11, T t12, T t13, T t21, T t22, T t23, T t31, T t32, T t33) {
  return {t22 * t33 - t23 * t32,    -(t21 * t33 - t23 * t31), t21 * t32 - t22 * t31,
          -(t12 * t33 - t13 * t32), t11 * t33 - t13 * t31,    -(t11 * t33 - t12 * t31),
          t12 * t23 - t13 * t22,    -(t11 * t23 - t21 * t13), t11 * t22 - t12 * t21};
}

float nonZero(float determinant) {
  return determinant == 0.0F ? 1.0F : determinant;
}

// The integer fit computes in 32 bits that wrap; its results are signed.
float signedResult(std::uint32_t wrapped) {
  return static_cast<float>(static_cast<std::int32_t>(wrapped));
}

float integerSum(std::uint32_t c0, std::uint32_t c1, std::uint32_t c2) {
  return signedResult(c0 * ul890y1 + c1 * ul890y2 + c2 * ul890y3);
}

float hundredths(std::uint32_t high, std::uint32_t low, std::uint32_t fraction) {
  // The high byte weighs 255: the calibration was written that way.
  return static_cast<float>(static_cast<double>(high * 255 + low) +
                            static_cast<double>(fraction) / 100.0);
}

// A stored coefficient at four registers; -1 when none is stored.
float readCoefficient(std::uint32_t first) {
  std::array<int, 4> bytes{};
  for (std::uint32_t i = 0; i < 4; ++i) bytes[i] = static_cast<int>(readCalibration(first + i));
  const bool stored = std::any_of(bytes.begin(), bytes.end(),
                                  [](int byte) { return byte != static_cast<int>(notPresent); });
  return stored ? ChangePicData2Float(bytes) : -1.0F;
}

float fractionOf(std::uint32_t code) {
  switch (code) {
    case 0x40:
      return 0.25F;
    case 0x80:
      return 0.50F;
    case 0xC0:
      return 0.75F;
    default:
      return 0.0F;
  }
}

// Terms without a coefficient (degrees above 9) are left out.
float polynomialAt(float x) {
  const int degree = static_cast<int>(ulC5 & 15);
  float sum = 0.0F;
  for (int i = 0; i <= degree && i < static_cast<int>(fabc.size()); ++i) {
    sum += fabc[static_cast<std::size_t>(i)] * pow(x, i);
  }
  return sum;
}

float rateAt(float x) {
  const float rate = ulC5 != notPresent ? polynomialAt(x) : f890a * x * x + f890b * x + f890c;
  return rate <= lowestRate ? lowestRate : rate;
}

float meanOfWindow() {
  return static_cast<float>(static_cast<double>(fRate5s + fRate5s1) / 10.0);
}

// Publishes the mean of ten samples on the fifth and tenth tick of the window, the sample itself on
// the others. In the very first window the second half is still empty, and the mean of ten is of
// five samples only.
void smooth() {
  using count_890_rate::k;
  if (k < 5) {
    fRate5s += f890Rate;
  } else {
    fRate5s1 += f890Rate;
  }
  if (k % 5 == 4) f890Rate = meanOfWindow();
  k = static_cast<std::uint8_t>((k + 1) % 10);
  if (k == 0) fRate5s = 0;
  if (k == 5) fRate5s1 = 0;
}

}  // namespace

float GetMag4PointsRawData(int mode, std::uint32_t reg) {
  const std::uint32_t low = readSlowly(reg);
  const std::uint32_t high = readSlowly(reg + 1);
  const auto value = [low](std::uint32_t upper) {
    return static_cast<std::int32_t>(upper * 256 + low);
  };
  if (mode == 0) return static_cast<float>(value(high) / 4.0);
  const int exponent = static_cast<int>((high & 0xC0) >> 6);
  return static_cast<float>(value(high & 0x3F)) / pow(10.0F, exponent);
}

float ChangePicData2Float(const std::array<int, 4>& bytes) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(bytes[i]); };
  return std::bit_cast<float>((byte(3) << 24) + (byte(2) << 16) + (byte(1) << 8) + byte(0));
}

void CountMag_ab() {
  const auto [x, y] = readFourPoints();
  if (x[1] - x[0] == 0.0F) return;
  fabc[2] = 0;
  fabc[3] = 0;
  fabc[1] = (y[1] - y[0]) / (x[1] - x[0]);
  fabc[0] = y[0] - fabc[1] * x[0];
}

void CountMag_abc() {
  const auto [x, y] = readFourPoints();
  const float m11 = x[0] * x[0], m12 = x[0], m13 = 1.0F;
  const float m21 = x[1] * x[1], m22 = x[1], m23 = 1.0F;
  const float m31 = x[2] * x[2], m32 = x[2], m33 = 1.0F;
  const float det = nonZero(determinant3(m11, m12, m13, m21, m22, m23, m31, m32, m33));
  const auto solve = [&y = y, det](float a1, float a2, float a3) {
    return (a1 * y[0] + a2 * y[1] + a3 * y[2]) / det;
  };
  fabc[3] = 0;
  fabc[2] = solve(m22 * m33 - m23 * m32, -(m12 * m33 - m13 * m32), m12 * m23 - m13 * m22);
  fabc[1] = solve(-(m21 * m33 - m23 * m31), m11 * m33 - m13 * m31, -(m11 * m23 - m13 * m21));
  fabc[0] = solve(m21 * m32 - m22 * m31, -(m11 * m32 - m12 * m31), m11 * m22 - m12 * m21);
}

void CountMag_abcd() {
  const auto [x, y] = readFourPoints();
  for (std::size_t i = 0; i < 4; ++i) {
    fArrIn[4 * i] = x[i] * x[i] * x[i];
    fArrIn[4 * i + 1] = x[i] * x[i];
    fArrIn[4 * i + 2] = x[i];
    fArrIn[4 * i + 3] = 1.0F;
  }
  const float det = Det(fArrIn);
  Adjoint(fArrIn, fArrOut);
  if (det == 0.0F) return;
  const auto solve = [&y = y, det](std::size_t row) {
    const float* a = &fArrOut[4 * row];
    return (a[0] * y[0] + a[1] * y[1] + a[2] * y[2] + a[3] * y[3]) / det;
  };
  fabc[4] = 0;
  fabc[3] = f890a = solve(0);
  fabc[2] = f890b = solve(1);
  fabc[1] = f890c = solve(2);
  fabc[0] = f890d = solve(3);
}

float Minor(const std::array<float, 16>& m, int r0, int r1, int r2, int c0, int c1, int c2) {
  const auto at = [&m](int row, int column) {
    return m[static_cast<std::size_t>(4 * row + column)];
  };
  return determinant3(at(r0, c0), at(r0, c1), at(r0, c2), at(r1, c0), at(r1, c1), at(r1, c2),
                      at(r2, c0), at(r2, c1), at(r2, c2));
}

float Det(const std::array<float, 16>& m) {
  return m[0] * Minor(m, 1, 2, 3, 1, 2, 3) - m[1] * Minor(m, 1, 2, 3, 0, 2, 3) +
         m[2] * Minor(m, 1, 2, 3, 0, 1, 3) - m[3] * Minor(m, 1, 2, 3, 0, 1, 2);
}

void Adjoint(const std::array<float, 16>& m, std::array<float, 16>& adjugate) {
  // The three indices that remain when one is struck out.
  constexpr int others[4][3] = {{1, 2, 3}, {0, 2, 3}, {0, 1, 3}, {0, 1, 2}};
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      const int* r = others[column];
      const int* c = others[row];
      const float minor = Minor(m, r[0], r[1], r[2], c[0], c[1], c[2]);
      adjugate[static_cast<std::size_t>(4 * row + column)] =
          (row + column) % 2 == 0 ? minor : -minor;
    }
  }
}

void Count890abc() {
  ul890y1 = readCalibration(threePoints);
  ul890x1 = readCalibration(threePoints + 1);
  ul890y2 = readCalibration(threePoints + 2);
  ul890x2 = readCalibration(threePoints + 3);
  ul890y3 = readCalibration(threePoints + 4);
  ul890x3 = readCalibration(threePoints + 5);
  const std::uint32_t x1 = ul890x1, x2 = ul890x2, x3 = ul890x3;
  const std::uint32_t square1 = x1 * x1, square2 = x2 * x2, square3 = x3 * x3;
  n890det = nonZero(
      signedResult(determinant3<std::uint32_t>(square1, x1, 1, square2, x2, 1, square3, x3, 1)));
  const auto asInt = [](std::uint32_t value) { return static_cast<int>(value); };
  n890M11 = asInt(square1), n890M12 = asInt(square2), n890M13 = asInt(square3);
  n890M21 = asInt(x1), n890M22 = asInt(x2), n890M23 = asInt(x3);
  n890M31 = n890M32 = n890M33 = 1;
  const auto c = fitFactors<std::uint32_t>(square1, square2, square3, x1, x2, x3, 1, 1, 1);
  f890a = integerSum(c[0], c[1], c[2]) / n890det;
  f890b = integerSum(c[3], c[4], c[5]) / n890det;
  f890c = integerSum(c[6], c[7], c[8]) / n890det;
}

void Count890L2Uabc() {
  std::uint32_t* const stored[] = {&ul890m10, &ul890m11, &ul890m12, &ul890x1,  &ul890m20, &ul890m21,
                                   &ul890m22, &ul890x2,  &ul890m30, &ul890m31, &ul890m32, &ul890x3};
  std::uint32_t reg = threePoints;
  for (std::uint32_t* value : stored) *value = readCalibration(reg++);
  f890y1 = hundredths(ul890m10, ul890m11, ul890m12);
  f890y2 = hundredths(ul890m20, ul890m21, ul890m22);
  f890y3 = hundredths(ul890m30, ul890m31, ul890m32);
  const auto x1 = static_cast<float>(ul890x1);
  const auto x2 = static_cast<float>(ul890x2);
  const auto x3 = static_cast<float>(ul890x3);
  f890det = nonZero(determinant3<float>(x1 * x1, x1, 1, x2 * x2, x2, 1, x3 * x3, x3, 1));
  f890M11 = x1 * x1, f890M12 = x2 * x2, f890M13 = x3 * x3;
  f890M21 = x1, f890M22 = x2, f890M23 = x3;
  f890M31 = f890M32 = f890M33 = 1.0F;
  const auto c =
      fitFactors(f890M11, f890M12, f890M13, f890M21, f890M22, f890M23, f890M31, f890M32, f890M33);
  f890a = (c[0] * f890y1 + c[1] * f890y2 + c[2] * f890y3) / f890det;
  f890b = (c[3] * f890y1 + c[4] * f890y2 + c[5] * f890y3) / f890det;
  f890c = (c[6] * f890y1 + c[7] * f890y2 + c[8] * f890y3) / f890det;
}

void Get890abc() {
  ul890m10 = readCalibration(threePoints);
  f890a = readCoefficient(threePoints);
  f890b = readCoefficient(threePoints + 4);
  f890c = readCoefficient(threePoints + 8);
}

void loadMagnificationCalibration() {
  if (ulC5 != notPresent) {
    switch (ulC5 & 15) {
      case 1:
        return CountMag_ab();
      case 2:
        return CountMag_abc();
      case 3:
        return CountMag_abcd();
      default:
        return;  // a degree without a fit keeps the coefficients as they are
    }
  }
  switch (ulC3) {
    case 1:
      return Count890L2Uabc();
    case 2:
    case 3:
    case 4:
      return Get890abc();
    default:
      return Count890abc();
  }
}

void Count890Rate() {
  const std::uint32_t position = readCalibration(encoderPosition);
  const std::uint32_t fraction = readCalibration(encoderFraction);
  const float x = static_cast<float>(position) + fractionOf(fraction);
  f890PreMag = 0.0F;
  f890Rate = rateAt(x);
  count_890_rate::fRatePre = x;
  smooth();
  if (count_890_rate::k % 5 == 0 && ulC3 == 3 && f890Rate <= 0.0F) f890Rate = 0.0F;
}

double fieldOfView(int deviceIndex, double magnification) {
  selectProductId(deviceIndex);
  const auto pixelFactor = []() -> double {
    if (isVK7xxxSeries(nPid) || isVK7xxxR4Series(nPid) || isVK73xxxSeries(nPid)) {
      return 0.2744 * 2592 / 640;
    }
    if (isVK4xxxSeries(nPid) || within<range(0x9E0, 0x9E6)>(nPid)) return 0.5555 * 1280 / 640;
    if (isVK3xxxR4Series(nPid) || isVR3xxxSeries(nPid)) return 1.19048 * 640 / 640;
    return 1.0;
  }();
  // Widths are relative to the reference image of 640 pixels, the only one there is.
  constexpr double reference = 640.0, scale = 640.0 / reference;
  return scale * reference * (0.55 * pixelFactor / magnification) * 1000.0 *
         std::sqrt(scale * scale);
}

}  // namespace qvx
