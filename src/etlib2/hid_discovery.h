// Finding the bridges among all HID devices, by the feature reports that their firmware offers.
#pragma once

#include <memory>
#include <vector>

#include "etlib2/bridge.h"

namespace qvx {

// At most 24, in the system's order. A bridge that cannot be opened is among them; its accesses
// fail.
std::vector<std::unique_ptr<Bridge>> findHidBridges();

}  // namespace qvx
