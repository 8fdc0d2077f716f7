#include "simulator/scene/stages.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace qvx::simulator {

namespace {

constexpr int glyphWidth = 5, glyphHeight = 7;

// Five bits for each line of a character, from the top; u stands for the Greek letter.
constexpr struct {
  char character;
  std::uint8_t lines[glyphHeight];
} glyphs[] = {
    {'0', {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}},
    {'1', {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E}},
    {'2', {0x0E, 0x11, 0x01, 0x06, 0x08, 0x10, 0x1F}},
    {'5', {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E}},
    {'u', {0x00, 0x00, 0x11, 0x11, 0x13, 0x1D, 0x10}},
    {'m', {0x00, 0x00, 0x1A, 0x15, 0x15, 0x15, 0x15}},
};

struct Box {
  int left, top, width, height;
};

void fill(Picture& picture, const Box& box, std::uint8_t grey) {
  const int left = std::max(box.left, 0), top = std::max(box.top, 0);
  const int right = std::min(box.left + box.width, picture.width);
  const int bottom = std::min(box.top + box.height, picture.height);
  for (int y = top; y < bottom; ++y) {
    for (int x = left; x < right; ++x) std::fill_n(picture.at(x, y), 3, grey);
  }
}

void write(Picture& picture, int left, int top, int dot, std::string_view text, std::uint8_t grey) {
  for (const char character : text) {
    const auto* const glyph =
        std::ranges::find(glyphs, character, [](const auto& g) { return g.character; });
    for (int bit = 0; glyph != std::end(glyphs) && bit < glyphWidth * glyphHeight; ++bit) {
      const int x = bit % glyphWidth, y = bit / glyphWidth;
      if ((glyph->lines[y] >> (glyphWidth - 1 - x) & 1) == 0) continue;
      fill(picture, {left + x * dot, top + y * dot, dot, dot}, grey);
    }
    left += (glyphWidth + 1) * dot;
  }
}

// The longest of 1, 2 or 5 times a power of ten that is at most a quarter of the field.
double barLength_um(double fieldWidth_um) {
  const double most_um = fieldWidth_um / 4;
  const double power = std::pow(10, std::floor(std::log10(most_um)));
  for (const double digit : {5.0, 2.0}) {
    if (digit * power <= most_um) return digit * power;
  }
  return power;
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
  fill(picture, {left - 1, top - 1, length + 2, 2 * dot + 2}, shadow);
  fill(picture, {left, top, length, 2 * dot}, bright);
  write(picture, textLeft + 1, textTop + 1, dot, label, shadow);
  write(picture, textLeft, textTop, dot, label, bright);
}

}  // namespace qvx::simulator
