// Presses of the touch button. The library calls back without saying anything: they are counted.
#pragma once

namespace qvxctl {

inline int presses = 0;

inline void countPress() {
  ++presses;
}

}  // namespace qvxctl
