#include "simulator/scene/view.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qvx::simulator {

namespace {

// A register of several bytes, the highest first.
double wide(const Sensor& sensor, std::initializer_list<std::uint16_t> registers) {
  std::uint32_t value = 0;
  for (const std::uint16_t reg : registers) value = value << 8 | sensor.at(reg);
  return value;
}

double linesOf78(const Sensor& sensor) {
  return wide(sensor, {0x3500, 0x3501, 0x3502}) / 16;
}
double linesOf48(const Sensor& sensor) {
  return wide(sensor, {0x0015, 0x0016});
}
double linesOf42(const Sensor& sensor) {
  return wide(sensor, {0x08, 0x10}) + wide(sensor, {0x2E, 0x2D});
}
double linesOf34(const Sensor& sensor) {
  return wide(sensor, {0x0340, 0x0341}) - wide(sensor, {0x0202, 0x0203});
}

bool automatic78(const Sensor& sensor) {
  return (sensor.at(0x3503) & 1) == 0;
}
bool automatic48(const Sensor& sensor) {
  return (sensor.at(0x0380) & 1) != 0;
}
bool automatic42(const Sensor& sensor) {
  return (sensor.at(0x13) & 1) != 0;
}
bool never(const Sensor& /*sensor*/) {
  return false;
}

// How each kind of sensor is exposed. The usual lines and the usual target give the right exposure.
constexpr struct {
  std::uint8_t slave;
  double (*lines)(const Sensor&);
  double usualLines;
  bool (*isAutomatic)(const Sensor&);
  std::uint16_t targetRegister;
  double usualTarget;
} sensors[] = {
    {0x78, linesOf78, 500, automatic78, 0x3A1E, 0x38},
    {0x48, linesOf48, 480, automatic48, 0x038E, 0x40},
    {0x42, linesOf42, 312, automatic42, 0x25, 0x48},
    {0x34, linesOf34, 500, never, 0, 1},
};

// What falls on the object: of the room's light, and of the camera's own.
double lightOf(const Camera& camera) {
  constexpr double room = 0.3, own = 0.7;
  return room + own * camera.brightness();
}

double exposureOf(const Camera& camera) {
  constexpr double mostGain = 8;  // that automatic exposure has
  const SensorKind* const kind = sensorFor(camera.productId());
  if (kind == nullptr) return lightOf(camera);
  const auto* const row =
      std::ranges::find(sensors, kind->slave, [](const auto& s) { return s.slave; });
  const Sensor& sensor = camera.sensor();
  if (!row->isAutomatic(sensor)) return lightOf(camera) * row->lines(sensor) / row->usualLines;
  return std::min(sensor.at(row->targetRegister) / row->usualTarget, lightOf(camera) * mostGain);
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
