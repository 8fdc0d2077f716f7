#include "simulator/page/page_controls.h"

#include <algorithm>
#include <cmath>

#include "simulator/model/product.h"

namespace qvx::simulator {

namespace {

namespace reg = controller_register;

using Names = std::initializer_list<const char*>;

struct Range {
  double least, most, step = 1, standard = 0;
};

struct Controls : std::vector<Control> {
  void add(const char* group, const std::string& key, const std::string& label, double value,
           const Range& range, std::function<void(double)> set, Names options = {}) {
    Json::Value described;
    described["group"] = group;
    described["key"] = key;
    described["label"] = label;
    described["value"] = value;
    described["min"] = range.least;
    described["max"] = range.most;
    described["step"] = range.step;
    described["standard"] = range.standard;
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

// In units from the lens's zero position.
void addFocus(Controls& controls, FocusLens& lens) {
  constexpr double coilReach = 48, lastPosition = 0xFF;
  if (!lens.isFitted()) return;
  const bool hasCoil = lens.driverAt(voiceCoilAddress) != nullptr;
  const Range range =
      hasCoil ? Range{-coilReach, coilReach} : Range{-lens.zero(), lastPosition - lens.zero()};
  controls.add("optics", "focus", "Focus", lens.offset(), range,
               [&lens](double to) { lens.moveTo(to); });
}

// On some cameras levels in the middle of the ring's belong to the axial light: these are jumped.
double ringLevelFor(const Illumination& lights, double wanted, double now) {
  const bool isAxial =
      !lights.hasAxialSwitch() && wanted >= plainAxial && wanted <= plainAxial + coarsestLight;
  if (!isAxial) return wanted;
  return now < plainAxial ? plainAxial + coarsestLight + 1 : plainAxial - 1;
}

// The lights are turned as a client does it, by the registers that drive them. What is switched on
// is to be seen: neither a quadrant nor the level stays without the other.
void addLights(Controls& controls, Controller& controller) {
  const Illumination& lights = controller.lights();
  const double full = lights.fullRing(), level = std::round(lights.ringLevel() * full);
  const unsigned lit = lights.segments();
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
    if (!lights.hasQuadrants()) continue;
    const auto target = static_cast<std::uint8_t>(reg::quadrant1Level + i);
    controls.add("light", "quadrant" + number, label, controller.at(target), {0, full},
                 [=](double to) { write(target, to); });
  }
  controls.add("light", "axial", "Axial", steps(lights.axial()), {0, coarsestLight},
               [=, isSwitched = lights.hasAxialSwitch()](double to) {
                 if (isSwitched) write(reg::lightSwitch, to == 0 ? axialOff : axialOn);
                 write(reg::lightLevel, to + (isSwitched ? switchedAxial : plainAxial));
               });
  controls.add("light", "aim", "Aiming", steps(lights.aim()), {0, coarsestLight}, [=](double to) {
    write(reg::lightSwitch, to == 0 ? aimOff : aimOn);
    write(reg::lightLevel, brightestAim + coarsestLight - to);
  });
}

void addExposure(Controls& controls, Camera& camera) {
  const SensorExposure* const exposure = exposureFor(camera.productId());
  if (exposure == nullptr) return;
  Sensor& sensor = camera.sensor();
  controls.add("exposure", "lines", "Lines", std::round(exposure->lines(sensor)),
               {1, exposure->mostLines, 1, exposure->usualLines}, [=, &sensor](double to) {
                 exposure->setLines(sensor, static_cast<std::uint32_t>(to));
               });
  controls.add("exposure", "automatic", "Automatic", exposure->isAutomatic(camera), {0, 1, 1, 1},
               [=, &camera](double on) { exposure->setAutomatic(camera, on != 0); });
}

void addPicture(Controls& controls, PictureControls& picture) {
  const auto add = [&](std::int32_t property, const char* group, const std::string& key,
                       const char* label, Names options = {}) {
    const PictureControl& control = *pictureControl(property);
    const auto [value, automatic] = picture.get(control);
    const Range range{1.0 * control.least, 1.0 * control.most, 1.0 * control.step,
                      1.0 * control.standard};
    const auto set = [&picture, &control](double to, bool on) {
      picture.set(control, {static_cast<int>(to), on});
    };
    controls.add(
        group, key, label, value, range, [=](double to) { set(to, false); }, options);
    if (!control.hasAutomatic) return;
    controls.add(group, key + "-automatic", "Automatic", automatic, {0, 1, 1, 1},
                 [set, value = value](double on) { set(value, on != 0); });
  };
  add(9, "exposure", "gain", "Gain");
  add(0, "picture", "brightness", "Brightness");
  add(1, "picture", "contrast", "Contrast");
  add(2, "picture", "hue", "Hue");
  add(3, "picture", "saturation", "Saturation");
  add(4, "picture", "sharpness", "Sharpness");
  add(5, "picture", "gamma", "Gamma");
  add(7, "picture", "white", "White balance");
  add(8, "picture", "backlight", "Backlight");
  add(13, "picture", "mains", "Mains", {"off", "50 Hz", "60 Hz"});
}

}  // namespace

void Control::turnTo(double wanted) const {
  const double least = described["min"].asDouble(), step = described["step"].asDouble();
  const double above = std::clamp(wanted, least, described["max"].asDouble()) - least;
  set(least + (step == 0 ? above : std::round(above / step) * step));
}

std::vector<Control> controlsOf(CameraDevice& device) {
  Controls controls;
  Camera& camera = device.camera;
  addZoom(controls, camera);
  addFocus(controls, camera.lens());
  controls.add("button", "button", "Touch button", camera.gpio().buttonIsTouched(), {0, 1},
               [&](double on) { device.touchButton(on != 0); });
  if (productFor(camera.productId()).lights.kind != erased)
    addLights(controls, camera.controller());
  controls.add(
      "light", "pins", "Pins", camera.gpio().lights(), {0, lightPins},
      [&](double levels) { camera.gpio().setLights(static_cast<std::uint8_t>(levels)); },
      {"off", "main light", "second ring", "mode 3", "second light", "mode 5", "mode 6", "mode 7"});
  addExposure(controls, camera);
  addPicture(controls, camera.picture());
  return controls;
}

}  // namespace qvx::simulator
