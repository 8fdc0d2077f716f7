// Elementary functions in single precision throughout.
#pragma once

#include <cmath>

namespace qvx {

inline float log(float x) {
  return std::log(x);
}

inline float pow(float x, float y) {
  return std::pow(x, y);
}

// By repeated squaring; the exponent is not negative.
inline float pow(float x, int n) {
  float power = 1.0F;
  for (; n > 0; n >>= 1) {
    if ((n & 1) != 0) power *= x;
    x *= x;
  }
  return power;
}

}  // namespace qvx
