// Everything inside the client is UTF-8; the library speaks UTF-16 and the system's code pages.
#pragma once

#include <string>
#include <string_view>

namespace qvxctl {

std::string utf8(std::wstring_view text);

std::wstring wide(std::string_view utf8Text);

// Narrow text of the library is in the OEM code page.
std::string utf8FromOem(std::string_view text);

// The library takes narrow text in the ANSI code page; what that lacks becomes a substitute.
std::string ansi(std::string_view utf8Text);

}  // namespace qvxctl
