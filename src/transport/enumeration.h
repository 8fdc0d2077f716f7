// The video-input devices of the maker, by index: their paths and names.
#pragma once

#include <string>

namespace qvx {

// Refills the path table, cameras of product ids 0x9B0 to 0x9BF last; for indexes -1 and 90, which
// name no video input, does nothing.
void refreshDevicePaths(int deviceIndex);

// The same for GetDeviceIDA: leaves the product id of the last camera found in `nCurrPid`.
void refreshDevicePathsAndProductId(int deviceIndex);

// Refills both tables, but brings only the names in the order above; the paths stay in the system's
// order until the next refreshDevicePaths. Does nothing for index 90.
void refreshDeviceNames(int deviceIndex);

// A new wide copy of ANSI text; the caller owns it (delete[]).
wchar_t* chr2wch(const char* text);

// Wide text in the OEM code page; null counts as empty.
void Wchar_tToString(std::string& out, const wchar_t* text);

}  // namespace qvx
