#include "simulator/model/video_modes.h"

namespace qvx::simulator {

namespace {

constexpr VideoMode fiveMegapixels[] = {
    {0, 1280, 960}, {1, 640, 480}, {2, 1600, 1200}, {3, 2048, 1536}, {4, 2592, 1944}};
constexpr VideoMode twoMegapixels[] = {{0, 1280, 960}, {1, 640, 480}, {2, 1600, 1200}};
constexpr VideoMode megapixel[] = {{0, 640, 480}, {3, 1280, 1024}};
constexpr VideoMode vga[] = {{0, 640, 480}};

constexpr struct {
  std::uint16_t first, last;  // product ids
  std::span<const VideoMode> modes;
} cameras[] = {
    {0x870, 0x89F, megapixel},      {0x910, 0x91F, megapixel}, {0x920, 0x92F, twoMegapixels},
    {0x960, 0x99F, fiveMegapixels}, {0x9C0, 0x9CF, megapixel},
};

}  // namespace

std::span<const VideoMode> videoModesFor(std::uint16_t productId) {
  for (const auto& camera : cameras) {
    if (productId >= camera.first && productId <= camera.last) return camera.modes;
  }
  return vga;
}

}  // namespace qvx::simulator
