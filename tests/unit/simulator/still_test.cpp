// The still shows the state of the camera: what an application's own loops would find in it.
#include "simulator/scene/still.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <vector>

// After what it needs.
#include <jpeglib.h>

#include "simulator/scene/view.h"

namespace qvx::simulator {
namespace {

struct GreyPicture {
  int width = 0, height = 0;
  std::vector<std::uint8_t> greys;

  int at(int x, int y) const { return greys[static_cast<std::size_t>(y * width + x)]; }
};

GreyPicture takenBy(Camera& camera) {
  const std::string file = stillOf(camera);
  jpeg_decompress_struct decoder{};
  jpeg_error_mgr errors{};
  decoder.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&decoder);
  jpeg_mem_src(&decoder, reinterpret_cast<const unsigned char*>(file.data()), file.size());
  jpeg_read_header(&decoder, TRUE);
  decoder.out_color_space = JCS_GRAYSCALE;
  jpeg_start_decompress(&decoder);
  GreyPicture picture{
      static_cast<int>(decoder.output_width), static_cast<int>(decoder.output_height), {}};
  picture.greys.resize(std::size_t{decoder.output_width} * decoder.output_height);
  while (decoder.output_scanline < decoder.output_height) {
    JSAMPROW row = &picture.greys[std::size_t{decoder.output_scanline} * decoder.output_width];
    jpeg_read_scanlines(&decoder, &row, 1);
  }
  jpeg_finish_decompress(&decoder);
  EXPECT_EQ(errors.num_warnings, 0);
  jpeg_destroy_decompress(&decoder);
  return picture;
}

double meanOf(const GreyPicture& picture) {
  const double sum = std::accumulate(picture.greys.begin(), picture.greys.end(), 0.0);
  return sum / static_cast<double>(picture.greys.size());
}

// The usual measure of an auto-focus.
double sharpnessOf(const GreyPicture& picture) {
  double sum = 0;
  for (std::size_t i = 1; i < picture.greys.size(); ++i) {
    sum += std::pow(picture.greys[i] - picture.greys[i - 1], 2);
  }
  return sum;
}

// How many marks of the ruler's row lie in the picture.
int marksIn(const GreyPicture& picture) {
  const int row = picture.height / 2 + 15;
  int marks = 0;
  for (int x = 1; x < picture.width; ++x) {
    if (picture.at(x - 1, row) >= 64 && picture.at(x, row) < 64) ++marks;
  }
  return marks;
}

void setExposure(Camera& camera, int lines) {
  camera.sensor().set(0x3503, 7);  // by hand
  camera.sensor().set(0x3501, static_cast<std::uint8_t>(lines >> 4));
  camera.sensor().set(0x3502, static_cast<std::uint8_t>(lines << 4));
}

void setTarget(Camera& camera, int brightness) {
  camera.sensor().set(0x3503, 0);  // automatic
  camera.sensor().set(0x3A1E, static_cast<std::uint8_t>(brightness));
}

void light(Camera& camera, int segments) {
  const std::uint8_t brightest = 6, registers[] = {3, 4}, on = static_cast<std::uint8_t>(segments);
  camera.controller().write({&registers[0], 1}, {&brightest, 1});
  camera.controller().write({&registers[1], 1}, {&on, 1});
}

void setBrightness(Camera& camera, int value) {
  camera.picture().set(*pictureControl(0), {value, false});
}

// What is measured grows from each value to the next.
template <class Measure>
void expectRising(Measure measure, std::initializer_list<int> values) {
  double last = -1;
  for (const int value : values) {
    const double now = measure(value);
    EXPECT_GT(now, last + 1) << value;
    last = now;
  }
}

TEST(Still, BrightensWithExposureLightTargetAndControls) {
  Camera camera(0x970);
  camera.video().choose(1);
  const auto meanAfter = [&camera](void (*set)(Camera&, int)) {
    return [&camera, set](int value) {
      set(camera, value);
      return meanOf(takenBy(camera));
    };
  };
  expectRising(meanAfter(setExposure), {60, 250, 500, 900});
  expectRising(meanAfter(light), {0x10, 1, 3, 15});
  expectRising(meanAfter(setTarget), {0x10, 0x38, 0x50});
  expectRising(meanAfter(setBrightness), {-64, 0, 64});
}

TEST(Still, EverySensorCanBeExposedByHand) {
  const struct {
    std::uint16_t pid;
    std::vector<std::pair<std::uint16_t, std::uint8_t>> automaticOff;
    std::uint16_t reg;  // of the exposure's higher byte
    bool countsDown;
  } rows[] = {
      {0x970, {{0x3503, 7}}, 0x3501, false},
      {0x9C0, {{0x0380, 0x54}}, 0x0015, false},
      {0x9D0, {{0x13, 0xB8}}, 0x08, false},
      {0x9E0, {}, 0x0202, true},
  };
  for (const auto& row : rows) {
    Camera camera(row.pid);
    for (const auto& [reg, value] : row.automaticOff) camera.sensor().set(reg, value);
    camera.sensor().set(row.reg, 0);
    const double least = viewOf(camera).exposure;
    camera.sensor().set(row.reg, 3);
    EXPECT_EQ(viewOf(camera).exposure < least, row.countsDown) << row.pid;
    EXPECT_NE(viewOf(camera).exposure, least) << row.pid;
  }
}

TEST(Still, IsSharpestWhereTheLensIsInFocus) {
  Camera camera(0x990);
  camera.video().choose(1);
  const auto sharpnessAt = [&camera](int offset) {
    const std::uint8_t position = static_cast<std::uint8_t>(camera.controller().at(0x50) + offset);
    camera.deviceAt(lensControllerAddress)->write({}, {&position, 1});
    return sharpnessOf(takenBy(camera));
  };
  expectRising(sharpnessAt, {0, 4, 8, 12});
  expectRising(sharpnessAt, {24, 20, 16, 12});
}

TEST(Still, ShowsTheRulerAtTheMagnificationOfTheRing) {
  Camera camera(0x970);
  setExposure(camera, 500);
  for (const double magnification : {50.0, 100.0, 150.0}) {
    camera.setZoom({magnification, magnification, 0});
    // The field of these cameras is 391.2 mm wide at x1, and there is a mark every 100 um.
    EXPECT_NEAR(marksIn(takenBy(camera)), 3912 / magnification, 1.5) << magnification;
  }
}

}  // namespace
}  // namespace qvx::simulator
