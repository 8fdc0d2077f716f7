// The system's enumeration of its video-input category.
#pragma once

#include <objidl.h>

#include <functional>

namespace qvx::platform {

// Calls `visit` with each video input in the system's order until it returns false.
void forEachVideoMoniker(const std::function<bool(IMoniker&)>& visit);

}  // namespace qvx::platform
