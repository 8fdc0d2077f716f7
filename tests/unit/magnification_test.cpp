#include "controls/magnification.h"

#include <array>
#include <cmath>

#include "qvx64/api.h"
#include "state/device_state.h"
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
  void store(int reg, std::array<int, 4> values) {
    for (const int value : values) {
      camera.values[reg++] = value & 0xFF;
      camera.values[reg++] = value >> 8;
    }
  }

  void storeBytes(int reg, std::initializer_list<int> bytes) {
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

// Encoder positions are stored in quarters: 40 is 10.0.
TEST_F(Magnification, LineThroughTwoPoints) {
  store(0x68, {40, 80, 0, 0});
  store(0x60, {200 | tenth, 45, 0, 0});  // 20.0 at 10, 45 at 20
  load(0, 0xF1);
  EXPECT_FLOAT_EQ(fabc[1], 2.5F);
  EXPECT_FLOAT_EQ(fabc[0], -5.0F);
  EXPECT_FLOAT_EQ(static_cast<float>(sampleAt(30, 0)), 70.0F);
}

TEST_F(Magnification, LineThroughOnePositionChangesNothing) {
  fabc = {7, 8, 9, 10};
  store(0x68, {40, 40, 0, 0});
  store(0x60, {1, 2, 3, 4});
  load(0, 1);
  EXPECT_EQ(fabc, (std::array<float, 10>{7, 8, 9, 10}));
}

TEST_F(Magnification, ParabolaThroughThreePoints) {
  fabc[3] = 99;
  store(0x68, {40, 80, 160, 0});                 // 10, 20, 40
  store(0x60, {6000 | hundredth, 210, 820, 0});  // 60, 210, 820: 0.5 x^2 + 0.5 x + ...
  load(0, 2);
  // By divided differences: (210-60)/10 = 15, (820-210)/20 = 30.5, (30.5-15)/30 = 31/60.
  EXPECT_NEAR(fabc[2], 31.0 / 60, 1e-4);
  EXPECT_NEAR(fabc[1], 15 - 30 * 31.0 / 60, 1e-3);
  EXPECT_NEAR(fabc[0], 60 - 10 * 15 + 200 * 31.0 / 60, 1e-2);
  EXPECT_EQ(fabc[3], 0.0F);
}

TEST_F(Magnification, ParabolaWithoutASolutionStaysFinite) {
  store(0x68, {40, 40, 40, 0});
  store(0x60, {10, 20, 30, 0});
  load(0, 2);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_TRUE(std::isfinite(fabc[i])) << i;
}

TEST_F(Magnification, CubicThroughFourPoints) {
  fabc[4] = 99;
  store(0x68, {4, 8, 12, 16});     // 1, 2, 3, 4
  store(0x60, {10, 26, 58, 112});  // x^3 + 2 x^2 + 3 x + 4 at 1..4
  load(0, 3);
  const float expected[] = {4, 3, 2, 1};
  for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(fabc[i], expected[i], 1e-3) << i;
  EXPECT_EQ(fabc[4], 0.0F);
  EXPECT_EQ((std::array{f890a, f890b, f890c, f890d}),
            (std::array{fabc[3], fabc[2], fabc[1], fabc[0]}));
  EXPECT_NEAR(sampleAt(5, 0x80), 5.5 * 5.5 * 5.5 + 2 * 5.5 * 5.5 + 3 * 5.5 + 4, 0.1);
}

TEST_F(Magnification, CubicWithoutASolutionKeepsTheCoefficients) {
  fabc = {7, 8, 9, 10, 11};
  store(0x68, {4, 4, 12, 16});
  store(0x60, {10, 26, 58, 112});
  load(0, 3);
  EXPECT_EQ(fabc, (std::array<float, 10>{7, 8, 9, 10, 11}));
}

TEST_F(Magnification, FourPointLoadersReadPositionsFirstAndPauseAfterEachByte) {
  load(0, 1);
  const Journal lines = journal();
  ASSERT_EQ(lines.size(), 16u * 3);
  for (std::size_t i = 0; i < 16; ++i) {
    const int reg = static_cast<int>(i < 8 ? 0x68 + i : 0x60 + i - 8);
    EXPECT_TRUE(lines[3 * i].ends_with("&value=" + std::to_string(reg << 16))) << i;
    EXPECT_EQ(lines[3 * i + 2], "pause 50") << i;
  }
}

TEST_F(Magnification, IntegerFitThroughThreeBytes) {
  storeBytes(0x40, {20, 10, 35, 20, 70, 40});  // y1 x1 y2 x2 y3 x3
  load(0, 255);
  // (35-20)/10 = 1.5, (70-35)/20 = 1.75, (1.75-1.5)/30 = 1/120.
  EXPECT_NEAR(f890a, 1.0 / 120, 1e-6);
  EXPECT_NEAR(f890b, 1.5 - 30.0 / 120, 1e-5);
  EXPECT_NEAR(f890c, 20 - 15 + 200.0 / 120, 1e-4);
  EXPECT_NEAR(sampleAt(30, 0x40), f890a * 30.25 * 30.25 + f890b * 30.25 + f890c, 1e-4);
}

TEST_F(Magnification, IntegerFitWithoutASolutionDividesByOne) {
  storeBytes(0x40, {20, 10, 35, 10, 70, 40});
  load(9, 255);
  EXPECT_EQ(n890det, 1.0F);
  EXPECT_FLOAT_EQ(f890a, -30 * 20 + 30 * 35 + 0 * 70);
}

TEST_F(Magnification, IntegerFitWrapsAtThirtyTwoBits) {
  // x = 255, 1, 128: the constant's third sum is (255^2 * 1 - 1^2 * 255) * 255.
  storeBytes(0x40, {255, 255, 255, 1, 255, 128});
  load(0, 255);
  const long long c6 = 1LL * 128 - 128 * 128;
  const long long c7 = -(255LL * 255 * 128 - 255LL * 128 * 128);
  const long long c8 = 255LL * 255 * 1 - 1LL * 255;
  const auto sum = static_cast<int>((c6 + c7 + c8) * 255);
  EXPECT_FLOAT_EQ(f890c, static_cast<float>(sum) / n890det);
}

TEST_F(Magnification, HundredthsFitWeighsTheHighByteBy255) {
  storeBytes(0x40, {1, 5, 50, 10, 2, 0, 25, 20, 3, 10, 0, 40});
  load(1, 255);
  EXPECT_FLOAT_EQ(f890y1, 260.5F);
  EXPECT_FLOAT_EQ(f890y2, 510.25F);
  EXPECT_FLOAT_EQ(f890y3, 775.0F);
  // 249.75/10 = 24.975, 264.75/20 = 13.2375, (13.2375-24.975)/30 = -0.39125.
  EXPECT_NEAR(f890a, -0.39125, 1e-4);
  EXPECT_NEAR(f890b, 24.975 + 30 * 0.39125, 1e-2);
  EXPECT_NEAR(f890c, 260.5 - 249.75 - 200 * 0.39125, 1e-1);
}

TEST_F(Magnification, StoredCoefficientsAreSinglesLowestByteFirst) {
  for (const std::uint32_t kind : {2u, 3u, 4u}) {
    f890a = f890b = f890c = 0;
    storeBytes(0x40, {0x00, 0x00, 0x20, 0x40, 255, 255, 255, 255, 0x00, 0x00, 0x80, 0xBF});
    journal();
    load(kind, 255);
    EXPECT_EQ(f890a, 2.5F);
    EXPECT_EQ(f890b, -1.0F) << "four bytes of 255: not stored";
    EXPECT_EQ(f890c, -1.0F);
    EXPECT_EQ(journal().size(), 2u * 13) << "register 0x40 is read once more, by itself";
  }
  EXPECT_EQ(ul890m10, 0x00u);
}

TEST_F(Magnification, UnknownDegreesLoadNothing) {
  fabc = {7, 8};
  load(1, 4);
  EXPECT_EQ(journal(), Journal{});
  EXPECT_EQ(fabc[0], 7.0F);
}

TEST_F(Magnification, RawRateFollowsEncoderAndFraction) {
  const struct {
    int position, fraction;
    double rate;
  } rows[] = {
      {10, 0x80, 7.25}, {10, 0x40, 7.125}, {10, 0xC0, 7.375}, {10, 0x41, 7.0}, {10, 0, 7.0}};
  for (const auto& row : rows) {
    fabc = {2, 0.5F};
    ulC5 = 1;
    count_890_rate::k = 0;
    EXPECT_DOUBLE_EQ(sampleAt(row.position, row.fraction), row.rate) << row.fraction;
  }
}

TEST_F(Magnification, NeverFallsBelowOne) {
  ulC5 = 0;
  for (const float constant : {0.3F, 1.0F, -5.0F}) {
    count_890_rate::k = 0;
    fabc = {constant};
    EXPECT_EQ(sampleAt(0, 0), 1.0);
  }
}

TEST_F(Magnification, DegreesAboveTheTableLeaveTermsOut) {
  fabc.fill(1.0F);
  ulC5 = 15;
  EXPECT_EQ(sampleAt(1, 0), 10.0);
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
  const struct {
    int pid;
    double atOne;  // micrometres at x1
  } rows[] = {
      {0, 352000.0},
      {0x970, 352000.0 * 0.2744 * 2592 / 640},
      {0x925, 352000.0 * 0.2744 * 2592 / 640},
      {0x9B3, 352000.0 * 0.2744 * 2592 / 640},
      {0x87F, 352000.0 * 0.5555 * 2},
      {0x9E6, 352000.0 * 0.5555 * 2},
      {0x9E7, 352000.0},
      {0x9A0, 352000.0 * 1.19048},
      {0x9DF, 352000.0 * 1.19048},
      {0x9C0, 352000.0},
  };
  for (const auto& row : rows) {
    nCurrPid = row.pid;
    for (const int wifi : {-1, 90}) EXPECT_NEAR(FOVx(wifi, 2.0), row.atOne / 2, 1e-6) << row.pid;
    EXPECT_EQ(nPid, row.pid);
  }
  nCurrPid = 0x970;
  strOrvaDevice[2] = "vid_3c7e&pid_0870";
  EXPECT_NEAR(FOVx(2, 1.0), 352000.0 * 0.5555 * 2, 1e-6);
  EXPECT_NEAR(FOVx(3, 2.0), 176000.0, 1e-6) << "no such device";
  EXPECT_TRUE(std::isinf(FOVx(3, 0.0)));
}

}  // namespace
}  // namespace qvx::tests
