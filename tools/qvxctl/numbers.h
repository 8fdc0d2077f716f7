// Numbers on the command line and in the output.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qvxctl {

// They take the whole text or fail as bad usage; `what` names the option or argument.
std::int32_t wholeNumber(const std::string& what, std::string_view text);  // decimal or 0x...
std::int32_t numberWithin(const std::string& what, std::string_view text, std::int32_t least,
                          std::int32_t most);
double decimalNumber(const std::string& what, std::string_view text);

// The shortest digits that read back as the same number; "inf" and "nan" too.
std::string digits(double number);

}  // namespace qvxctl
