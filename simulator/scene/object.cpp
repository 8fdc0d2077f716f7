#include "simulator/scene/object.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace qvx::simulator {

namespace {

constexpr Colour sheet = {0.62, 0.60, 0.55}, ink = {0.04, 0.04, 0.05};
constexpr Colour grainColours[] = {
    {0.70, 0.30, 0.20}, {0.25, 0.45, 0.60}, {0.85, 0.70, 0.30}, {0.20, 0.40, 0.22}};

Colour mix(const Colour& under, const Colour& over, double part) {
  const auto mixed = [part](double a, double b) { return a + (b - a) * part; };
  return {mixed(under.red, over.red), mixed(under.green, over.green), mixed(under.blue, over.blue)};
}

// From 0 to 1 while `value` goes from -softness to softness.
double edge(double value, double softness) {
  const double t = std::clamp(0.5 + 0.5 * value / softness, 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

// How much of a line of that width is seen at a distance from its middle.
double line(double distance, double width, double softness) {
  return edge(distance + width / 2, softness) - edge(distance - width / 2, softness);
}

// A regular pattern finer than the softness blends into grey before its members touch.
double distinctness(double spacing, double softness) {
  return 1 - edge(softness - spacing * 0.2, spacing * 0.1);
}

// The same for the same cell, without any order among neighbours.
std::uint32_t scrambled(std::int64_t column, std::int64_t row, std::uint32_t seed) {
  auto hash = static_cast<std::uint32_t>(column) * 0x9E3779B1U ^
              static_cast<std::uint32_t>(row) * 0x85EBCA77U ^ seed;
  hash = (hash ^ hash >> 15) * 0x2C1B3C6DU;
  hash = (hash ^ hash >> 12) * 0x297A2D39U;
  return hash ^ hash >> 15;
}

// Eight bits of a hash as a part of 1.
double part(std::uint32_t hash, int shift) {
  return (hash >> shift & 0xFF) / 255.0;
}

// One grain in each square cell of the sheet.
Colour withGrain(const Colour& under, double x_um, double y_um, double softness_um,
                 double cell_um) {
  const double column = std::floor(x_um / cell_um), row = std::floor(y_um / cell_um);
  const std::uint32_t hash =
      scrambled(static_cast<std::int64_t>(column), static_cast<std::int64_t>(row),
                static_cast<std::uint32_t>(cell_um));
  const double middleX = (column + 0.4 + 0.2 * part(hash, 0)) * cell_um;
  const double middleY = (row + 0.4 + 0.2 * part(hash, 8)) * cell_um;
  const double radius = (0.08 + 0.12 * part(hash, 16)) * cell_um;
  const double distance = std::hypot(x_um - middleX, y_um - middleY);
  const double seen = edge(radius - distance, softness_um) * distinctness(cell_um, softness_um);
  return mix(under, grainColours[hash >> 24 & 3], seen);
}

double ruler(double x_um, double y_um, double softness_um) {
  constexpr double mark_um = 100, long_um = 1000;
  const double toMark = std::abs(std::remainder(x_um, mark_um));
  const double toLong = std::abs(std::remainder(x_um, long_um));
  const double below = edge(y_um, softness_um);
  const double shortMarks = line(toMark, 12, softness_um) * below * edge(300 - y_um, softness_um) *
                            distinctness(mark_um, softness_um);
  const double longMarks = line(toLong, 24, softness_um) * below * edge(600 - y_um, softness_um) *
                           distinctness(long_um, softness_um);
  return std::max({line(y_um, 24, softness_um), shortMarks, longMarks});
}

}  // namespace

Colour colourAt(double x_um, double y_um, double softness_um) {
  Colour colour = sheet;
  for (const double cell_um : {20'000.0, 2'000.0, 200.0}) {
    colour = withGrain(colour, x_um, y_um, softness_um, cell_um);
  }
  return mix(colour, ink, ruler(x_um, y_um, softness_um));
}

}  // namespace qvx::simulator
