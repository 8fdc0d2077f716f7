// The capture driver of the current USB camera, found among the system's video inputs.
#pragma once

#include <functional>

#include "platform/video_proc_amp.h"

namespace qvx {

using AmplifierUse = std::function<void(platform::VideoProcAmp&)>;

// Uses the driver's picture properties, if there are any. Returns whether the system has any video
// input. Prints to standard output what is missing.
bool withAmplifier(const AmplifierUse& use);

}  // namespace qvx
