// The still shows the state of the camera: what an application's own loops would find in it.
#include "simulator/scene/still.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

// After what it needs.
#include <jpeglib.h>

#include "simulator/scene/view.h"

namespace qvx::simulator {
namespace {

struct Picture {
  int width = 0, height = 0;
  std::vector<std::uint8_t> greys;

  int at(int x, int y) const { return greys[static_cast<std::size_t>(y * width + x)]; }
};

Picture takenBy(Camera& camera) {
  const std::string file = stillOf(camera);
  jpeg_decompress_struct decoder{};
  jpeg_error_mgr errors{};
  decoder.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&decoder);
  jpeg_mem_src(&decoder, reinterpret_cast<const unsigned char*>(file.data()), file.size());
  jpeg_read_header(&decoder, TRUE);
  decoder.out_color_space = JCS_GRAYSCALE;
  jpeg_start_decompress(&decoder);
  Picture picture{
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

double meanOf(const Picture& picture) {
  double sum = 0;
  for (const std::uint8_t grey : picture.greys) sum += grey;
  return sum / static_cast<double>(picture.greys.size());
}

// The usual measure of an auto-focus.
double sharpnessOf(const Picture& picture) {
  double sum = 0;
  for (std::size_t i = 1; i < picture.greys.size(); ++i) {
    sum += std::pow(picture.greys[i] - picture.greys[i - 1], 2);
  }
  return sum;
}

// How many marks of the ruler's row lie in the picture.
int marksIn(const Picture& picture) {
  const int row = picture.height / 2 + 15;
  int marks = 0;
  for (int x = 1; x < picture.width; ++x) {
    if (picture.at(x - 1, row) >= 64 && picture.at(x, row) < 64) ++marks;
  }
  return marks;
}

void setExposure(Camera& camera, int lines) {
  camera.sensor().set(0x3503, 7);  // by hand
  camera.sensor().set(0x3500, static_cast<std::uint8_t>(lines >> 12));
  camera.sensor().set(0x3501, static_cast<std::uint8_t>(lines >> 4));
  camera.sensor().set(0x3502, static_cast<std::uint8_t>(lines << 4));
}

void expectRising(const std::vector<double>& values) {
  for (std::size_t i = 1; i < values.size(); ++i) EXPECT_GT(values[i], values[i - 1] + 1) << i;
}

TEST(Still, HasTheSizeOfTheVideoMode) {
  Camera camera(0x970);
  for (const VideoMode& mode : videoModesFor(0x970)) {
    if (mode.width > 1600) continue;
    ASSERT_TRUE(camera.video().choose(mode.command));
    const Picture picture = takenBy(camera);
    EXPECT_EQ(picture.width, mode.width);
    EXPECT_EQ(picture.height, mode.height);
  }
  EXPECT_FALSE(camera.video().choose(5));
}

TEST(Still, BrightensWithExposureLightTargetAndControls) {
  Camera camera(0x970);
  camera.video().choose(1);
  std::vector<double> means;
  for (const int lines : {60, 250, 500, 900}) {
    setExposure(camera, lines);
    means.push_back(meanOf(takenBy(camera)));
  }
  expectRising(means);

  means.clear();
  camera.controller().write(std::array<std::uint8_t, 1>{0x03}, std::array<std::uint8_t, 1>{6});
  for (const std::uint8_t segments : std::initializer_list<std::uint8_t>{0x10, 1, 3, 15}) {
    camera.controller().write(std::array<std::uint8_t, 1>{0x04}, std::array{segments});
    means.push_back(meanOf(takenBy(camera)));
  }
  expectRising(means);

  means.clear();
  camera.sensor().set(0x3503, 0);
  for (const std::uint8_t target : std::initializer_list<std::uint8_t>{0x10, 0x38, 0x50}) {
    camera.sensor().set(0x3A1E, target);
    means.push_back(meanOf(takenBy(camera)));
  }
  expectRising(means);

  means.clear();
  for (const std::int32_t brightness : {-64, 0, 64}) {
    camera.picture().set(*pictureControl(0), {brightness, false});
    means.push_back(meanOf(takenBy(camera)));
  }
  expectRising(means);
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
  const std::uint8_t zero = camera.controller().at(0x50);
  std::vector<double> sharpness;
  for (int offset = 0; offset <= 24; offset += 4) {
    I2cDevice* const driver = camera.deviceAt(lensControllerAddress);
    ASSERT_NE(driver, nullptr);
    const auto position = static_cast<std::uint8_t>(zero + offset);
    ASSERT_TRUE(driver->write({}, std::array{position}));
    sharpness.push_back(sharpnessOf(takenBy(camera)));
  }
  const std::vector<double> before(sharpness.begin(), sharpness.begin() + 4);
  const std::vector<double> after(sharpness.rbegin(), sharpness.rbegin() + 4);
  expectRising(before);
  expectRising(after);
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
