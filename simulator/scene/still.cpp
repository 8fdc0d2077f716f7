#include "simulator/scene/still.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <vector>

// After what it needs.
#include <jpeglib.h>

#include "simulator/scene/object.h"
#include "simulator/scene/tone.h"
#include "simulator/scene/view.h"

namespace qvx::simulator {

namespace {

// Renders a picture line by line.
class Renderer {
 public:
  explicit Renderer(const View& view) : view_(view), tone_(view) {}

  void render(int line, std::vector<std::uint8_t>& row) const {
    constexpr double halfPixel = 0.7;
    const double pixel_um = view_.fieldWidth_um / view_.width_px;
    const double softness_um = (halfPixel + view_.blur_px) * pixel_um;
    const double y_um = (line - view_.height_px / 2) * pixel_um;
    row.clear();
    for (int column = 0; column < view_.width_px; ++column) {
      const double x_um = (column - view_.width_px / 2) * pixel_um;
      const Pixel pixel = tone_.of(colourAt(x_um, y_um, softness_um));
      row.insert(row.end(), pixel.begin(), pixel.end());
    }
  }

 private:
  const View& view_;
  Tone tone_;
};

// A file that grows in memory.
class JpegFile {
 public:
  JpegFile(int width, int height) {
    constexpr int quality = 90;
    encoder_.err = jpeg_std_error(&errors_);
    jpeg_create_compress(&encoder_);
    jpeg_mem_dest(&encoder_, &bytes_, &size_);
    encoder_.image_width = static_cast<JDIMENSION>(width);
    encoder_.image_height = static_cast<JDIMENSION>(height);
    encoder_.input_components = 3;
    encoder_.in_color_space = JCS_RGB;
    jpeg_set_defaults(&encoder_);
    jpeg_set_quality(&encoder_, quality, TRUE);
    jpeg_start_compress(&encoder_, TRUE);
  }
  ~JpegFile() {
    jpeg_destroy_compress(&encoder_);
    std::free(bytes_);
  }
  JpegFile(const JpegFile&) = delete;
  JpegFile& operator=(const JpegFile&) = delete;

  void append(std::vector<std::uint8_t>& row) {
    JSAMPROW line = row.data();
    jpeg_write_scanlines(&encoder_, &line, 1);
  }

  // Call it once, after the last line.
  std::string take() {
    jpeg_finish_compress(&encoder_);
    return {reinterpret_cast<const char*>(bytes_), size_};
  }

 private:
  jpeg_compress_struct encoder_{};
  jpeg_error_mgr errors_{};
  unsigned char* bytes_ = nullptr;
  unsigned long size_ = 0;
};

}  // namespace

std::string stillOf(Camera& camera) {
  const View view = viewOf(camera);
  const Renderer renderer(view);
  JpegFile file(view.width_px, view.height_px);
  std::vector<std::uint8_t> row;
  for (int line = 0; line < view.height_px; ++line) {
    renderer.render(line, row);
    file.append(row);
  }
  return file.take();
}

}  // namespace qvx::simulator
