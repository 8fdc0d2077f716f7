// Magnification, lens, lights and touch button.
#include <algorithm>
#include <chrono>
#include <cmath>

#include "cameras.h"
#include "message_loop.h"
#include "presentation.h"
#include "presses.h"
#include "readings.h"
#include "selftest.h"

namespace qvxctl {

namespace {

// Sends the values in turn; the last one stays.
Finding sendEach(const char* step, const Model& camera, void (*set)(int, qvx_long),
                 std::initializer_list<qvx_long> values) {
  std::string text;
  for (const qvx_long value : values) {
    set(camera.device, value);
    append(text, value);
  }
  return sent(step, text);
}

}  // namespace

// Init has measured once if the model reports its magnification; not every such model says so in
// its feature word. The loop ends before the library's first mean,
// which is half of what it should be.
Findings testMagnification(const Model& camera) {
  if (!measure(camera.device).taken()) return {skipped("magnification")};
  MessageLoop().run(std::chrono::milliseconds(600), [] {});
  const Measurement measured = measure(camera.device);
  return {compared("magnification", measured.magnification >= 1, "", magnificationText(measured))};
}

Findings testFieldOfView(const Model& camera) {
  constexpr double usual = 50;
  const double measured = GetMAG(camera.device);
  const double at = measured >= 1 ? measured : usual;
  const Measurement once{at, FOVx(camera.device, at)};
  const double width2_um = FOVx(camera.device, 2 * at);
  return {compared("field of view", width2_um > 0 && width2_um < once.fieldOfView_um,
                   magnificationText(once), fieldOfViewText(once))};
}

// No export reports where the lens was: it is left at its zero position. Half-way only: some models
// count from another zero and do not accept the lower end from there.
Findings testLens(const Model& camera) {
  const auto range = camera.returnsLens() ? lensRange(camera) : std::nullopt;
  if (!range) return {skipped("lens limits"), skipped("lens position")};
  Findings findings = {compared("lens limits", range->min < range->max, "", textOf(range))};
  findings.push_back(
      sendEach("lens position", camera, SetLensPos, {range->max / 2, range->min / 2, 0}));
  SetLensInitPos(camera.device);
  return findings;
}

Findings testFineLens(const Model& camera) {
  const auto range = camera.returnsLens() ? fineLensRange(camera) : std::nullopt;
  if (!range) return {skipped("lens fine limits"), skipped("lens fine position")};
  const Finding moved =
      sendEach("lens fine position", camera, SetLensFinePos, {range->max, range->min, 0});
  SetLensInitPos(camera.device);
  return {compared("lens fine limits", range->min < range->max, "", textOf(range)), moved};
}

// Cameras without a lighting controller are switched by SetLEDState alone. The switch first: on
// some models only that command, as the first of all, puts the lights into segment mode.
Findings testLights(const Model& camera) {
  if (!camera.hasLights()) {
    return {skipped("segment switch"), skipped("axial level"), skipped("aiming level"),
            skipped("ring level")};
  }
  return {sendEach("segment switch", camera, SetSEGSwitch, {1, 2, 4, 8, 16, 15}),
          sendEach("axial level", camera, SetAXILevel, {6, 1, 0}),
          camera.hasAim() ? sendEach("aiming level", camera, SetAimpointLevel, {6, 1, 0})
                          : skipped("aiming level"),
          sendEach("ring level", camera, SetSEGLevel, {1, camera.maxRingLevel()})};
}

Findings testQuadrants(const Model& camera) {
  if (!camera.has(QVX_FEATURE_QUADRANTS)) return {skipped("quadrants")};
  constexpr qvx_long dim = 1, last = 4;
  for (qvx_long quadrant = 1; quadrant <= last; ++quadrant) {
    SetESEG(camera.device, quadrant, dim);
    SetESEG(camera.device, quadrant, camera.maxRingLevel());
  }
  return {sent("quadrants", "1 to 4, each to 1 and 31")};
}

Findings testLedStates(const Model& camera) {
  const auto set = [](int device, qvx_long state) { SetLEDState(device, static_cast<int>(state)); };
  return {sendEach("led state", camera, set, {0, 1, 2, 1})};
}

Findings testTouchButton(const Model& /*camera*/) {
  SetEventCallback(countPress);
  const int before = presses;
  FireEvent();
  const int called = presses - before;
  const int on = EnablePressKey(1), off = EnablePressKey(0);
  return {compared("button callback", called == 1, "fired 1", "called " + std::to_string(called)),
          compared("button polling", on == 1 && off == 0, "1 0",
                   std::to_string(on) + ' ' + std::to_string(off))};
}

}  // namespace qvxctl
