#include "simulator/page/page_controls.h"

#include <algorithm>
#include <cmath>

#include "simulator/model/product.h"

namespace qvx::simulator {

namespace {

namespace reg = controller_register;

using Names = std::vector<const char*>;

struct Range {
  double min, max, step = 1, defaultValue = 0;
};

struct Controls : std::vector<Control> {
  void add(const char* group, const std::string& key, const std::string& label, double value,
           const Range& range, std::function<void(double)> set, const Names& options = {}) {
    Json::Value described;
    described["group"] = group;
    described["key"] = key;
    described["label"] = label;
    described["value"] = value;
    described["min"] = range.min;
    described["max"] = range.max;
    described["step"] = range.step;
    described["default"] = range.defaultValue;
    for (const char* const option : options) described["options"].append(option);
    push_back({std::move(described), std::move(set)});
  }
};

void addZoom(Controls& controls, Camera& camera) {
  if (!camera.hasZoomRing()) return;
  const Calibration& ring = calibrationFor(productFor(camera.productId()).magnification);
  const auto stop = [&ring](double position) {
    return magnificationAt(ring, static_cast<int>(position * quartersPerUnit));
  };
  const Range range{std::max(stop(ring.positions.front()), 1.0), stop(ring.positions.back()), 0};
  controls.add("optics", "zoom", "Zoom ring", camera.magnification(), range, [&camera](double to) {
    camera.setZoom({to, to, 0});
  });
}

// In lens units from the zero position.
void addFocus(Controls& controls, FocusLens& lens) {
  constexpr double coilReach = 48, lastPosition = 0xFF;
  if (lens.kind == Lens::none) return;
  const bool hasCoil = lens.kind == Lens::voiceCoil;
  const Range range =
      hasCoil ? Range{-coilReach, coilReach} : Range{-lens.zero, lastPosition - lens.zero};
  controls.add("optics", "focus", "Focus", lens.offset, range,
               [&lens](double to) { lens.offset = to; });
}

// On some cameras some levels between the ring's belong to the axial light: these are skipped.
double ringLevelFor(const Illumination& lights, double wanted, double now) {
  const double first = lights.darkestAxial(), last = first + coarsestLight;
  if (wanted < first || wanted > last) return wanted;
  return now < first ? last + 1 : first - 1;
}

// The page sets the lights as a client does, through their registers. Whatever is switched on must
// be visible: switching on a quadrant raises a level of 0, raising the level switches on the
// quadrants.
void addLights(Controls& controls, Controller& controller) {
  const Illumination& lights = controller.lights();
  const double full = lights.fullRing(), level = std::round(lights.ringLevel * full);
  const unsigned lit = lights.segments;
  const auto write = [&controller](std::uint8_t target, double value) {
    const auto data = static_cast<std::uint8_t>(value);
    controller.write({&target, 1}, {&data, 1});
  };
  const auto steps = [](double part) { return std::round(part * coarsestLight); };
  controls.add("light", "ring", "Ring", level, {0, full}, [=, &lights](double to) {
    if (to != 0 && lit == 0) write(reg::lightSwitch, everySegment);
    write(reg::lightLevel, ringLevelFor(lights, to, level));
  });
  for (unsigned i = 0; i < 4; ++i) {
    const std::string number = std::to_string(i + 1), label = "Quadrant " + number;
    controls.add("ring", "segment" + number, label, lit >> i & 1, {0, 1}, [=](double on) {
      write(reg::lightSwitch, (lit & ~(1U << i)) | static_cast<unsigned>(on) << i);
      if (on != 0 && level == 0) write(reg::lightLevel, full);
    });
    if (!lights.hasQuadrants) continue;
    const auto target = static_cast<std::uint8_t>(reg::quadrant1Level + i);
    controls.add("light", "quadrant" + number, label, controller.at(target), {0, full},
                 [=](double to) { write(target, to); });
  }
  controls.add("light", "axial", "Axial", steps(lights.axial()), {0, coarsestLight},
               [=, &lights](double to) {
                 if (lights.hasAxialSwitch) write(reg::lightSwitch, to == 0 ? axialOff : axialOn);
                 write(reg::lightLevel, to + lights.darkestAxial());
               });
  controls.add("light", "aim", "Aiming", steps(lights.aim()), {0, coarsestLight}, [=](double to) {
    write(reg::lightSwitch, to == 0 ? aimOff : aimOn);
    write(reg::lightLevel, brightestAim + coarsestLight - to);
  });
}

void addExposure(Controls& controls, Camera& camera) {
  const SensorKind* const exposure = sensorFor(camera.productId());
  if (exposure == nullptr) return;
  Sensor& sensor = camera.sensor;
  controls.add("exposure", "lines", "Lines", std::round(exposure->lines(sensor)),
               {1, exposure->maxLines, 1, exposure->defaultLines}, [=, &sensor](double to) {
                 exposure->setLines(sensor, static_cast<std::uint32_t>(to));
               });
  controls.add("exposure", "automatic", "Automatic", exposure->isAutomatic(camera), {0, 1, 1, 1},
               [=, &camera](double on) { exposure->setAutomatic(camera, on != 0); });
}

void addPicture(Controls& controls, PictureControls& picture) {
  enum : std::int32_t { gain = 9, mains = 13 };
  for (const PictureRow& row : pictureRows) {
    const PictureControl& control = row.control;
    const auto [value, automatic] = picture.get(control);
    const char* const group = control.property == gain ? "exposure" : "picture";
    const std::string key = "picture" + std::to_string(control.property);
    const Range range{1.0 * control.min, 1.0 * control.max, 1.0 * control.step,
                      1.0 * control.defaultValue};
    const auto set = [&picture, &control](double to, bool on) {
      picture.set(control, {static_cast<int>(to), on});
    };
    controls.add(
        group, key, row.name, value, range, [=](double to) { set(to, false); },
        control.property == mains ? Names{"off", "50 Hz", "60 Hz"} : Names{});
    if (!control.hasAutomatic) continue;
    controls.add(group, key + "-automatic", "Automatic", automatic, {0, 1, 1, 1},
                 [set, value = value](double on) { set(value, on != 0); });
  }
}

}  // namespace

void Control::turnTo(double wanted) const {
  const double min = described["min"].asDouble(), step = described["step"].asDouble();
  const double above = std::clamp(wanted, min, described["max"].asDouble()) - min;
  set(min + (step == 0 ? above : std::round(above / step) * step));
}

std::vector<Control> controlsOf(CameraDevice& device) {
  Controls controls;
  Camera& camera = device.camera;
  addZoom(controls, camera);
  addFocus(controls, camera.lens);
  controls.add("button", "button", "Touch button", camera.gpio.buttonIsTouched(), {0, 1},
               [&](double on) { device.touchButton(on != 0); });
  if (camera.controller.lights().hasController) addLights(controls, camera.controller);
  controls.add(
      "light", "pins", "Pins", camera.gpio.lights(), {0, lightPins},
      [&](double levels) { camera.gpio.setLights(static_cast<std::uint8_t>(levels)); },
      {"off", "main light", "second ring", "mode 3", "second light", "mode 5", "mode 6", "mode 7"});
  addExposure(controls, camera);
  addPicture(controls, camera.picture);
  return controls;
}

}  // namespace qvx::simulator
