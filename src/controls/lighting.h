// The lights of the lighting controller: the segmented ring, the axial light and the aiming light.
// Levels and switch values are not checked: USB cameras get their low byte, Wi-Fi cameras the whole
// number.
#pragma once

#include <array>
#include <cstdint>

namespace qvx {

// Lighting commands sent to each device index, the Wi-Fi camera at 90; 0 = none yet.
inline std::array<std::int32_t, 100> SEGCount{};

// Writes the switch register of the ring.
void setSegSwitch(int deviceIndex, std::int32_t value);

// Sets the level of the whole ring; 0 switches it off first.
void setSegLevel(int deviceIndex, std::int32_t level);

// Sets the level of the ring (quadrant 0) or of one quadrant (1 to 4), on rings that have them.
void setSegQuadrant(int deviceIndex, std::int32_t quadrant, std::int32_t level);

// Both go by the model of the current device, whichever device they write to.
void setAxialLevel(int deviceIndex, std::int32_t level);
void setAimpointLevel(int deviceIndex, std::int32_t level);

// Puts a camera's lights into segment mode. The first of the commands above does so by itself.
// Goes by the model of the current device, too.
void LedCtrlUVC5640_SegSet(int deviceIndex);

// Whether the current camera says that its lights are in segment mode; cameras other than
// 0x960 to 0x99F are not asked, and count as no.
bool isSEGMode();

}  // namespace qvx
