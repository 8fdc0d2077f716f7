// Presses of the touch button. The callback has no parameters, so presses are counted.
#pragma once

namespace qvxctl {

inline int presses = 0;

inline void countPress() {
  ++presses;
}

}  // namespace qvxctl
