// How thorough the long tests are: by default they run a tenth of their length, with QVX_EFFORT=10
// in the environment all of it.
#pragma once

#include <cstdlib>

namespace qvx::tests {

inline int effort() {
  const char* const text = std::getenv("QVX_EFFORT");
  return text == nullptr ? 1 : std::atoi(text);
}

}  // namespace qvx::tests
