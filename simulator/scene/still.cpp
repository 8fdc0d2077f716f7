#include "simulator/scene/still.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <vector>

// After what it needs.
#include <jpeglib.h>

#include "simulator/scene/stages.h"

namespace qvx::simulator {

namespace {

// A file that grows in memory.
class JpegFile {
 public:
  JpegFile(int width, int height, int quality) {
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

  // The encoder does not write to the line, though its type says so.
  void append(const std::uint8_t* line) {
    auto* row = const_cast<JSAMPROW>(line);
    jpeg_write_scanlines(&encoder_, &row, 1);
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

Picture render(const View& view, int width, int height, std::uint64_t frame) {
  const auto columns = static_cast<std::size_t>(width), lines = static_cast<std::size_t>(height);
  std::vector<float> light = illuminated(view, columns, lines);
  blur(light, columns, lines, view.blur * width);
  Picture picture{width, height, std::vector<std::uint8_t>(light.size())};
  develop(view, light, frame, picture);
  addScaleBar(picture, view.fieldWidth_um);
  return picture;
}

std::string jpegOf(const Picture& picture, int quality) {
  JpegFile file(picture.width, picture.height, quality);
  for (int line = 0; line < picture.height; ++line) {
    file.append(&picture.rgb[picture.placeOf(0, line)]);
  }
  return file.take();
}

std::string stillOf(const Camera& camera) {
  constexpr int quality = 90;
  const VideoMode& mode = camera.video().mode();
  return jpegOf(look(camera, mode.width, mode.height, 0), quality);
}

}  // namespace qvx::simulator
