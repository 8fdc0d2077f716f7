// A bar of a round length in a picture's corner, as microscopes add it.
#pragma once

#include "simulator/scene/still.h"

namespace qvx::simulator {

void addScaleBar(Picture& picture, double fieldWidth_um);

// The longest of 1, 2 or 5 times a power of ten that is at most a quarter of the field.
double scaleBarLength_um(double fieldWidth_um);

}  // namespace qvx::simulator
