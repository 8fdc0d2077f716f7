// Pictures that the Wi-Fi camera sent.
#pragma once

#include <filesystem>

namespace qvxctl {

// From its start marker to its end marker: the library does not tell when a camera stops half-way.
bool isWholeJpeg(const std::filesystem::path& path);

}  // namespace qvxctl
