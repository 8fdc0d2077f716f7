// What moves, shines and is turned or touched.
#include <algorithm>
#include <chrono>
#include <cmath>

#include "cameras.h"
#include "message_loop.h"
#include "presentation.h"
#include "readings.h"
#include "selftest.h"

namespace qvxctl {

namespace {

enum Feature : qvx_long {
  ownLights2 = 0x04,
  ownLights3 = 0x08,
  quadrants = 0x20,
  magnification = 0x40,
  focusLens = 0x80,
};

constexpr qvx_long controllerLights = ownLights2 | ownLights3 | quadrants;
constexpr qvx_long brightestRing = 6, brightestQuadrant = 31;

// Each of the values in turn; the last one stays.
Finding sendEach(const char* step, const TestedCamera& camera, void (*set)(int, qvx_long),
                 std::initializer_list<qvx_long> values) {
  std::string text;
  for (const qvx_long value : values) {
    set(camera.device, value);
    append(text, value);
  }
  return sent(step, text);
}

int presses = 0;

void countPress() {
  ++presses;
}

}  // namespace

// Beyond the library's first mean, which is half of what it will be; the largest reading counts.
Findings testMagnification(const TestedCamera& camera) {
  if (!camera.has(magnification)) return {skipped("magnification")};
  double largest = 0;
  const auto look = [&] { largest = std::fmax(largest, GetMAG(camera.device)); };
  MessageLoop().run(std::chrono::milliseconds(1600), look);
  return {compared("magnification", largest >= 1, "", magnificationText({largest, 0}))};
}

Findings testFieldOfView(const TestedCamera& camera) {
  constexpr double usual = 50;
  const double measured = GetMAG(camera.device);
  const double at = measured >= 1 ? measured : usual;
  const Measurement once{at, FOVx(camera.device, at)};
  const double width2_um = FOVx(camera.device, 2 * at);
  return {compared("field of view", width2_um > 0 && width2_um < once.fieldOfView_um,
                   magnificationText(once), fieldOfViewText(once))};
}

// Where the lens was, nothing tells: it is left at its zero position.
Findings testLens(const TestedCamera& camera) {
  if (!camera.has(focusLens)) return {skipped("lens limits"), skipped("lens position")};
  const auto range = rangeFrom(GetLensPosLimits, camera.device);
  Findings findings = {
      compared("lens limits", range && range->lower < range->upper, "", textOf(range))};
  if (!range) return findings;
  findings.push_back(
      sendEach("lens position", camera, SetLensPos, {range->upper, range->lower, 0}));
  SetLensInitPos(camera.device);
  return findings;
}

Findings testFineLens(const TestedCamera& camera) {
  const auto range =
      camera.has(focusLens) ? rangeFrom(GetLensFinePosLimits, camera.device) : std::nullopt;
  if (!range) return {skipped("lens fine limits"), skipped("lens fine position")};
  const Finding moved =
      sendEach("lens fine position", camera, SetLensFinePos, {range->upper, range->lower, 0});
  SetLensInitPos(camera.device);
  return {compared("lens fine limits", range->lower < range->upper, "", textOf(range)), moved};
}

// Cameras without a lighting controller are switched by SetLEDState alone.
Findings testLights(const TestedCamera& camera) {
  if (!camera.has(controllerLights)) {
    return {skipped("segment switch"), skipped("ring level"), skipped("axial level"),
            skipped("aiming level")};
  }
  const qvx_long brightest = camera.has(quadrants) ? brightestQuadrant : brightestRing;
  return {sendEach("axial level", camera, SetAXILevel, {6, 1, 0}),
          sendEach("aiming level", camera, SetAimpointLevel, {6, 1, 0}),
          sendEach("segment switch", camera, SetSEGSwitch, {1, 2, 4, 8, 16, 15}),
          sendEach("ring level", camera, SetSEGLevel, {1, brightest})};
}

Findings testQuadrants(const TestedCamera& camera) {
  if (!camera.has(quadrants)) return {skipped("quadrants")};
  constexpr qvx_long dim = 1, last = 4;
  for (qvx_long quadrant = 1; quadrant <= last; ++quadrant) {
    SetESEG(camera.device, quadrant, dim);
    SetESEG(camera.device, quadrant, brightestQuadrant);
  }
  return {sent("quadrants", "1 to 4, each to 1 and 31")};
}

Findings testLedStates(const TestedCamera& camera) {
  const auto set = [](int device, qvx_long state) { SetLEDState(device, static_cast<int>(state)); };
  return {sendEach("led state", camera, set, {0, 1, 2, 1})};
}

Findings testTouchButton(const TestedCamera& /*camera*/) {
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
