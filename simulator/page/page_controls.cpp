#include "simulator/page/page_controls.h"

#include <algorithm>
#include <cmath>

#include "simulator/model/exposure.h"
#include "simulator/model/product.h"

namespace qvx::simulator {

namespace {

namespace reg = controller_register;

using Controls = std::vector<Control>;

std::uint8_t byte(double value) {
  return static_cast<std::uint8_t>(static_cast<int>(value));
}

void touchButton(CameraDevice& device, bool touched) {
  touched ? device.pressButton() : device.releaseButton();
}

void addZoom(Controls& controls, Camera& camera) {
  if (!camera.hasZoomRing()) return;
  const Calibration& ring = calibrationFor(productFor(camera.productId()).magnification);
  const auto stop = [&ring](double position) {
    return magnificationAt(ring, static_cast<int>(position * quartersPerUnit));
  };
  const double least = std::max(stop(ring.positions.front()), 1.0);
  controls.push_back({"optics", "zoom", "Zoom ring", camera.magnification(), least,
                      stop(ring.positions.back()), 0, least, [&camera](double to) {
                        camera.setZoom({to, to, 0});
                      }});
}

void moveCoil(Camera& camera, I2cDevice& coil, double units) {
  constexpr std::uint8_t forward = 1, backward = 2, mark = 1;
  const int steps = static_cast<int>(std::lround(std::abs(units) * coilStepsPerUnit));
  const std::uint8_t high[] = {byte(steps >> 4)}, low[] = {byte((steps << 4 & 0xFF) | mark)};
  camera.controller().set(reg::lensDirection, units < 0 ? backward : forward);
  coil.write(high, low);
}

// In units from the lens's zero position.
void addFocus(Controls& controls, Camera& camera) {
  constexpr double coilReach = 48, lastPosition = 0xFF;
  FocusLens& lens = camera.lens();
  if (!lens.isFitted()) return;
  I2cDevice *const coil = lens.driverAt(voiceCoilAddress), *const driver =
                                                               lens.driverAt(lensControllerAddress);
  if (coil != nullptr) {
    controls.push_back({"optics", "focus", "Focus", lens.offset(), -coilReach, coilReach, 1, 0,
                        [&camera, coil](double to) { moveCoil(camera, *coil, to); }});
    return;
  }
  const double zero = lens.position() - lens.offset();
  controls.push_back({"optics", "focus", "Focus", lens.offset(), -zero, lastPosition - zero, 1, 0,
                      [driver, zero](double to) {
                        const std::uint8_t position[] = {byte(zero + to)};
                        driver->write({}, position);
                      }});
}

// The lights are turned as a client does it, by the registers that drive them.
void write(Controller& controller, std::uint8_t target, double value) {
  const std::uint8_t address[] = {target}, data[] = {byte(value)};
  controller.write(address, data);
}

Control light(std::string key, std::string label, double value, double most,
              std::function<void(double)> set) {
  return {"light", std::move(key), std::move(label), value, 0, most, 1, 0, std::move(set)};
}

// On some cameras levels in the middle of the ring's belong to the axial light: these are jumped.
double ringLevelFor(const Illumination& lights, double wanted, double now) {
  const bool isAxial =
      !lights.hasAxialSwitch() && wanted >= plainAxial && wanted <= plainAxial + coarsestLight;
  if (!isAxial) return wanted;
  return now < plainAxial ? plainAxial + coarsestLight + 1 : plainAxial - 1;
}

// What is switched on is to be seen: neither a quadrant nor the level stays without the other.
void addRing(Controls& controls, Controller& controller) {
  const Illumination& lights = controller.lights();
  const double full = lights.fullRing(), level = std::round(lights.ringLevel() * full);
  const unsigned lit = lights.segments();
  controls.push_back(light("ring", "Ring", level, full, [=, &controller, &lights](double to) {
    if (to != 0 && lit == 0) write(controller, reg::lightSwitch, everySegment);
    write(controller, reg::lightLevel, ringLevelFor(lights, to, level));
  }));
  for (unsigned i = 0; i < 4; ++i) {
    const std::string number = std::to_string(i + 1);
    controls.push_back(light("segment" + number, "", lit >> i & 1, 1, [=, &controller](double on) {
      write(controller, reg::lightSwitch, (lit & ~(1U << i)) | static_cast<unsigned>(on) << i);
      if (on != 0 && level == 0) write(controller, reg::lightLevel, full);
    }));
    if (!lights.hasQuadrants()) continue;
    const auto target = static_cast<std::uint8_t>(reg::quadrant1Level + i);
    controls.push_back(light("quadrant" + number, "Quadrant " + number, controller.at(target), full,
                             [=, &controller](double to) { write(controller, target, to); }));
  }
}

void addOtherLights(Controls& controls, Controller& controller) {
  const Illumination& lights = controller.lights();
  const auto steps = [](double level) { return std::round(level * coarsestLight); };
  controls.push_back(light("axial", "Axial", steps(lights.axial()), coarsestLight, [&](double to) {
    const bool isSwitched = lights.hasAxialSwitch();
    if (isSwitched) write(controller, reg::lightSwitch, to == 0 ? axialOff : axialOn);
    write(controller, reg::lightLevel, to + (isSwitched ? switchedAxial : plainAxial));
  }));
  controls.push_back(light("aim", "Aiming", steps(lights.aim()), coarsestLight, [&](double to) {
    write(controller, reg::lightSwitch, to == 0 ? aimOff : aimOn);
    write(controller, reg::lightLevel, brightestAim + coarsestLight - to);
  }));
}

void addPins(Controls& controls, Gpio& gpio) {
  static constexpr const char* modes[] = {"off",          "main light", "second ring", "mode 3",
                                          "second light", "mode 5",     "mode 6",      "mode 7"};
  controls.push_back(light("pins", "Pins", gpio.lights(), lightPins, [&gpio](double levels) {
    gpio.write(lightPort, lightPins, byte(levels));
  }));
  controls.back().options = modes;
}

void addExposure(Controls& controls, Camera& camera) {
  const SensorExposure* const exposure = exposureFor(camera.productId());
  Sensor& sensor = camera.sensor();
  if (exposure == nullptr) return;
  controls.push_back({"exposure", "lines", "Lines", std::round(exposure->lines(sensor)), 1,
                      exposure->mostLines, 1, exposure->usualLines, [=, &sensor](double to) {
                        exposure->setLines(sensor, static_cast<std::uint32_t>(to));
                      }});
  controls.push_back({"exposure", "automatic", "Automatic", 1.0 * exposure->isAutomatic(camera), 0,
                      1, 1, 1,
                      [=, &camera](double on) { exposure->setAutomatic(camera, on != 0); }});
}

void addPicture(Controls& controls, PictureControls& picture) {
  static constexpr const char* mains[] = {"off", "50 Hz", "60 Hz"};
  static constexpr struct {
    std::int32_t property;
    const char *group, *key, *label;
    std::span<const char* const> options = {};
  } rows[] = {
      {9, "exposure", "gain", "Gain"},
      {0, "picture", "brightness", "Brightness"},
      {1, "picture", "contrast", "Contrast"},
      {2, "picture", "hue", "Hue"},
      {3, "picture", "saturation", "Saturation"},
      {4, "picture", "sharpness", "Sharpness"},
      {5, "picture", "gamma", "Gamma"},
      {7, "picture", "white", "White balance"},
      {8, "picture", "backlight", "Backlight"},
      {13, "picture", "mains", "Mains", mains},
  };
  for (const auto& row : rows) {
    const PictureControl& control = *pictureControl(row.property);
    const auto [value, automatic] = picture.get(control);
    controls.push_back({row.group, row.key, row.label, 1.0 * value, 1.0 * control.least,
                        1.0 * control.most, 1.0 * control.step, 1.0 * control.standard,
                        [&](double to) {
                          picture.set(control, {static_cast<int>(to), false});
                        },
                        row.options});
    if (!control.hasAutomatic) continue;
    controls.push_back({"picture", std::string(row.key) + "-automatic", "Automatic",
                        1.0 * automatic, 0, 1, 1, 1,
                        [&picture, &control, value = value](double on) {
                          picture.set(control, {value, on != 0});
                        }});
  }
}

}  // namespace

void Control::turnTo(double wanted) const {
  const double above = std::clamp(wanted, least, most) - least;
  set(least + (step == 0 ? above : std::round(above / step) * step));
}

std::vector<Control> controlsOf(CameraDevice& device) {
  Controls controls;
  Camera& camera = device.camera;
  addZoom(controls, camera);
  addFocus(controls, camera);
  controls.push_back({"button", "button", "Touch button", 1.0 * camera.gpio().buttonIsTouched(), 0,
                      1, 1, 0, [&device](double touched) { touchButton(device, touched != 0); }});
  if (productFor(camera.productId()).lights.kind != erased) {
    addRing(controls, camera.controller());
    addOtherLights(controls, camera.controller());
  }
  addPins(controls, camera.gpio());
  addExposure(controls, camera);
  addPicture(controls, camera.picture());
  return controls;
}

}  // namespace qvx::simulator
