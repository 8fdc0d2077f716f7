// The capture filter of a virtual camera: what an application gets when it opens the device.
#pragma once

#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/protocol.h"

namespace qvx::simulator {

// A reference to a new one.
IBaseFilter* makeCaptureFilter(const CameraRecord& camera);

}  // namespace qvx::simulator
