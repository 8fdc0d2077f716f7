// The still shows the state of the camera: what an application's own loops would find in it.
#include "simulator/scene/still.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <vector>

// After what it needs.
#include <jpeglib.h>

namespace qvx::simulator {
namespace {

constexpr int width = 160, height = 120;

std::vector<double> greysOf(const Picture& picture) {
  std::vector<double> greys;
  for (std::size_t i = 0; i < picture.rgb.size(); i += 3) {
    greys.push_back((picture.rgb[i] + 2 * picture.rgb[i + 1] + picture.rgb[i + 2]) / 4.0);
  }
  return greys;
}

std::vector<double> seenBy(const Camera& camera, std::uint64_t frame = 0) {
  return greysOf(look(camera, width, height, frame));
}

double meanOf(const std::vector<double>& greys) {
  return std::accumulate(greys.begin(), greys.end(), 0.0) / static_cast<double>(greys.size());
}

// Of one part of the picture, a quarter of its width and height: 0, 0 is the upper left one.
double meanOfPart(const std::vector<double>& greys, int column, int row) {
  std::vector<double> part;
  for (int y = row * height / 4; y < (row + 1) * height / 4; ++y) {
    const auto* const line = &greys[static_cast<std::size_t>(y * width + column * width / 4)];
    part.insert(part.end(), line, line + width / 4);
  }
  return meanOf(part);
}

// The usual measure of an auto-focus.
double sharpnessOf(const std::vector<double>& greys) {
  double sum = 0;
  for (std::size_t i = 1; i < greys.size(); ++i) sum += std::pow(greys[i] - greys[i - 1], 2);
  return sum / static_cast<double>(greys.size());
}

// The deviation between pictures of the same thing.
double noiseOf(const Camera& camera) {
  const std::vector<double> one = seenBy(camera, 1), other = seenBy(camera, 2);
  double sum = 0;
  for (std::size_t i = 0; i < one.size(); ++i) sum += std::pow(one[i] - other[i], 2);
  return std::sqrt(sum / static_cast<double>(one.size()));
}

void setExposure(Camera& camera, int lines) {
  camera.sensor.set(0x3503, 7);  // by hand
  camera.sensor.set(0x3501, static_cast<std::uint8_t>(lines >> 4));
  camera.sensor.set(0x3502, static_cast<std::uint8_t>(lines << 4));
}

void setTarget(Camera& camera, int brightness) {
  camera.sensor.set(0x3503, 0);  // automatic
  camera.sensor.set(0x3A1E, static_cast<std::uint8_t>(brightness));
}

void light(Camera& camera, int segments) {
  const std::uint8_t brightest = 6, registers[] = {3, 4}, on = static_cast<std::uint8_t>(segments);
  camera.controller.write({&registers[0], 1}, {&brightest, 1});
  camera.controller.write({&registers[1], 1}, {&on, 1});
}

template <int property>
void set(Camera& camera, int value) {
  ASSERT_TRUE(camera.picture.set(*pictureControl(property), {value, false}));
}

void focus(Camera& camera, int offset) {
  const auto position = static_cast<std::uint8_t>(camera.controller.at(0x50) + offset);
  camera.placeAt(lensControllerAddress)->device->write({}, {&position, 1});
}

// What is measured grows from each value to the next.
template <class Measure>
void expectRising(Measure measure, std::initializer_list<int> values) {
  double last = -1;
  for (const int value : values) {
    const double now = measure(value);
    EXPECT_GT(now, last * 1.03 + 0.1) << value;
    last = now;
  }
}

TEST(Still, BrightensWithExposureLightTargetAndControls) {
  Camera camera(0x970);
  const auto meanAfter = [&camera](void (*change)(Camera&, int)) {
    return [&camera, change](int value) {
      change(camera, value);
      return meanOf(seenBy(camera));
    };
  };
  expectRising(meanAfter(setExposure), {60, 250, 500, 900});
  expectRising(meanAfter(light), {0x10, 1, 3, 15});
  setExposure(camera, 150);
  expectRising(meanAfter(set<9>), {0, 50, 100});
  expectRising(meanAfter(setTarget), {0x10, 0x38, 0x50});
  expectRising(meanAfter(set<0>), {-64, 0, 64});
}

TEST(Still, GivesLightInProportionToExposureBeforeGamma) {
  Camera camera(0x970);
  light(camera, 15);
  std::vector<double> lights;
  for (const int lines : {100, 200, 400}) {
    setExposure(camera, lines);
    double sum = 0;
    for (const double grey : seenBy(camera)) sum += std::pow(grey / 255, 2.2);
    lights.push_back(sum);
  }
  EXPECT_NEAR(lights[1] / lights[0], 2, 0.08);
  EXPECT_NEAR(lights[2] / lights[1], 2, 0.08);
}

TEST(Still, NoiseGrowsWithGainAndWithDarkness) {
  Camera camera(0x970);
  light(camera, 15);
  const auto noiseAt = [&camera](int gain) {
    set<9>(camera, gain);
    return noiseOf(camera);
  };
  expectRising(noiseAt, {0, 30, 100});
  set<9>(camera, 0);
  const double lit = noiseOf(camera);
  light(camera, 16);  // none: the camera amplifies
  EXPECT_GT(noiseOf(camera), 1.3 * lit);
}

TEST(Still, PictureControlsChangeColourAndSharpness) {
  Camera camera(0x970);
  const struct {
    void (*change)(Camera&, int);
    int low, high;
    double (*measure)(const Picture&);
  } rows[] = {
      {set<1>, 16, 64, [](const Picture& p) { return sharpnessOf(greysOf(p)); }},
      {set<3>, 20, 90,
       [](const Picture& p) {
         return sharpnessOf({p.rgb.begin(), p.rgb.end()});
       }},
      {set<4>, 0, 7, [](const Picture& p) { return sharpnessOf(greysOf(p)); }},
      {set<5>, 80, 200, [](const Picture& p) { return meanOf(greysOf(p)); }},
      {set<7>, 2800, 6500, [](const Picture& p) { return 100.0 * p.rgb[0] / (p.rgb[2] + 1.0); }},
  };
  for (const auto& row : rows) {
    Camera fresh(0x970);
    row.change(fresh, row.low);
    const double low = row.measure(look(fresh, width, height, 0));
    row.change(fresh, row.high);
    EXPECT_GT(row.measure(look(fresh, width, height, 0)), 1.1 * low) << &row - rows;
  }
}

TEST(Still, IsBrighterOnTheSideOfTheLitQuadrant) {
  constexpr int corners[4][2] = {{3, 0}, {3, 3}, {0, 3}, {0, 0}};
  Camera camera(0x970);
  setExposure(camera, 450);
  light(camera, 15);
  const std::vector<double> all = seenBy(camera);
  for (int i = 0; i < 4; ++i) {
    light(camera, 1 << i);
    const std::vector<double> one = seenBy(camera);
    const auto share = [&](const int(&corner)[2]) {
      return meanOfPart(one, corner[0], corner[1]) / meanOfPart(all, corner[0], corner[1]);
    };
    EXPECT_GT(share(corners[i]), 1.1 * share(corners[(i + 2) % 4])) << i;
  }
}

TEST(Still, EverySensorCanBeExposedByHand) {
  const struct {
    std::uint16_t pid;
    std::uint16_t reg;  // of the exposure's higher byte
    bool countsDown;
  } rows[] = {
      {0x970, 0x3501, false},
      {0x9C0, 0x0015, false},
      {0x9D0, 0x08, false},
      {0x9E0, 0x0202, true},
  };
  for (const auto& row : rows) {
    Camera camera(row.pid);
    sensorFor(row.pid)->setAutomatic(camera, false);
    camera.sensor.set(row.reg, 0);
    const double shortest = viewOf(camera).exposure;
    camera.sensor.set(row.reg, 3);
    EXPECT_EQ(viewOf(camera).exposure < shortest, row.countsDown) << row.pid;
    EXPECT_NE(viewOf(camera).exposure, shortest) << row.pid;
  }
}

TEST(Still, IsSharpestWhereTheLensIsInFocus) {
  Camera camera(0x990);
  const auto sharpnessAt = [&camera](int offset) {
    focus(camera, offset);
    return sharpnessOf(seenBy(camera));
  };
  for (const double magnification : {20.0, 50.0, 150.0}) {
    camera.setZoom({magnification, magnification, 0});
    expectRising(sharpnessAt, {-20, 0, 5, 9, 12});
    expectRising(sharpnessAt, {44, 24, 19, 15, 12});
  }
}

TEST(Still, DepthOfFocusShrinksWithMagnification) {
  Camera camera(0x990);
  double last = 1;
  for (const double magnification : {10.0, 50.0, 150.0}) {
    camera.setZoom({magnification, magnification, 0});
    focus(camera, static_cast<int>(focusAt));
    const double best = sharpnessOf(seenBy(camera));
    focus(camera, static_cast<int>(focusAt) + 10);
    const double left = sharpnessOf(seenBy(camera)) / best;
    EXPECT_LT(left, 0.9 * last) << magnification;
    last = left;
  }
}

// The same place twice as large at twice the magnification, and a scale bar that says so.
TEST(Still, ShowsItsSpecimenAtTheMagnificationOfTheRing) {
  Camera camera(0x970);
  camera.setZoom({50, 50, 0});
  const std::vector<double> small = seenBy(camera);
  camera.setZoom({100, 100, 0});
  const std::vector<double> large = seenBy(camera);
  double same = 0, shifted = 0;
  for (int y = height / 4; y < 3 * height / 4; ++y) {
    for (int x = width / 4; x < 3 * width / 4; ++x) {
      const double there = small[static_cast<std::size_t>(y * width + x)];
      const int place = (2 * y - height / 2) * width + 2 * x - width / 2;
      const int elsewhere = (place + 10 * width + 15) % (width * height);
      same += std::abs(there - large[static_cast<std::size_t>(place)]);
      shifted += std::abs(there - large[static_cast<std::size_t>(elsewhere)]);
    }
  }
  EXPECT_LT(same, 0.6 * shifted);

  const auto bar = std::count(small.end() - 7 * width, small.end() - 6 * width, 255.0);
  EXPECT_NEAR(static_cast<double>(bar), 1000 / viewOf(camera).fieldWidth_um / 2 * width, 1);
}

TEST(Still, IsAFileInTheSizeThatWasChosen) {
  Camera camera(0x970);
  camera.video.choose(1);
  const std::string file = stillOf(camera);
  jpeg_decompress_struct decoder{};
  jpeg_error_mgr errors{};
  decoder.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&decoder);
  jpeg_mem_src(&decoder, reinterpret_cast<const unsigned char*>(file.data()), file.size());
  jpeg_read_header(&decoder, TRUE);
  jpeg_start_decompress(&decoder);
  EXPECT_EQ(decoder.output_width, 640U);
  EXPECT_EQ(decoder.output_height, 480U);
  std::vector<std::uint8_t> row(std::size_t{3} * decoder.output_width), first;
  while (decoder.output_scanline < decoder.output_height) {
    JSAMPROW line = row.data();
    jpeg_read_scanlines(&decoder, &line, 1);
    if (first.empty()) first = row;
  }
  jpeg_finish_decompress(&decoder);
  EXPECT_EQ(errors.num_warnings, 0);
  jpeg_destroy_decompress(&decoder);
  const Picture picture = look(camera, 640, 480, 0);
  EXPECT_NEAR(meanOf({first.begin(), first.end()}),
              meanOf({picture.rgb.begin(), picture.rgb.begin() + 3 * 640}), 2);
}

}  // namespace
}  // namespace qvx::simulator
