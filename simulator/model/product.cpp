#include "simulator/model/product.h"

namespace qvx::simulator {

namespace {

using enum CalibrationForm;
using namespace feature;

constexpr std::uint8_t zoomLens = lens | magnification;

constexpr Lights onPins = {erased, erased};
constexpr Lights ring = {0, erased};
constexpr Lights segments = {0, 5};
constexpr Lights quadrants = {4, erased};
constexpr Lights segmentedQuadrants = {4, 5};
constexpr Lights twoRings = {4, 4};

// Every form of calibration occurs, and cameras with and without each feature do. A camera whose
// zero position is at 0x40 has no zoom encoder: they would share the registers.
constexpr Product products[] = {
    {0x890, 0x891, erased, bytes, Lens::none, onPins},
    {0x892, 0x893, erased, hundredths, Lens::none, onPins},
    {0x910, 0x91F, lens | variant2, none, Lens::zeroAt40, onPins},
    {0x930, 0x93F, erased, line, Lens::none, onPins},
    {0x940, 0x949, erased, none, Lens::zeroAt40, onPins},

    {0x960, 0x967, variant2, none, Lens::none, ring},
    {0x968, 0x968, variant3 | lightingController, none, Lens::none, segments},
    {0x969, 0x96D, variant3, none, Lens::none, ring},
    {0x96E, 0x96F, 0, none, Lens::none, ring},
    {0x970, 0x977, magnification | aimingLight | variant2, parabola, Lens::none, ring},
    {0x978, 0x978, magnification | variant3 | lightingController, floats2, Lens::none, segments},
    {0x979, 0x97C, magnification | variant3, floats3, Lens::none, ring},
    {0x97D, 0x97F, magnification | variant3, floats4, Lens::none, ring},
    {0x980, 0x980, lens | variant2, none, Lens::zeroAt40, ring},
    {0x981, 0x987, lens | variant3, none, Lens::zeroAt40, ring},
    {0x988, 0x98F, lens | variant3, none, Lens::zeroAt40Wide, ring},
    {0x990, 0x994, zoomLens | variant2, cubic, Lens::zeroAt50, ring},
    {0x995, 0x997, zoomLens | variant3, cubic, Lens::zeroAt50, ring},
    {0x998, 0x998, zoomLens | variant3 | lightingController, cubic, Lens::zeroAt50,
     segmentedQuadrants},
    {0x999, 0x99F, zoomLens | variant3, parabola, Lens::zeroAt50, ring},

    {0x9B0, 0x9B0, zoomLens | variant3 | lightingController, parabola, Lens::voiceCoil, ring},
    {0x9B1, 0x9BF, zoomLens | variant2 | lightingController, cubic, Lens::zeroAt50, ring},
    {0x9C0, 0x9C3, zoomLens | variant2 | lightingController, cubic, Lens::zeroAt50, ring},
    {0x9C4, 0x9C6, zoomLens | variant3 | lightingController, line, Lens::zeroAt50, quadrants},
    {0x9C7, 0x9CF, lens | variant2 | lightingController, none, Lens::zeroAt50, ring},
    {0x9D0, 0x9D2, variant2 | lightingController, none, Lens::none, ring},
    {0x9D3, 0x9D6, variant3 | lightingController, none, Lens::none, ring},
    {0x9D7, 0x9D8, variant2, none, Lens::none, ring},
    {0x9D9, 0x9DF, variant3, none, Lens::none, ring},
    {0x9E0, 0x9E1, zoomLens | aimingLight | variant2 | lightingController, parabola,
     Lens::voiceCoil, ring, 8},
    {0x9E2, 0x9E3, zoomLens | variant2 | lightingController, cubic, Lens::voiceCoil, quadrants, 5},
    {0x9E4, 0x9E6, zoomLens | secondRing | variant3, line, Lens::voiceCoil, twoRings, 6},
    {0x9E7, 0x9EF, lens | variant2 | lightingController, none, Lens::voiceCoil, ring, 0},
};

constexpr bool ascending() {
  int previous = -1;
  for (const Product& product : products) {
    if (product.first <= previous || product.last < product.first) return false;
    previous = product.last;
  }
  return true;
}
static_assert(ascending(), "every product id stands in one row at most");

constexpr Product oldest = {0x0000, 0xFFFF, erased, none, Lens::none, onPins};

}  // namespace

const Product& productFor(std::uint16_t productId) {
  const Product* const product = rowFor(productId, products);
  return product == nullptr ? oldest : *product;
}

}  // namespace qvx::simulator
