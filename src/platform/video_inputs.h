// The system's list of video-capture devices.
#pragma once

#include <string>
#include <vector>

namespace qvx::platform {

struct VideoInput {
  std::wstring displayName;   // the device path, as the system writes it
  std::wstring friendlyName;  // what a person sees
};

// The video inputs in the system's order, without those that lack one of the two names.
// Empty when there are none or the system's list cannot be had. Needs COM on the
// calling thread.
std::vector<VideoInput> listVideoInputs();

}  // namespace qvx::platform
