// Bytes of a request as the journal writes them.
#pragma once

#include <string>

namespace qvx::tests {

// What fills a request up: " 00" so many times.
inline std::string zeros(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += " 00";
  return text;
}

}  // namespace qvx::tests
