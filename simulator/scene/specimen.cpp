#include "simulator/scene/stages.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace qvx::simulator {

namespace {

// ---- The specimen: an autumn leaf, a network of veins within the meshes of a coarser one, from
// the width of a hand down to single cells. Detail finer than a pixel is averaged out.

// Meshes (Worley noise) of one size. Widths and heights are in units of the cell size, so that all
// levels look alike.
struct MeshLevel {
  double cell_um;
  float halfVein, paleness;  // of the veins between the cells
  float shade, hue;          // variation between cells
};

// The point of a cell: everything nearer to it than to other points belongs to its mesh.
struct MeshPoint {
  float x, y, trait;
};

// For each pixel of a line the squared distances to the two nearest points, in cell sizes.
struct Mesh {
  Row nearest, second, trait;  // trait: of the nearest point
};

// A line of pixels across the leaf, accumulated over the levels.
struct Leaf {
  Row shade, hue, veins, height_um;
};

constexpr MeshLevel levels[] = {
    {64'000, 0.018F, 0.85F, 0.10F, 0.55F}, {14'000, 0.024F, 0.80F, 0.12F, 0.30F},
    {3'000, 0.030F, 0.65F, 0.14F, 0.22F},  {650, 0.040F, 0.55F, 0.18F, 0.16F},
    {140, 0.055F, 0.50F, 0.22F, 0.14F},    {32, 0.065F, 0.45F, 0.26F, 0.14F},
    {7, 0.080F, 0.30F, 0.30F, 0.16F},
};

constexpr float farAway = 1e9F;

// Smooth step: rises from 0 to 1 while `value` goes from -1 to 1.
float edge(float value) {
  const float t = std::fmin(std::fmax(0.5F + 0.5F * value, 0.0F), 1.0F);
  return t * t * (3 - 2 * t);
}

// Hash of a cell: reproducible, but unrelated to that of its neighbours.
std::uint64_t scrambled(std::int64_t column, std::int64_t row, std::uint64_t seed) {
  std::uint64_t hash = static_cast<std::uint64_t>(column) * 0x9E3779B97F4A7C15U ^
                       static_cast<std::uint64_t>(row) * 0xC2B2AE3D27D4EB4FU ^ seed;
  hash = (hash ^ hash >> 29) * 0xBF58476D1CE4E5B9U;
  return (hash ^ hash >> 32) * 0x94D049BB133111EBU;
}

// Sixteen bits of a hash as a number from -1 to 1.
float part(std::uint64_t hash, int shift) {
  return static_cast<float>(hash >> shift & 0xFFFF) / 32767.5F - 1;
}

// Derives a second, seemingly independent number from a number from -1 to 1.
float otherTrait(float trait) {
  const float many = 61 * (trait + 1);
  return 2 * (many - static_cast<float>(static_cast<int>(many))) - 1;
}

// The leaf's colours, from still green to withered.
constexpr float colours[][3] = {{0.05F, 0.20F, 0.03F},
                                {0.22F, 0.40F, 0.05F},
                                {0.72F, 0.50F, 0.07F},
                                {0.62F, 0.20F, 0.05F},
                                {0.34F, 0.05F, 0.05F}};
constexpr float pale[3] = {0.86F, 0.80F, 0.52F};

// `point` and `y` are passed by value: the compiler would have to reload references after every
// write.
void measure(MeshPoint point, float y, const Row& columns, std::size_t first, Mesh& mesh) {
  const float down2 = (y - point.y) * (y - point.y);
#pragma GCC ivdep  // the rows do not overlap
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const float across = columns[i] - point.x, distance2 = across * across + down2;
    float &nearest = mesh.nearest[first + i], &second = mesh.second[first + i],
          &trait = mesh.trait[first + i];
    trait = distance2 < nearest ? point.trait : trait;
    second = std::fmin(second, std::fmax(nearest, distance2));
    nearest = std::fmin(nearest, distance2);
  }
}

// Processes a grid cell by cell; each cell has one point near its centre.
Mesh meshAt(const MeshLevel& level, double y_um, double pixel_um, std::size_t width) {
  constexpr float spread = 0.38F;
  Mesh mesh{Row(width, farAway), Row(width, farAway), Row(width)};
  const double step = pixel_um / level.cell_um, left = -step * static_cast<double>(width) / 2;
  const double row = std::floor(y_um / level.cell_um);
  const auto y = static_cast<float>(y_um / level.cell_um - row);
  Row columns;
  for (std::size_t first = 0; first < width; first += columns.size()) {
    const double column = std::floor(left + step * static_cast<double>(first));
    columns.clear();
    for (std::size_t i = first; i < width; ++i) {
      const auto x = static_cast<float>(left + step * static_cast<double>(i) - column);
      if (x >= 1 && i > first) break;
      columns.push_back(x);
    }
    for (int neighbour = 0; neighbour < 9; ++neighbour) {
      const int across = neighbour % 3 - 1, down = neighbour / 3 - 1;
      const std::uint64_t hash = scrambled(static_cast<std::int64_t>(column) + across,
                                           static_cast<std::int64_t>(row) + down,
                                           static_cast<std::uint64_t>(level.cell_um));
      measure({static_cast<float>(across) + 0.5F + spread * part(hash, 0),
               static_cast<float>(down) + 0.5F + spread * part(hash, 16), part(hash, 32)},
              y, columns, first, mesh);
    }
  }
  return mesh;
}

// Veins are raised and the cells between them bulge; within the veins of coarser levels this is
// weak.
void add(MeshLevel level, const Mesh& mesh, float pixel_um, Leaf& leaf) {
  constexpr float bulge = 0.07F, ridge = 0.6F, hidden = 0.65F;
  const auto cell_um = static_cast<float>(level.cell_um);
  const float seen = edge((cell_um / pixel_um - 6) / 3);
  const float sharpness = 1 / (level.halfVein * 0.2F + 0.7F * pixel_um / cell_um);
#pragma GCC ivdep
  for (std::size_t i = 0; i < leaf.height_um.size(); ++i) {
    const float toVein = (std::sqrt(mesh.second[i]) - std::sqrt(mesh.nearest[i])) / 2;
    const float free = seen * (1 - hidden * leaf.veins[i]);
    const float vein = edge((level.halfVein - toVein) * sharpness);
    const float inside = std::fmin(toVein * 4, 1.0F);
    leaf.height_um[i] +=
        free * cell_um * (bulge * inside * (2 - inside) + ridge * level.halfVein * vein);
    leaf.shade[i] *= 1 + free * level.shade * mesh.trait[i];
    leaf.hue[i] += free * level.hue * otherTrait(mesh.trait[i]);
    leaf.veins[i] += (1 - leaf.veins[i]) * seen * level.paleness * vein;
  }
}

// The reflectance of a pixel.
Light colourOf(const Leaf& leaf, std::size_t pixel) {
  constexpr auto last = static_cast<float>(std::size(colours) - 1);
  const float place = std::clamp(leaf.hue[pixel], 0.0F, 0.999F) * last;
  const auto below = static_cast<std::size_t>(place);
  const float above = place - static_cast<float>(below);
  Light rgb;
  for (std::size_t c = 0; c < rgb.size(); ++c) {
    const float low = colours[below][c], high = colours[below + 1][c];
    const float green = (low + (high - low) * above) * leaf.shade[pixel];
    rgb[c] = green + (pale[c] - green) * leaf.veins[pixel];
  }
  return rgb;
}

// The leaf's centre is at 0, 0; y points down.
Leaf leafAt(double y_um, double pixel_um, std::size_t width) {
  Leaf leaf{Row(width, 1), Row(width, 0.42F), Row(width), Row(width)};
  for (const MeshLevel& level : levels) {
    if (level.cell_um < 3 * pixel_um) break;
    add(level, meshAt(level, y_um, pixel_um, width), static_cast<float>(pixel_um), leaf);
  }
  return leaf;
}

// ---- Its illumination

// Directions of the quadrants from the centre: the first at the upper right, then clockwise.
constexpr float directions[4][2] = {{0.7F, -0.7F}, {0.7F, 0.7F}, {-0.7F, 0.7F}, {-0.7F, -0.7F}};

// A position relative to the picture's centre, in units of half its width; or a slope.
struct Vector {
  float across, down;

