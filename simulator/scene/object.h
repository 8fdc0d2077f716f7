// What lies beneath the simulated microscope: a sheet with grains of three sizes, and a ruler.
#pragma once

namespace qvx::simulator {

struct Colour {
  double red, green, blue;  // reflected part of the light
};

// At a place of the sheet, whose middle is 0, 0; y points down. `softness_um` is how far an edge
// spreads to either side: for want of focus, and at least as far as half a pixel.
//
// The ruler lies along y = 0, with a mark below it at every 100 um: long ones at each millimetre.
Colour colourAt(double x_um, double y_um, double softness_um);

}  // namespace qvx::simulator
