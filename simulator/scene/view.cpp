#include "simulator/scene/view.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "simulator/model/exposure.h"

namespace qvx::simulator {

namespace {

// What falls on the object: of the room's light, and of the camera's own.
double lightOf(const Camera& camera) {
  constexpr double room = 0.3, own = 0.7;
  return room + own * camera.brightness();
}

double exposureOf(const Camera& camera) {
  constexpr double mostGain = 8;  // that automatic exposure has
  const SensorExposure* const how = exposureFor(camera.productId());
  const Sensor& sensor = camera.sensor();
  if (how == nullptr) return lightOf(camera);
  if (!how->isAutomatic(sensor)) return lightOf(camera) * how->lines(sensor) / how->usualLines;
  return std::min(sensor.at(how->targetRegister) / how->usualTarget, lightOf(camera) * mostGain);
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
double fieldWidth_um(const Camera& camera) {
  constexpr double unit_um = 550, usual = 50;
  const double magnification = camera.hasZoomRing() ? std::max(camera.magnification(), 1.0) : usual;
  return unit_um * sensorWidth(camera.productId()) / magnification;
}

// A camera without a focus lens was focused by hand.
double blurOf(const Camera& camera) {
  constexpr double perUnit = 1.0 / 1600;
  return camera.lens().isFitted() ? std::abs(camera.lens().offset() - focusAt) * perUnit : 0;
}

double setting(const Camera& camera, std::int32_t property) {
  return camera.picture().get(*pictureControl(property)).value;
}

}  // namespace

View viewOf(const Camera& camera) {
  View view{};
  view.fieldWidth_um = fieldWidth_um(camera);
  view.exposure = exposureOf(camera);
  view.blur = blurOf(camera);
  view.brightness = setting(camera, 0) / 256;
  view.contrast = setting(camera, 1) / pictureControl(1)->standard;
  view.hue_rad = setting(camera, 2) * std::numbers::pi / 180;
  view.saturation = setting(camera, 3) / pictureControl(3)->standard;
  view.gamma = setting(camera, 5) / pictureControl(5)->standard;
  return view;
}

}  // namespace qvx::simulator
