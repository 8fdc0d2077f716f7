#include "simulator/scene/view.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qvx::simulator {

namespace {

double setting(const Camera& camera, std::int32_t property) {
  return camera.picture().get(*pictureControl(property)).value;
}

struct Exposed {
  double exposure, gain;
};

// By itself a camera first exposes longer, then amplifies.
Exposed exposedBy(double wanted, double gain) {
  constexpr double longest = 2, most = 16;
  const double exposure = std::min(wanted, most);
  return {exposure, std::max(gain, exposure / longest)};
}

Exposed exposedIn(const Camera& camera, double light) {
  constexpr double gainPerUnit = 0.03, backlightStep = 0.15;
  const double gain = 1 + gainPerUnit * setting(camera, 9);
  const double backlight = 1 + backlightStep * (setting(camera, 8) - pictureControl(8)->standard);
  const SensorExposure* const how = exposureFor(camera.productId());
  if (how == nullptr) return exposedBy(backlight / light, gain);
  if (!how->isAutomatic(camera))
    return {gain * how->lines(camera.sensor()) / how->usualLines, gain};
  return exposedBy(backlight * how->target(camera) / how->usualTarget / light, gain);
}

// What the optics show at x1, in units of 0.55 mm: the sensor's width.
constexpr double otherSensor = 640;
constexpr struct {
  std::uint16_t first, last;  // product ids
  double width;
} widths[] = {
    {0x870, 0x89F, 0.5555 * 1280}, {0x910, 0x91F, 0.5555 * 1280}, {0x920, 0x92F, 0.2744 * 2592},
    {0x960, 0x99F, 0.2744 * 2592}, {0x9A0, 0x9AF, 1.19048 * 640}, {0x9B0, 0x9BF, 0.2744 * 2592},
    {0x9D0, 0x9DF, 1.19048 * 640}, {0x9E0, 0x9E6, 0.5555 * 1280},
};

double sensorWidth(std::uint16_t productId) {
  for (const auto& row : widths) {
    if (productId >= row.first && productId <= row.last) return row.width;
  }
  return otherSensor;
}

// A camera without a ring stands at a usual magnification.
double magnificationOf(const Camera& camera) {
  constexpr double usual = 50;
  return camera.hasZoomRing() ? std::max(camera.magnification(), 1.0) : usual;
}

// The depth of focus shrinks as the magnification grows. A camera without a focus lens was focused
// by hand.
double blurOf(const Camera& camera) {
  constexpr double perUnit = 1.0 / 80'000;  // of the lens, at x1
  if (!camera.lens().isFitted()) return 0;
  return std::abs(camera.lens().offset() - focusAt) * perUnit * magnificationOf(camera);
}

}  // namespace

View viewOf(const Camera& camera) {
  constexpr double unit_um = 550, warmthExponent = 0.6;
  const Illumination& lights = camera.controller().lights();
  View view{};
  view.fieldWidth_um = unit_um * sensorWidth(camera.productId()) / magnificationOf(camera);
  view.blur = blurOf(camera);
  double light = roomLight;
  for (std::size_t i = 0; i < view.quadrants.size(); ++i) {
    view.quadrants[i] =
        Illumination::ringShare * lights.quadrants()[i] + lights.ofPins(camera.gpio().lights());
    light += view.quadrants[i] / static_cast<double>(view.quadrants.size());
  }
  view.axial = Illumination::axialShare * lights.axial();
  view.aim = lights.aim();
  const Exposed exposed = exposedIn(camera, light + view.axial);
  view.exposure = exposed.exposure;
  view.gain = exposed.gain;
  view.brightness = setting(camera, 0) / 256;
  view.contrast = setting(camera, 1) / pictureControl(1)->standard;
  view.hue_rad = setting(camera, 2) * std::numbers::pi / 180;
  view.saturation = setting(camera, 3) / pictureControl(3)->standard;
  view.sharpening = (setting(camera, 4) - pictureControl(4)->standard) / 4;
  view.gamma = setting(camera, 5) / pictureControl(5)->standard;
  const auto balance = camera.picture().get(*pictureControl(7));
  view.warmth = balance.automatic
                    ? 1
                    : std::pow(balance.value / static_cast<double>(pictureControl(7)->standard),
                               warmthExponent);
  return view;
}

}  // namespace qvx::simulator
