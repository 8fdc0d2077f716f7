// Pictures that the Wi-Fi camera sent.
#pragma once

#include <filesystem>

namespace qvxctl {

// From its start marker to its end marker: the library does not report a camera that stops
// half-way.
bool isWholeJpeg(const std::filesystem::path& path);

}  // namespace qvxctl
