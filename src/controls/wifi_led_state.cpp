#include <initializer_list>

#include "controls/led_rows.h"
#include "controls/led_state.h"
#include "state/kept_state.h"
#include "transport/camera_bus.h"
#include "transport/controller.h"
#include "transport/wifi_camera.h"

namespace qvx {

namespace {

constexpr int quadrantRingOn = 49, plainRingOn = 6;

struct Step {
  enum Act : std::uint8_t {
    setRegister,   // controller register `target`
    setPins,       // pins `target` to the levels
    setSegments,   // switch register: the segments that are chosen
    setProgress,   // level register: the progress shown
    readKind,      // of lighting; what setRingLevel goes by
    setRingLevel,  // level register: the ring on
    keepState,
  } act;
  int target = 0, value = 0;
};

// W(register, value): a controller register (3 is lightLevel, 4 lightSwitch).
consteval Step W(std::uint8_t reg, int value) {
  return {Step::setRegister, reg, value};
}
consteval Step pins(int mask, int levels) {
  return {Step::setPins, mask, levels};
}
consteval Step keep(int state) {
  return {Step::keepState, 0, state};
}
constexpr Step segments{Step::setSegments}, progress{Step::setProgress};
constexpr Step kind{Step::readKind}, ringLevel{Step::setRingLevel};

using Steps = std::initializer_list<Step>;

struct Row {
  LedTest belongs;
  Steps off, on, alternative, other;  // states 0, 1, 2 and all the rest
};

// These take state 3, too, and do nothing then; any state beyond it goes by the rows below.
constexpr int lastControllerState = 3;
constexpr Row controllerRow = {either<in<VK7x15_AXI_Series>, has<led_feature::lightingController>>,
                               {keep(0), W(4, 16), W(3, 7)},
                               {kind, W(4, 15), ringLevel},
                               {W(4, 16), W(3, 13)},
                               {}};

constexpr Row rows[] = {
    {in<isVR3xxxSeries, isVR4xxxSeries>,
     {W(4, 16)},
     {W(4, 15), W(3, 6)},
     {segments, progress, W(3, 13)},
     {pins(7, 0)}},
    {in<isVK4xxx_2Series>, {pins(5, 0)}, {pins(5, 1)}, {pins(5, 0)}, {pins(5, 0)}},
    {in<isVK7xxxR4_2Series>, {keep(0), pins(5, 0)}, {pins(5, 4)}, {pins(5, 4)}, {pins(5, 4)}},
    {in<isVK7xxxR4_3Series>, {pins(5, 0)}, {pins(5, 1)}, {pins(5, 4)}, {pins(5, 0)}},
    {in<isVK7xxx_2Series>,
     {W(4, 16)},
     {W(4, 15), W(3, 6)},
     {segments, progress, W(3, 13)},
     {pins(7, 0)}},
    {in<isVK7xxx_3Series>, {pins(7, 0)}, {pins(7, 1)}, {pins(7, 2)}, {pins(7, 0)}},
    {in<isVK4xxx_3Series>, {pins(5, 0)}, {pins(5, 4)}, {pins(5, 1)}, {pins(5, 4)}},
    {in<isVK3xxxR4BasicSeries>, {}, {}, {}, {}},
    {in<isVK3xxxR4_2Series, isVK3xxx_SEG_Series>,
     {pins(5, 0)},
     {pins(5, 1)},
     {pins(5, 0)},
     {pins(5, 0)}},
    {in<isVK3xxxR4_3Series>,
     {keep(0), pins(5, 0)},
     {keep(1), pins(5, 4)},
     {keep(2), pins(5, 1)},
     {keep(1), pins(5, 4)}},
    {anyCamera, {pins(5, 0)}, {pins(5, 0)}, {pins(5, 0)}, {pins(5, 0)}},
};

const Steps& stepsOf(const Row& row, int state) {
  if (state == 0) return row.off;
  if (state == 1) return row.on;
  return state == 2 ? row.alternative : row.other;
}

void setRegister(std::uint32_t reg, int value) {
  writeWifiBus(chip::controller, reg, static_cast<std::uint32_t>(value));
}

// All segments off (16) when none is chosen.
int segmentCode() {
  const unsigned code =
      8U * static_cast<unsigned>(m_LED4Status) + 4U * static_cast<unsigned>(m_LED3Status) +
      2U * static_cast<unsigned>(m_LED2Status) + static_cast<unsigned>(m_LED1Status);
  constexpr int noSegment = 16;
  return code == 0 ? noSegment : static_cast<int>(code);
}

void run(const Steps& steps, int deviceIndex) {
  bool quadrantRing = false;
  for (const Step& step : steps) {
    switch (step.act) {
      case Step::setRegister:
        setRegister(static_cast<std::uint32_t>(step.target), step.value);
        break;
      case Step::setPins:
        setLightPins(step.target, step.value);
        break;
      case Step::setSegments:
        setRegister(controller::lightSwitch, segmentCode());
        break;
      case Step::setProgress:
        setRegister(controller::lightLevel, nProgress);
        break;
      case Step::readKind:
        quadrantRing =
            ReadFromPIC(deviceIndex, controller::lightingKind) == controller::dimmableQuadrants;
        break;
      case Step::setRingLevel:
        setRegister(controller::lightLevel, quadrantRing ? quadrantRingOn : plainRingOn);
        break;
      case Step::keepState:
        m_LEDStatus = step.value;
        break;
    }
  }
}

}  // namespace

void setWifiLeds(int deviceIndex, int state, const LedCamera& camera) {
  const bool known = state >= 0 && state <= lastControllerState;
  const Row* const row =
      controllerRow.belongs(camera) && known ? &controllerRow : rowFor(camera, rows);
  run(stepsOf(*row, state), deviceIndex);
}

}  // namespace qvx
