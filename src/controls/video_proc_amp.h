// Picture properties (brightness, contrast and the like) of the current camera. Those of a USB
// camera are its capture driver's; the Wi-Fi camera has the first six and describes them in its
// control document.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/video_proc_amp.h"

namespace qvx {

using platform::PictureProperty;

// Does nothing when the camera is not there or does not have the property.
void setVideoProcAmp(PictureProperty property, std::int32_t value);

// -1 for a property or a USB camera that is not there; 0 when the Wi-Fi camera does not answer or
// the system has no video input at all.
std::int32_t getVideoProcAmp(PictureProperty property);

// All -1 for a property that the camera does not have; nothing when the camera is not there, does
// not answer or has no picture properties.
std::optional<platform::PropertyRange> getVideoProcAmpRange(PictureProperty property);

}  // namespace qvx
