// What lies beneath the simulated microscope: a leaf in autumn, a network of veins within the
// meshes of a coarser one, from a hand's width down to single cells.
#pragma once

#include <cstddef>
#include <vector>

namespace qvx::simulator {

struct MeshLevel;
struct MeshPoint;

// A line of pixels across the specimen. Its middle is 0, 0; y points down.
struct SpecimenLine {
  explicit SpecimenLine(std::size_t width) : rgb(3 * width), height_um(width) {}

  std::vector<float> rgb;  // reflected part of the light
  std::vector<float> height_um;
};

// Detail too fine for the pixels blends into its mean.
class Specimen {
 public:
  Specimen(std::size_t width, double pixel_um) : pixel_um_(pixel_um), cells_(width) {}

  void draw(double y_um, SpecimenLine& line);

 private:
  struct Cells {
    explicit Cells(std::size_t width)
        : x(width),
          nearest(width),
          second(width),
          trait(width),
          shade(width),
          hue(width),
          veins(width) {}

    std::vector<float> x, nearest, second, trait;  // of one level
    std::vector<float> shade, hue, veins;          // of all levels so far
  };

  void measure(const MeshLevel& level, double y_um);
  void measure(const MeshPoint& point, float y, std::size_t first, std::size_t end);
  void add(const MeshLevel& level, std::vector<float>& height_um);
  void paint(std::vector<float>& rgb) const;

  double pixel_um_;
  Cells cells_;
};

}  // namespace qvx::simulator
