// The still shows the state of the camera: what an application's own loops would find in it.
#include "simulator/scene/still.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <tuple>
#include <valarray>

// After what it needs.
#include <jpeglib.h>

namespace qvx::simulator {
namespace {

constexpr std::size_t width = 160, height = 120;

using Values = std::valarray<double>;

// Red, green and blue of each pixel.
Values coloursIn(const Picture& picture) {
  Values colours(picture.rgb.size());
  std::ranges::copy(picture.rgb, std::begin(colours));
  return colours;
}

// How bright each pixel is.
Values seenBy(const Camera& camera, std::uint64_t frame = 0) {
  const Values all = coloursIn(look(camera, width, height, frame));
  const auto each = [&all](std::size_t colour) {
    return Values(all[std::slice(colour, width * height, 3)]);
  };
  return (each(0) + 2.0 * each(1) + each(2)) / 4.0;
}

double meanOf(const Values& values) {
  return values.sum() / static_cast<double>(values.size());
}

// The usual measure of an auto-focus.
double contrastOf(const Values& values) {
  const Values steps = values - values.cshift(1);
  return meanOf(steps * steps);
}

double brightness(const Camera& camera) {
  return meanOf(seenBy(camera));
}

double sharpness(const Camera& camera) {
  return contrastOf(seenBy(camera));
}

double colourfulness(const Camera& camera) {
  return contrastOf(coloursIn(look(camera, width, height, 0)));
}

double warmth(const Camera& camera) {
  const Picture picture = look(camera, width, height, 0);
  return 100.0 * picture.rgb[0] / (picture.rgb[2] + 1.0);
}

// The deviation between pictures of the same thing.
double noise(const Camera& camera) {
  const Values change = seenBy(camera, 1) - seenBy(camera, 2);
  return std::sqrt(meanOf(change * change));
}

void exposeByHand(Camera& camera, int lines) {
  camera.sensor.set(0x3503, 7);
  camera.sensor.set(0x3501, static_cast<std::uint8_t>(lines >> 4));
  camera.sensor.set(0x3502, static_cast<std::uint8_t>(lines << 4));
}

void setTarget(Camera& camera, int target) {
  camera.sensor.set(0x3A1E, static_cast<std::uint8_t>(target));
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

void zoom(Camera& camera, double magnification) {
  camera.setZoom({magnification, magnification, 0});
}

// What is measured grows from each value to the next.
void expectRising(double (*measure)(const Camera&), Camera& camera, void (*change)(Camera&, int),
                  std::initializer_list<int> values) {
  double last = -1;
  for (const int value : values) {
    change(camera, value);
    const double now = measure(camera);
    EXPECT_GT(now, last * 1.03 + 0.1) << value;
    last = now;
  }
}

TEST(Still, FollowsExposureLightAndControls) {
  constexpr int automatic = 0, noSegment = 16;
  const struct {
    const char* what;
    double (*measure)(const Camera&);
    int exposure;  // in lines
    void (*change)(Camera&, int);
    std::initializer_list<int> values;
  } rows[] = {
      {"exposure", brightness, automatic, exposeByHand, {60, 250, 500, 900}},
      {"light", brightness, 900, light, {noSegment, 1, 3, 15}},
      {"target", brightness, automatic, setTarget, {0x10, 0x38, 0x50}},
      {"brightness", brightness, automatic, set<0>, {-64, 0, 64}},
      {"contrast", sharpness, automatic, set<1>, {16, 64}},
      {"saturation", colourfulness, automatic, set<3>, {20, 90}},
      {"sharpness", sharpness, automatic, set<4>, {0, 7}},
      {"gamma", brightness, automatic, set<5>, {80, 200}},
      {"white balance", warmth, automatic, set<7>, {2800, 6500}},
      {"gain", brightness, 150, set<9>, {0, 50, 100}},
      {"noise of the gain", noise, automatic, set<9>, {0, 30, 100}},
      {"noise of the dark", noise, automatic, light, {15, noSegment}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Camera camera(0x970);
    light(camera, 15);
    if (row.exposure != automatic) exposeByHand(camera, row.exposure);
    expectRising(row.measure, camera, row.change, row.values);
  }
}

TEST(Still, GivesLightInProportionToExposureBeforeGamma) {
  Camera camera(0x970);
  light(camera, 15);
  const auto lightAt = [&camera](int lines) {
    exposeByHand(camera, lines);
    return std::pow(seenBy(camera) / 255.0, 2.2).sum();
  };
  EXPECT_NEAR(lightAt(200) / lightAt(100), 2, 0.08);
  EXPECT_NEAR(lightAt(400) / lightAt(200), 2, 0.08);
}

TEST(Still, IsBrighterOnTheSideOfTheLitQuadrant) {
  constexpr std::size_t right = width * 3 / 4, bottom = height * 3 / 4 * width;
  constexpr std::size_t corners[] = {right, bottom + right, bottom, 0};  // where each begins
  Camera camera(0x970);
  exposeByHand(camera, 450);
  light(camera, 15);
  const Values all = seenBy(camera);
  for (std::size_t i = 0; i < 4; ++i) {
    light(camera, 1 << i);
    const Values one = seenBy(camera);
    const auto shareIn = [&](std::size_t corner) {
      const std::gslice part(corner, {height / 4, width / 4}, {width, 1});
      return meanOf(one[part]) / meanOf(all[part]);
    };
    EXPECT_GT(shareIn(corners[i]), 1.1 * shareIn(corners[(i + 2) % 4])) << i;
  }
}

TEST(Still, EverySensorCanBeExposedByHand) {
  const struct {
    std::uint16_t productId, reg;  // of the exposure's higher byte
    bool countsDown;
  } rows[] = {
      {0x970, 0x3501, false}, {0x9C0, 0x15, false}, {0x9D0, 8, false}, {0x9E0, 0x202, true}};
  for (const auto& row : rows) {
    Camera camera(row.productId);
    sensorFor(row.productId)->setAutomatic(camera, false);
    camera.sensor.set(row.reg, 0);
    const double shortest = viewOf(camera).exposure;
    camera.sensor.set(row.reg, 3);
    EXPECT_EQ(viewOf(camera).exposure < shortest, row.countsDown) << row.productId;
    EXPECT_NE(viewOf(camera).exposure, shortest) << row.productId;
  }
}

TEST(Still, IsSharpestInFocusTheMoreSoTheHigherTheMagnification) {
  constexpr int best = static_cast<int>(focusAt);
  Camera camera(0x990);
  double last = 1;
  for (const double magnification : {10.0, 50.0, 150.0}) {
    zoom(camera, magnification);
    expectRising(sharpness, camera, focus, {-20, 0, 5, 9, best});
    expectRising(sharpness, camera, focus, {44, 24, 19, 15, best});
    const double inFocus = sharpness(camera);
    focus(camera, best + 10);
    EXPECT_LT(sharpness(camera), 0.9 * last * inFocus) << magnification;
    last = sharpness(camera) / inFocus;
  }
}

// The same place twice as large at twice the magnification, and a scale bar that says so.
TEST(Still, ShowsItsSpecimenAtTheMagnificationOfTheRing) {
  Camera camera(0x970);
  zoom(camera, 100);
  const Values large = seenBy(camera);
  zoom(camera, 50);
  const Values small = seenBy(camera);
  const std::gslice centre(height / 4 * width + width / 4, {height / 2, width / 2}, {width, 1}),
      everySecond(0, {height / 2, width / 2}, {2 * width, 2});
  const auto distanceTo = [&](const Values& other) {
    return std::abs(Values(small[centre]) - Values(other[everySecond])).sum();
  };
  EXPECT_LT(distanceTo(large), 0.6 * distanceTo(large.cshift(10 * width + 15)));

  const auto* const line = std::end(small) - 7 * width;
  EXPECT_NEAR(static_cast<double>(std::count(line, line + width, 255.0)),
              1000 / viewOf(camera).fieldWidth_um * width, 1);
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
  Picture found{640, 480, std::vector<std::uint8_t>(3 * 640 * 480)};
  ASSERT_EQ(std::tuple(decoder.output_width, decoder.output_height), std::tuple(640U, 480U));
  while (decoder.output_scanline < decoder.output_height) {
    JSAMPROW line = found.at(0, static_cast<int>(decoder.output_scanline));
    jpeg_read_scanlines(&decoder, &line, 1);
  }
  jpeg_finish_decompress(&decoder);
  EXPECT_EQ(errors.num_warnings, 0);
  jpeg_destroy_decompress(&decoder);
  EXPECT_LT(std::abs(coloursIn(found) - coloursIn(look(camera, 640, 480, 0))).sum(),
            10.0 * 3 * 640 * 480);
}

}  // namespace
}  // namespace qvx::simulator