  float dot(const Vector& other) const { return across * other.across + down * other.down; }
};

class Lighting {
 public:
  Lighting(const View& view, float field_um) : view_(view) {
    constexpr float beam_um = 500, smallest = 0.015F;
    beam_ = std::max(2 * beam_um / field_um, smallest);
    for (std::size_t i = 0; i < view.quadrants.size(); ++i) {
      const float share = static_cast<float>(view.quadrants[i]) / 4;
      ring_ += share;
      from_.across += share * directions[i][0];
      from_.down += share * directions[i][1];
    }
  }

  // A lit quadrant brightens its neighbourhood and the slopes that face it. The axial light is
  // reflected by level parts; hollows get less of all light.
  float at(const Vector& place, const Vector& slope) const {
    constexpr float nearer = 0.8F, relief = 2.2F, hollow = 0.25F, minShare = 0.2F;
    const float steep = std::min(slope.dot(slope), 1.0F);
    const float level = ring_ + nearer * place.dot(from_);
    const float fromRing = std::max(level - relief * slope.dot(from_), minShare * level);
    const float axial = static_cast<float>(view_.axial) * (1 - steep);
    return (1 - hollow * steep) * (fromRing + axial + static_cast<float>(roomLight));
  }

  // The aiming point: a red spot as wide as its beam, but never too small to be visible.
  float aimAt(const Vector& place) const {
    constexpr float brightness = 2;
    if (view_.aim == 0) return 0;
    return brightness * static_cast<float>(view_.aim) *
           std::exp(-place.dot(place) / (beam_ * beam_));
  }

 private:
  const View& view_;
  float ring_ = 0, beam_;
  Vector from_{};
};

}  // namespace

std::vector<float> illuminated(const View& view, std::size_t width, std::size_t height) {
  const double step_um = view.fieldWidth_um / static_cast<double>(width);
  const auto pixel_um = static_cast<float>(step_um), half = static_cast<float>(width) / 2;
  const Lighting lights(view, static_cast<float>(view.fieldWidth_um));
  Leaf above;
  std::vector<float> rgb;
  rgb.reserve(3 * width * height);
  for (std::size_t line = 0; line <= height; ++line) {
    const double y = static_cast<double>(line) - 1 - static_cast<double>(height) / 2;
    Leaf here = leafAt(y * step_um, step_um, width);
    for (std::size_t i = 0; line != 0 && i < width; ++i) {
      const Vector place{static_cast<float>(i) / half - 1, static_cast<float>(y) / half};
      const std::size_t left = i == 0 ? 0 : i - 1, right = std::min(i + 1, width - 1);
      const Vector slope{(here.height_um[right] - here.height_um[left]) / (2 * pixel_um),
                         (here.height_um[i] - above.height_um[i]) / pixel_um};
      const float light = lights.at(place, slope);
      for (const float part : colourOf(here, i)) rgb.push_back(part * light);
      rgb.end()[-3] += lights.aimAt(place);
    }
    above = std::move(here);
  }
  return rgb;
}

}  // namespace qvx::simulator
