#include "simulator/scene/stages.h"

#include <algorithm>
#include <cmath>

namespace qvx::simulator {

namespace {

// Each item, which is `size` numbers, becomes the mean of those around it. The outermost stand for
// what lies beyond them. A sum runs along: the cost does not depend on the radius.
void average(const float* from, float* to, std::ptrdiff_t count, std::ptrdiff_t size,
             double radius) {
  const auto whole = static_cast<std::ptrdiff_t>(radius);
  const auto rest = static_cast<float>(radius - static_cast<double>(whole));
  const float weight = 1 / (static_cast<float>(2 * whole + 1) + 2 * rest);
  const auto item = [=](std::ptrdiff_t index) {
    return from + std::clamp<std::ptrdiff_t>(index, 0, count - 1) * size;
  };
  Row sum(size);
  for (std::ptrdiff_t i = -whole; i <= whole; ++i) {
    for (std::ptrdiff_t k = 0; k < size; ++k) sum[k] += item(i)[k];
  }
  for (std::ptrdiff_t i = 0; i < count; ++i, to += size) {
    const float *const before = item(i - whole - 1), *const leaving = item(i - whole),
                       *const after = item(i + whole + 1);
    for (std::ptrdiff_t k = 0; k < size; ++k) {
      to[k] = weight * (sum[k] + rest * (before[k] + after[k]));
      sum[k] += after[k] - leaving[k];
    }
  }
}

}  // namespace

void blur(std::vector<float>& light, std::size_t width, std::size_t height, double radius_px) {
  constexpr double least_px = 0.05;
  constexpr int times = 2;  // once would show squares
  if (radius_px < least_px) return;
  std::vector<float> between(light.size());
  for (int i = 0; i < times; ++i) {
    for (std::size_t start = 0; start < light.size(); start += 3 * width) {
      average(&light[start], &between[start], width, 3, radius_px / times);
    }
    average(between.data(), light.data(), height, 3 * width, radius_px / times);
  }
}

}  // namespace qvx::simulator
