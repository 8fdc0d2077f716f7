#include "controls/magnification.h"

#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "qvx64/api.h"
#include "state/kept_state.h"
#include "tests/support/library.h"
#include "tests/support/wifi_registers.h"

namespace qvx::tests {
namespace {

class Magnification : public LibraryTest {
 protected:
  Magnification() {
    nTmpIdx = wifiDeviceIndex;
    machine().wifi = camera.server();
  }

  // Two-byte values, low byte first, from a register on.
  void storeWords(int reg, std::array<int, 4> values) {
    for (const int value : values)
      storeBytes(std::exchange(reg, reg + 2), {value & 0xFF, value >> 8});
  }

  void storeBytes(int reg, const std::vector<int>& bytes) {
    for (const int byte : bytes) camera.values[reg++] = byte;
  }

  void load(std::uint32_t kind, std::uint32_t degree) {
    ulC3 = kind;
    ulC5 = degree;
    loadMagnificationCalibration();
  }

  double sampleAt(int position, int fraction) {
    camera.values[1] = position;
    camera.values[2] = fraction;
    Count890Rate();
    return GetMAG(90);
  }

  WifiRegisters camera;
};

constexpr int hundredth = 2 << 14;  // a magnification's exponent, in its upper two bits
constexpr int tenth = 1 << 14;

// Encoder positions are stored in quarters: 40 is 10.0. Before each fit, fabc is 7, 8, 9, 10, 11.
TEST_F(Magnification, FitsThroughStoredPoints) {
  using Words = std::array<int, 4>;
  const Rows<std::uint32_t, Words, Words, std::array<double, 5>> rows = {
      // 120.00 at 260, 45.0 at 300
      {0xF1, {1040, 1200, 0, 0}, {12000 | hundredth, 450 | tenth, 0, 0}, {607.5, -1.875, 0, 0, 11}},
      {1, {40, 40, 0, 0}, {1, 2, 3, 4}, {7, 8, 9, 10, 11}},  // through one position
      // 60, 210, 820 at 10, 20, 40. By divided differences:
      // (210-60)/10 = 15, (820-210)/20 = 30.5, (30.5-15)/30 = 31/60.
      {0xF2,
       {40, 80, 160, 0},
       {6000 | hundredth, 210, 820, 0},
       {60 - 150 + 200 * 31.0 / 60, 15 - 30 * 31.0 / 60, 31.0 / 60, 0, 11}},
      {2, {40, 40, 80, 0}, {10, 20, 30, 0}, {20000, -3000, 100, 0, 11}},  // divided by 1
      // x^3 + 2 x^2 + 3 x + 4 at 1 to 4
      {0x13, {4, 8, 12, 16}, {10, 26, 58, 112}, {4, 3, 2, 1, 0}},
      {3, {4, 4, 12, 16}, {10, 26, 58, 112}, {7, 8, 9, 10, 11}},  // has no solution
      {4, {4, 8, 12, 16}, {10, 26, 58, 112}, {7, 8, 9, 10, 11}},  // no such degrees
      {0, {4, 8, 12, 16}, {10, 26, 58, 112}, {7, 8, 9, 10, 11}}};
  for (const auto& [degree, positions, magnifications, expected] : rows) {
    fabc = {7, 8, 9, 10, 11};
    storeWords(0x68, positions);
    storeWords(0x60, magnifications);
    load(1, degree);
    for (std::size_t i = 0; i < 5; ++i) {
      EXPECT_NEAR(fabc[i], expected[i], 1e-2 / std::pow(10, i)) << degree << " at " << i;
    }
  }
  EXPECT_EQ((std::array{f890a, f890b, f890c, f890d}), (std::array{1.0F, 2.0F, 3.0F, 4.0F}));
}

TEST_F(Magnification, FourPointLoadersReadPositionsFirstAndPauseAfterEachByte) {
  load(0, 1);
  std::string reads;
  for (unsigned i = 0; i < 16; ++i)
    reads += formatted("r62.%02X p5 p50 ", i < 8 ? 0x68 + i : 0x58 + i);
  EXPECT_EQ(trafficIn(journal()) + ' ', reads);
}

TEST_F(Magnification, FitsThroughThreeStoredPointsOrStoredCoefficients) {
  constexpr double pi = 3.14159274;  // as a single
  const std::vector<int> singles = {0xDB, 0x0F, 0x49, 0x40, 255, 255, 255, 255, 0, 0, 0x80, 0xBF};
  const Rows<std::uint32_t, std::vector<int>, double, double, double> rows = {
      // y1 x1 y2 x2 y3 x3: (35-20)/10 = 1.5, (70-35)/20 = 1.75, (1.75-1.5)/30 = 1/120.
      {0, {20, 10, 35, 20, 70, 40}, 1 / 120.0, 1.5 - 30 / 120.0, 20 - 15 + 200 / 120.0},
      {9, {20, 10, 35, 10, 70, 40}, 450, -22500, 180000},  // no solution: divided by 1
      {0, {255, 255, 255, 1, 255, 128}, 0, 0, 255},
      // 260.5, 510.25 and 775: the high byte weighs 255. 249.75/10 = 24.975,
      // 264.75/20 = 13.2375, (13.2375-24.975)/30 = -0.39125.
      {1,
       {1, 5, 50, 10, 2, 0, 25, 20, 3, 10, 0, 40},
       -0.39125,
       24.975 + 30 * 0.39125,
       260.5 - 249.75 - 200 * 0.39125},
      // Singles, lowest byte first; four bytes of 255 are none.
      {2, singles, pi, -1, -1},
      {3, singles, pi, -1, -1},
      {4, singles, pi, -1, -1}};
  for (const auto& [kind, registers, a, b, c] : rows) {
    SCOPED_TRACE(testing::Message() << kind << " with " << registers.front());
    storeBytes(0x40, registers);
    journal();
    load(kind, 255);
    const double loose = kind == 1 ? 100 : 1;  // small differences of large singles
    EXPECT_NEAR(f890a, a, 1e-6 * loose);
    EXPECT_NEAR(f890b, b, 1e-4 * loose);
    EXPECT_NEAR(f890c, c, 1e-3 * loose);
    // Register 0x40 of stored coefficients is read once more, by itself.
    std::string reads = kind >= 2 && kind <= 4 ? "r62.40 p5 " : "";
    for (std::size_t i = 0; i < registers.size(); ++i) reads += formatted("r62.%02X p5 ", 0x40 + i);
    EXPECT_EQ(trafficIn(journal()) + ' ', reads);
  }
  EXPECT_NEAR(sampleAt(30, 0x40), pi * 30.25 * 30.25 - 30.25 - 1, 1e-2);
}

TEST_F(Magnification, RawRateFollowsEncoderAndFraction) {
  const Rows<std::array<float, 10>, std::uint32_t, int, int, double> rows = {
      {{2, 0.5F}, 1, 10, 0x80, 7.25},
      {{2, 0.5F}, 1, 10, 0x40, 7.125},
      {{2, 0.5F}, 1, 10, 0xC0, 7.375},
      {{2, 0.5F}, 1, 10, 0x41, 7.0},
      {{2, 0.5F}, 1, 10, 0x00, 7.0},
      {{4, 3, 2, 1}, 3, 5, 0x80, 247.375},
      {{0.3F}, 0, 0, 0, 1.0},  // never below 1
      {{1.0F}, 0, 0, 0, 1.0},
      {{-5.0F}, 0, 0, 0, 1.0},
      {{1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, 15, 1, 0, 10.0}};  // terms beyond the table are left out
  for (const auto& [coefficients, degree, position, fraction, rate] : rows) {
    fabc = coefficients;
    ulC5 = degree;
    count_890_rate::k = 0;
    EXPECT_DOUBLE_EQ(sampleAt(position, fraction), rate) << fraction;
  }
}

// Samples 10, 20, 30, ...: ticks 5 and 10 of each ten give the mean of the last ten samples; the
// first half-window counts missing samples as nothing.
TEST_F(Magnification, SmoothsOverAWindowOfTen) {
  ulC5 = 1;
  fabc = {0, 10};
  const double published[25] = {
      10,  20,  30,  40,  15,  60,  70,  80,  90,  55,   // sum of 10..50 is 150; 10..100 is 550
      110, 120, 130, 140, 105, 160, 170, 180, 190, 155,  // 60..100 and 110..150; 110..200
      210, 220, 230, 240, 205};
  for (int i = 0; i < 25; ++i) EXPECT_NEAR(sampleAt(i + 1, 0), published[i], 1e-4) << i;
}

TEST_F(Magnification, AskingForTheRateReadsNothing) {
  EXPECT_EQ(GetMAG(-1), 0.0);
  EXPECT_EQ(nTmpIdx, 90);
  GetMAG(3);
  EXPECT_EQ(nTmpIdx, 3);
  EXPECT_EQ(journal(), Journal{});
}

TEST_F(Magnification, FieldOfViewFollowsTheFamily) {
  const Rows<std::vector<int>, double> rows = {
      // micrometres at x1
      {{0, 0x9C0, 0x9E7}, 352000.0},
      {{0x970, 0x925, 0x9B3}, 352000.0 * 0.2744 * 2592 / 640},
      {{0x87F, 0x9E0, 0x9E6}, 352000.0 * 0.5555 * 2},
      {{0x9A0, 0x9DF}, 352000.0 * 1.19048}};
  for (const auto& [productIds, atOne] : rows) {
    for (const int pid : productIds) {
      nCurrPid = pid;
      for (const int wifi : {-1, 90}) EXPECT_NEAR(FOVx(wifi, 2.0), atOne / 2, 1e-6) << pid;
      EXPECT_EQ(nPid, pid);
    }
  }
  nCurrPid = 0x970;
  strOrvaDevice[2] = "vid_3c7e&pid_0870";
  EXPECT_NEAR(FOVx(2, 1.0), 352000.0 * 0.5555 * 2, 1e-6);
  EXPECT_NEAR(FOVx(3, -2.0), -176000.0, 1e-6) << "no such device";
  EXPECT_TRUE(std::isinf(FOVx(3, 0.0)));
}

}  // namespace
}  // namespace qvx::tests
