// The feature word: which hardware a camera has, as an application and the LED states see it.
#pragma once

#include <cstdint>

namespace qvx {

// Newer cameras report their features in controller register 0x80; for the others the word follows
// from the product id. Lists the cameras when the index has none yet, sets `nPid`, and reads the
// register and, where it matters, register 0x83. Only the low 8 bits are ever set.
std::int32_t featureWord(int deviceIndex);

}  // namespace qvx
