// Numbers on the command line and in the output.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qvxctl {

// Both take the whole text or fail as bad usage; `what` names the option or argument.
std::int32_t wholeNumber(const std::string& what, std::string_view text);  // decimal or 0x...
double decimalNumber(const std::string& what, std::string_view text);

// The shortest digits that read back as the same number; "inf" and "nan" too.
std::string digits(double number);

}  // namespace qvxctl
