// Conversions between the system's wide text and its narrow code pages. Characters without a
// counterpart become the code page's replacement character; nothing fails.
#pragma once

#include <string>
#include <string_view>

namespace qvx::platform {

std::wstring ansiToWide(std::string_view text);
std::string wideToAnsi(std::wstring_view text);
std::string wideToOem(std::wstring_view text);
std::string wideToUtf8(std::wstring_view text);

}  // namespace qvx::platform
