// Bridges reached by the extension unit of their video-class interface.
#pragma once

#include <memory>
#include <vector>

#include "etlib2/bridge.h"

namespace qvx {

// The bridges among the system's video inputs, at most 8, in the system's order. Needs COM.
std::vector<std::unique_ptr<Bridge>> findExtensionUnitBridges();

}  // namespace qvx
