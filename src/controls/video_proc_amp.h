// Picture properties (brightness, contrast and the like) of the current camera, numbered as
// DirectShow numbers them: 0 brightness to 9 gain, 13 power-line frequency. A USB camera's are
// those of its capture driver; the Wi-Fi camera has the first six and tells of them in its control
// document.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/video_proc_amp.h"

namespace qvx {

// Does nothing when the camera is not there or does not have the property.
void setVideoProcAmp(std::int32_t property, std::int32_t value);

// -1 for a property or a USB camera that is not there; 0 when the Wi-Fi camera does not answer or
// the system has no video input at all.
std::int32_t getVideoProcAmp(std::int32_t property);

// All -1 for a property that the camera does not have; nothing when the camera is not there, does
// not answer or has no picture properties.
std::optional<platform::PropertyRange> getVideoProcAmpRange(std::int32_t property);

}  // namespace qvx
