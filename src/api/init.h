// The initialisation sequence.
#pragma once

namespace qvx {

// Probes the transports in a fixed order, settles the current device and its product id, and sets
// up the reading of its magnification. Returns 1 when the library is usable, else 0.
int initialize();

}  // namespace qvx
