// How thorough the long tests are: usually a tenth of what they can be. QVX_EFFORT=10 in the
// environment makes it all.
#pragma once

#include <cstdlib>

namespace qvx::tests {

inline int effort() {
  const char* const text = std::getenv("QVX_EFFORT");
  return text == nullptr ? 1 : std::atoi(text);
}

}  // namespace qvx::tests
