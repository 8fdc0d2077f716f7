// The controller's registers in words, for logs.
#pragma once

#include <cstdint>
#include <string_view>

namespace qvx::simulator {

// What a register is, and where its value has a name, what it says: "calibration: line through two
// points". Empty for a register that does not exist.
std::string_view meaningOf(std::uint8_t reg, std::uint8_t value);

}  // namespace qvx::simulator
