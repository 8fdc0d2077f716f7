#include "simulator/scene/stages.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace qvx::simulator {

namespace {

constexpr int glyphWidth = 5, glyphHeight = 7;

// Bitmap font: five bits for each row of a character, from the top; u is the Greek letter mu.
constexpr std::string_view characters = "0125um";
constexpr std::uint8_t glyphs[][glyphHeight] = {
    {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}, {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E},
    {0x0E, 0x11, 0x01, 0x06, 0x08, 0x10, 0x1F}, {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E},
    {0x00, 0x00, 0x11, 0x11, 0x13, 0x1D, 0x10}, {0x00, 0x00, 0x1A, 0x15, 0x15, 0x15, 0x15},
};

// A rectangle within the picture, from its upper left corner.
void fill(Picture& picture, int left, int top, int width, int height, std::uint8_t grey) {
  for (int y = top; y < top + height; ++y) std::fill_n(picture.at(left, y), 3 * width, grey);
}

void write(Picture& picture, int left, int top, int dot, std::string_view text, std::uint8_t grey) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == ' ') continue;
    const auto& glyph = glyphs[characters.find(text[i])];
    for (int bit = 0; bit < glyphWidth * glyphHeight; ++bit) {
      const int x = bit % glyphWidth, y = bit / glyphWidth;
      if ((glyph[y] >> (glyphWidth - 1 - x) & 1) == 0) continue;
      const int column = static_cast<int>(i) * (glyphWidth + 1) + x;
      fill(picture, left + column * dot, top + y * dot, dot, dot, grey);
    }
  }
}

// The largest 1, 2 or 5 times a power of ten that is not more than a quarter of the field.
double barLength_um(double fieldWidth_um) {
  const double most_um = fieldWidth_um / 4, power = std::pow(10, std::floor(std::log10(most_um)));
  return power * (5 * power <= most_um ? 5 : 2 * power <= most_um ? 2 : 1);
}

}  // namespace

void addScaleBar(Picture& picture, double fieldWidth_um) {
  constexpr int dotsAcross = 320, margin = 8;
  constexpr std::uint8_t shadow = 0, bright = 255;
  const double length_um = barLength_um(fieldWidth_um);
  const bool large = length_um >= 1000;
  const std::string label =
      std::to_string(std::lround(large ? length_um / 1000 : length_um)) + (large ? " mm" : " um");
  const int dot = std::max(picture.width / dotsAcross, 1);
  const int length = static_cast<int>(std::lround(length_um / fieldWidth_um * picture.width));
  const int left = picture.width - margin * dot - length, top = picture.height - margin * dot;
  const int textLeft =
      left + (length - static_cast<int>(label.size()) * (glyphWidth + 1) * dot) / 2;
  const int textTop = top - (glyphHeight + 3) * dot;
  fill(picture, left - 1, top - 1, length + 2, 2 * dot + 2, shadow);
  fill(picture, left, top, length, 2 * dot, bright);
  write(picture, textLeft + 1, textTop + 1, dot, label, shadow);
  write(picture, textLeft, textTop, dot, label, bright);
}

}  // namespace qvx::simulator
