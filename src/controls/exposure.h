// Exposure time, automatic exposure and mains flicker. Each operation follows the family of the
// device, and does nothing for a family that lacks it. Device indexes -1 and 90 are the Wi-Fi
// camera.
#pragma once

#include <cstdint>

namespace qvx {

// Exposure time in sensor lines.
void setExposureValue(int deviceIndex, std::int32_t value);
std::int32_t getExposureValue(int deviceIndex);

// Brightness that automatic exposure aims at.
void setAETarget(int deviceIndex, std::int32_t target);
std::int32_t getAETarget(int deviceIndex);  // 1 for other families, 16 without a product id

// 1 or -1: automatic, 0: manual.
void setAutoExposure(int deviceIndex, std::int32_t mode);
std::int32_t getAutoExposure(int deviceIndex);

// 0: detect the mains frequency, 1: 60 Hz, 2: 50 Hz. Goes by `nPid` as it stands.
void setFlicker(int deviceIndex, std::int32_t mode);

}  // namespace qvx
