// The capture filter of a simulated camera, which an application gets when it opens the device.
#pragma once

#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/protocol.h"

namespace qvx::simulator {

// Returns a new filter with one reference, owned by the caller.
IBaseFilter* makeCaptureFilter(const CameraRecord& camera);

}  // namespace qvx::simulator
