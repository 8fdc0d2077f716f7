#include "simulator/scene/specimen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace qvx::simulator {

// Meshes of one size. Widths and heights count in cells, so that every level looks like the last.
struct MeshLevel {
  double cell_um;
  float halfVein, paleness;  // of the veins between the cells
  float shade, hue;          // by how much they differ among cells
};

// A point of a cell: all that is nearer to it than to other points belongs to its mesh.
struct MeshPoint {
  float x, y, trait;
};

namespace {

constexpr MeshLevel levels[] = {
    {64'000, 0.018F, 0.85F, 0.10F, 0.55F}, {14'000, 0.024F, 0.80F, 0.12F, 0.30F},
    {3'000, 0.030F, 0.65F, 0.14F, 0.22F},  {650, 0.040F, 0.55F, 0.18F, 0.16F},
    {140, 0.055F, 0.50F, 0.22F, 0.14F},    {32, 0.065F, 0.45F, 0.26F, 0.14F},
    {7, 0.080F, 0.30F, 0.30F, 0.16F},
};

constexpr float farAway = 1e9F;

// By value, unlike the standard's: loops with these become vector instructions.
float lower(float a, float b) {
  return a < b ? a : b;
}
float higher(float a, float b) {
  return a > b ? a : b;
}

// From 0 to 1 while `value` goes from -1 to 1.
float edge(float value) {
  const float t = lower(higher(0.5F + 0.5F * value, 0), 1);
  return t * t * (3 - 2 * t);
}

// The same for the same cell, without any order among neighbours.
std::uint64_t scrambled(std::int64_t column, std::int64_t row, std::uint64_t seed) {
  std::uint64_t hash = static_cast<std::uint64_t>(column) * 0x9E3779B97F4A7C15U ^
                       static_cast<std::uint64_t>(row) * 0xC2B2AE3D27D4EB4FU ^ seed;
  hash = (hash ^ hash >> 29) * 0xBF58476D1CE4E5B9U;
  return (hash ^ hash >> 32) * 0x94D049BB133111EBU;
}

// Sixteen bits of a hash, from -1 to 1.
float part(std::uint64_t hash, int shift) {
  return static_cast<float>(hash >> shift & 0xFFFF) / 32767.5F - 1;
}

// A second number from one from -1 to 1, as if it had nothing to do with it.
float otherTrait(float trait) {
  const float many = 61 * (trait + 1);
  return 2 * (many - static_cast<float>(static_cast<int>(many))) - 1;
}

// The leaf's colours, from what is still green to what is withered.
constexpr float colours[][3] = {{0.05F, 0.20F, 0.03F},
                                {0.22F, 0.40F, 0.05F},
                                {0.72F, 0.50F, 0.07F},
                                {0.62F, 0.20F, 0.05F},
                                {0.34F, 0.05F, 0.05F}};
constexpr float pale[3] = {0.86F, 0.80F, 0.52F};

}  // namespace

void Specimen::draw(double y_um, SpecimenLine& line) {
  std::ranges::fill(cells_.shade, 1.0F);
  std::ranges::fill(cells_.hue, 0.42F);
  std::ranges::fill(cells_.veins, 0.0F);
  std::ranges::fill(line.height_um, 0.0F);
  for (const MeshLevel& level : levels) {
    if (level.cell_um < 3 * pixel_um_) break;
    measure(level, y_um);
    add(level, line.height_um);
  }
  paint(line.rgb);
}

// The two nearest points of each pixel, in cells.
void Specimen::measure(const MeshLevel& level, double y_um) {
  constexpr float spread = 0.38F;  // of a point around the middle of its square
  const std::size_t width = cells_.x.size();
  const double step = pixel_um_ / level.cell_um, left = -step * static_cast<double>(width) / 2;
  const double row = std::floor(y_um / level.cell_um);
  const auto y = static_cast<float>(y_um / level.cell_um - row);
  std::ranges::fill(cells_.nearest, farAway);
  std::ranges::fill(cells_.second, farAway);
  for (std::size_t first = 0; first < width;) {
    const double column = std::floor(left + step * static_cast<double>(first));
    std::size_t end = first;
    for (; end < width; ++end) {
      cells_.x[end] = static_cast<float>(left + step * static_cast<double>(end) - column);
      if (cells_.x[end] >= 1 && end > first) break;
    }
    for (int neighbour = 0; neighbour < 9; ++neighbour) {
      const int across = neighbour % 3 - 1, down = neighbour / 3 - 1;
      const std::uint64_t hash = scrambled(static_cast<std::int64_t>(column) + across,
                                           static_cast<std::int64_t>(row) + down,
                                           static_cast<std::uint64_t>(level.cell_um));
      measure({static_cast<float>(across) + 0.5F + spread * part(hash, 0),
               static_cast<float>(down) + 0.5F + spread * part(hash, 16), part(hash, 32)},
              y, first, end);
    }
    first = end;
  }
}

void Specimen::measure(const MeshPoint& point, float y, std::size_t first, std::size_t end) {
  const float* const x = cells_.x.data();
  float *const nearest = cells_.nearest.data(), *const second = cells_.second.data(),
               *const trait = cells_.trait.data();
  const float down2 = (y - point.y) * (y - point.y);
  const MeshPoint here = point;
#pragma GCC ivdep  // the lines do not overlap
  for (std::size_t i = first; i < end; ++i) {
    const float across = x[i] - here.x, before = nearest[i];
    const float distance2 = across * across + down2;
    trait[i] = distance2 < before ? here.trait : trait[i];
    second[i] = lower(second[i], higher(before, distance2));
    nearest[i] = lower(before, distance2);
  }
}

// Veins stand out, cells bulge between them; in the veins of coarser levels there is little of
// that.
void Specimen::add(const MeshLevel& level, std::vector<float>& height_um) {
  constexpr float bulge = 0.07F, ridge = 0.6F, hidden = 0.65F;
  const auto cell_um = static_cast<float>(level.cell_um), pixel = static_cast<float>(pixel_um_);
  const float seen = edge((cell_um / pixel - 6) / 3);
  const float sharpness = 1 / (level.halfVein * 0.2F + 0.7F * pixel / cell_um);
  const float *const nearest = cells_.nearest.data(), *const second = cells_.second.data(),
                     *const trait = cells_.trait.data();
  float *const height = height_um.data(), *const shade = cells_.shade.data(),
               *const hue = cells_.hue.data(), *const veins = cells_.veins.data();
  const std::size_t width = height_um.size();
  const float halfVein = level.halfVein, paleness = seen * level.paleness, swell = cell_um * bulge,
              rise = cell_um * ridge * halfVein, shades = level.shade, hues = level.hue;
#pragma GCC ivdep
  for (std::size_t i = 0; i < width; ++i) {
    const float toVein = (std::sqrt(second[i]) - std::sqrt(nearest[i])) / 2;
    const float free = seen * (1 - hidden * veins[i]);
    const float vein = edge((halfVein - toVein) * sharpness);
    const float inside = lower(toVein * 4, 1);
    height[i] += free * (swell * inside * (2 - inside) + rise * vein);
    shade[i] *= 1 + free * shades * trait[i];
    hue[i] += free * hues * otherTrait(trait[i]);
    veins[i] += (1 - veins[i]) * paleness * vein;
  }
}

void Specimen::paint(std::vector<float>& rgb) const {
  constexpr auto last = static_cast<float>(std::size(colours) - 1);
  for (std::size_t i = 0; i < cells_.hue.size(); ++i) {
    const float place = std::clamp(cells_.hue[i], 0.0F, 0.999F) * last;
    const auto below = static_cast<std::size_t>(place);
    const float above = place - static_cast<float>(below);
    for (std::size_t c = 0; c < 3; ++c) {
      const float leaf = (colours[below][c] + (colours[below + 1][c] - colours[below][c]) * above) *
                         cells_.shade[i];
      rgb[3 * i + c] = leaf + (pale[c] - leaf) * cells_.veins[i];
    }
  }
}

}  // namespace qvx::simulator
