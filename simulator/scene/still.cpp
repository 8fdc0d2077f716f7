#include "simulator/scene/still.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

// After the headers that it depends on.
#include <jpeglib.h>

#include "simulator/scene/stages.h"

namespace qvx::simulator {

Picture render(const View& view, int width, int height, std::uint64_t frame) {
  std::vector<float> light =
      illuminated(view, static_cast<std::size_t>(width), static_cast<std::size_t>(height));
  Picture picture{width, height, std::vector<std::uint8_t>(light.size())};
  develop(view, light, frame, picture);
  addScaleBar(picture, view.fieldWidth_um);
  return picture;
}

std::string jpegOf(const Picture& picture, int quality) {
  jpeg_compress_struct encoder{};
  jpeg_error_mgr errors{};
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  encoder.err = jpeg_std_error(&errors);
  jpeg_create_compress(&encoder);
  jpeg_mem_dest(&encoder, &bytes, &size);
  encoder.image_width = static_cast<JDIMENSION>(picture.width);
  encoder.image_height = static_cast<JDIMENSION>(picture.height);
  encoder.input_components = 3;
  encoder.in_color_space = JCS_RGB;
  jpeg_set_defaults(&encoder);
  jpeg_set_quality(&encoder, quality, TRUE);
  jpeg_start_compress(&encoder, TRUE);
  for (int line = 0; line < picture.height; ++line) {
    // The encoder does not modify the line, although its type is not const.
    auto* row = const_cast<JSAMPROW>(&picture.rgb[picture.placeOf(0, line)]);
    jpeg_write_scanlines(&encoder, &row, 1);
  }
  jpeg_finish_compress(&encoder);
  jpeg_destroy_compress(&encoder);
  const std::unique_ptr<unsigned char, decltype(&std::free)> owner(bytes, std::free);
  return {reinterpret_cast<const char*>(bytes), size};
}

std::string stillOf(const Camera& camera) {
  constexpr int quality = 90;
  const VideoMode& mode = camera.video.mode();
  return jpegOf(look(camera, mode.width, mode.height, 0), quality);
}

}  // namespace qvx::simulator
