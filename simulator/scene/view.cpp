#include "simulator/scene/still.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qvx::simulator {

namespace {

double setting(const Camera& camera, std::int32_t property) {
  return camera.picture.get(*pictureControl(property)).value;
}

double ratio(const Camera& camera, std::int32_t property) {
  return setting(camera, property) / pictureControl(property)->defaultValue;
}

// Automatic exposure first exposes longer, then raises the gain.
void expose(const Camera& camera, double light, View& view) {
  constexpr double gainPerUnit = 0.03, backlightStep = 0.15, longest = 2, maxExposure = 16;
  view.gain = 1 + gainPerUnit * setting(camera, 9);
  const SensorKind* const how = sensorFor(camera.productId());
  if (how != nullptr && !how->isAutomatic(camera)) {
    view.exposure = view.gain * how->lines(camera.sensor) / how->defaultLines;
    return;
  }
  const double target = how == nullptr ? 1 : how->target(camera) / how->defaultTarget;
  const double backlight =
      1 + backlightStep * (setting(camera, 8) - pictureControl(8)->defaultValue);
  view.exposure = std::min(backlight * target / light, maxExposure);
  view.gain = std::max(view.gain, view.exposure / longest);
}

// The width of the sensor in units of 0.55 mm: the field of view at x1.
constexpr struct {
  std::uint16_t first, last;  // product ids
  double width;
} widths[] = {
    {0x870, 0x89F, 0.5555 * 1280}, {0x910, 0x91F, 0.5555 * 1280}, {0x920, 0x92F, 0.2744 * 2592},
    {0x960, 0x99F, 0.2744 * 2592}, {0x9A0, 0x9AF, 1.19048 * 640}, {0x9B0, 0x9BF, 0.2744 * 2592},
    {0x9D0, 0x9DF, 1.19048 * 640}, {0x9E0, 0x9E6, 0.5555 * 1280},
};

double sensorWidth(std::uint16_t productId) {
  const auto* const row = rowFor(productId, widths);
  return row == nullptr ? 640 : row->width;
}

}  // namespace

// A camera without a zoom ring has a typical fixed magnification; one without a focus lens is in
// focus. The depth of focus shrinks as the magnification grows.
View viewOf(const Camera& camera) {
  constexpr double unit_um = 550, usual = 50, warmthExponent = 0.6;
  constexpr double blurPerUnit = 1.0 / 80'000;  // per lens unit, at x1
  const double zoom = camera.hasZoomRing() ? std::max(camera.magnification(), 1.0) : usual;
  const double offFocus = camera.lens.kind != Lens::none ? camera.lens.offset - focusAt : 0;
  const Illumination& lights = camera.controller.lights();
  View view{};
  view.fieldWidth_um = unit_um * sensorWidth(camera.productId()) / zoom;
  view.blur = std::abs(offFocus) * blurPerUnit * zoom;
  view.axial = Illumination::axialShare * lights.axial();
  view.aim = lights.aim();
  double light = roomLight + view.axial;
  for (std::size_t i = 0; i < view.quadrants.size(); ++i) {
    view.quadrants[i] =
        Illumination::ringShare * lights.quadrants()[i] + lights.ofPins(camera.gpio.lights());
    light += view.quadrants[i] / static_cast<double>(view.quadrants.size());
  }
  expose(camera, light, view);
  view.brightness = setting(camera, 0) / 256;
  view.contrast = ratio(camera, 1);
  view.hue_rad = setting(camera, 2) * std::numbers::pi / 180;
  view.saturation = ratio(camera, 3);
  view.sharpening = (setting(camera, 4) - pictureControl(4)->defaultValue) / 4;
  view.gamma = ratio(camera, 5);
  const bool whiteIsRight = camera.picture.get(*pictureControl(7)).automatic;
  view.warmth = whiteIsRight ? 1 : std::pow(ratio(camera, 7), warmthExponent);
  return view;
}

}  // namespace qvx::simulator
