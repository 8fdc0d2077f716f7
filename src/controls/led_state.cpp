#include "controls/led_state.h"

#include <array>
#include <initializer_list>
#include <span>

#include "controls/device_selection.h"
#include "controls/feature_word.h"
#include "controls/led_rows.h"
#include "controls/lighting.h"
#include "platform/timers.h"
#include "transport/bridge_chip.h"
#include "transport/camera_bus.h"
#include "transport/controller.h"

namespace qvx {

namespace {

constexpr std::int32_t quadrantRingOn = 31, plainRingOn = 6;

struct Step {
  enum Act : std::uint8_t {
    setRegister,       // controller register
    setBridge,         // the bridge's lights register
    command,           // one function of segment mode
    enterSegmentMode,  // unless the camera says that it is in it
    setSwitch,         // these three are lighting commands, with the pauses they have
    setLevel,
    setAxial,
    setRingLevel,  // a lighting command: the ring on, by its lighting kind
    readRegister,  // controller register
    pause,
  } act;
  std::uint8_t target = 0, value = 0;
};

// The tables below are long, and their steps are short:
//   S(register, value)  a controller register (3 is lightLevel, 4 lightSwitch)
//   R80(value)          the bridge's lights register, 0x80
//   Switch, Level, AXI  a lighting command
//   p, P                a pause of 50 ms, of 100 ms
consteval Step S(std::uint8_t reg, std::uint8_t value) {
  return {Step::setRegister, reg, value};
}
consteval Step R80(std::uint8_t value) {
  return {Step::setBridge, 0, value};
}
consteval Step Switch(std::uint8_t value) {
  return {Step::setSwitch, 0, value};
}
consteval Step Level(std::uint8_t level) {
  return {Step::setLevel, 0, level};
}
consteval Step AXI(std::uint8_t level) {
  return {Step::setAxial, 0, level};
}
constexpr Step ringCommand{Step::command, 0, static_cast<std::uint8_t>(SegmentFunction::ring)};
constexpr Step powerCommand{Step::command, 0, static_cast<std::uint8_t>(SegmentFunction::power)};
constexpr Step segmentMode{Step::enterSegmentMode};
constexpr Step ringLevel{Step::setRingLevel};
constexpr Step p{Step::pause, 0, 50}, P{Step::pause, 0, 100};
constexpr Step readFeatures{Step::readRegister, controller::features};
constexpr Step readKind{Step::readRegister, controller::lightingKind};
constexpr Step readBoard{Step::readRegister, controller::lightingBoard};

using Steps = std::initializer_list<Step>;

// What follows for a camera whose registers 0x80 and 0x84 show a pattern. Each table is tried from
// the top; the first pattern that fits decides.
struct Pattern {
  std::uint8_t mask80, value80, mask84, value84;
  Steps steps;
};

// The patterns that ask for 2 under mask 4 fit no camera. They are kept with the others: they say
// what the boards they were meant for would need.
constexpr Pattern onPatterns4xx7[] = {
    {0x0F, 10, 0x0F, 4, {Switch(7), ringLevel}},
    {0x04, 4, 0, 0, {Switch(15), ringLevel}},
    {0x04, 2, 0, 0, {Switch(10), ringLevel}},
};

constexpr Pattern onPatterns73xxx[] = {
    {0x0F, 3, 0, 0, {Switch(15), P, Level(6), P, Level(7), P}},
    {0x0F, 10, 0x0F, 4, {Switch(7), P, ringLevel, P}},
    {0x04, 4, 0, 0, {Switch(15), P, ringLevel, P}},
    {0x04, 2, 0, 0, {Switch(10), P, ringLevel, P}},
    {0, 0, 0, 0, {Switch(15), P, ringLevel, P}},
};

constexpr Pattern alternativePatterns4xx7[] = {
    {0x0F, 10, 0x0F, 4, {Switch(8), ringLevel}},
    {0x04, 2, 0, 0, {Switch(5), ringLevel}},
};

constexpr Pattern alternativePatterns73xxx[] = {
    {0x0F, 10, 0x0F, 4, {Switch(8), ringLevel}},
    {0x07, 2, 0, 0, {Switch(5), ringLevel}},
    {0x07, 3, 0, 0, {Switch(16), p, Level(13), p}},
};

constexpr Pattern offPatterns73xxx[] = {
    {0x07, 3, 0, 0, {Level(7), P}},
};

// Which values the patterns are held against: those just read, or the globals, which the family
// predicates keep.
enum class Values : std::uint8_t { fresh, cached };

struct Row {
  LedTest belongs;
  Steps steps;
  std::span<const Pattern> patterns{};
  Values values = Values::cached;
};

constexpr LedTest is4xx7 = in<isVk4xx7Series>;
constexpr LedTest is4xx7WithAim = both<is4xx7, has<led_feature::aimingLight>>;
constexpr LedTest hasMainLightOnPins =
    in<isVK4xxx_2Series, isVR3xxx_2Series, isVR4xxx_2Series, isVK3xxxR4Series>;

constexpr Row offRows[] = {
    {hasMainLightOnPins, {R80(0xF0), p}},
    {in<isVK4xxx_3Series>, {R80(0xF2), p}},
    {in<isVK7xxx_2Series>, {ringCommand, p, powerCommand, p, Switch(16), p}},
    {in<isVK7xxx_3Series>, {ringCommand, p, powerCommand, p, Switch(16), p, Level(7), p}},
    {in<isVK7xxxR4_2Series, isVK7xxxR4_3Series>, {R80(0xF0)}},
    {is4xx7WithAim, {Switch(16), p, Level(6), p, Switch(48), p}},
    {is4xx7, {Switch(16), p, Level(6), p}},
    {in<isVK73xxxSeries>,
     {readFeatures, P, Switch(16), P, Level(6), P},
     offPatterns73xxx,
     Values::fresh},
};

constexpr Row onRows[] = {
    {hasMainLightOnPins, {R80(0xF1)}},
    {in<isVK4xxx_3Series>, {R80(0xF4)}},
    {in<isVK7xxx_2Series>, {ringCommand, powerCommand, Switch(15), Level(6)}},
    {in<isVK7xxx_3Series>, {ringCommand, powerCommand, Switch(15), p, Level(6), p, AXI(0), p}},
    {in<isVK7xxxR4_2Series>, {R80(0xF4)}},
    {in<isVK7xxxR4_3Series>, {R80(0xF1)}},
    {is4xx7WithAim, {readKind, Switch(15), p, ringLevel, p, Switch(48), p}},
    {is4xx7, {readFeatures, p, readBoard, p, readKind, p}, onPatterns4xx7},
    {in<isVK73xxxSeries>, {readFeatures, P, readBoard, P, readKind, P}, onPatterns73xxx},
};

constexpr Row alternativeRows[] = {
    {in<isVK4xxx_3Series>, {R80(0xF1)}},
    {in<isVK7xxx_3Series>, {ringCommand, powerCommand, Switch(16), AXI(13)}},
    {in<isVK7xxxR4_3Series>, {R80(0xF4)}},
    {is4xx7WithAim, {Switch(16), p, Switch(40), p}},
    {is4xx7, {readFeatures, readKind, readBoard}, alternativePatterns4xx7},
    {in<isVK73xxxSeries>,
     {readFeatures, p, readKind, p, readBoard, p},
     alternativePatterns73xxx,
     Values::fresh},
};

// Cameras that identify their lighting board in register 0x84 go by their own table first.
struct BoardRow {
  LedTest belongs;
  std::uint32_t board;
  std::array<Steps, 3> steps;  // by state
};

constexpr BoardRow boardRows[] = {
    {is4xx7,
     255,
     {{{S(4, 16), p, S(4, 32), p},
       {S(4, 16), p, S(4, 15), p, S(3, 6), p, S(4, 32), p},
       {S(4, 16), p, S(4, 32), p, S(4, 24), p, S(3, 38), p, S(4, 16), p}}}},
    {in<within<range(0x970, 0x97F)>>,
     255,
     {{{S(4, 16), p, S(3, 7), p},
       {S(3, 7), p, S(4, 15), p, S(3, 6), p},
       {S(4, 16), p, S(3, 13), p}}}},
    {anyCamera,
     5,
     {{{segmentMode, p, S(4, 16), p, S(3, 7), p},
       {segmentMode, p, S(4, 15), p, S(3, 6), p},
       {segmentMode, p, S(4, 16), p, S(3, 13), p}}}},
};

constexpr LedTest tellsItsBoard =
    either<in<within<range(0x978, 0x97F)>>, has<led_feature::lightingController>>;

// Works through the steps for one USB camera.
class UsbLeds {
 public:
  UsbLeds(int device, const LedCamera& camera) : device_(device), camera_(camera) {}

  void run(const Steps& steps) {
    for (const Step& step : steps) run(step);
  }

  template <std::size_t count>
  void run(const Row (&rows)[count]) {
    const Row* const row = rowFor(camera_, rows);
    if (row == nullptr) return;
    run(row->steps);
    const bool cached = row->values == Values::cached;
    const std::uint32_t value80 = cached ? ul80 : read_[controller::features];
    const std::uint32_t value84 = cached ? ul84 : read_[controller::lightingBoard];
    for (const Pattern& pattern : row->patterns) {
      const bool fits = (value80 & pattern.mask80) == pattern.value80 &&
                        (value84 & pattern.mask84) == pattern.value84;
      if (fits) return run(pattern.steps);
    }
  }

 private:
  void run(const Step& step);
  void enterSegmentMode() const;
  std::int32_t levelOfRing() const {
    return read_[controller::lightingKind] == controller::dimmableQuadrants ? quadrantRingOn
                                                                            : plainRingOn;
  }

  int device_;
  const LedCamera& camera_;
  std::array<std::uint32_t, 256> read_{};  // by register
};

void UsbLeds::run(const Step& step) {
  const std::uint32_t value = step.value;
  switch (step.act) {
    case Step::setRegister:
      WriteToSEG(device_, step.target, value);
      break;
    case Step::setBridge:
      writeBridge(device_, bridge::lights, value);
      break;
    case Step::command:
      sendSegmentCommand(device_, static_cast<SegmentFunction>(value));
      break;
    case Step::enterSegmentMode:
      enterSegmentMode();
      break;
    case Step::setSwitch:
      setSegSwitch(device_, step.value);
      break;
    case Step::setLevel:
      setSegLevel(device_, step.value);
      break;
    case Step::setAxial:
      setAxialLevel(device_, step.value);
      break;
    case Step::setRingLevel:
      setSegLevel(device_, levelOfRing());
      break;
    case Step::readRegister:
      read_[step.target] = ReadFromPIC(device_, step.target);
      break;
    case Step::pause:
      platform::pause(value);
      break;
  }
}

// Only the 7xxx report whether they are in it.
void UsbLeds::enterSegmentMode() const {
  if (isSEGMode()) return;
  LedCtrlUVC5640_SegSet(device_);
}

// The steps of the board that register 0x84 identifies, null when the tables by state decide.
const Steps* stepsOfBoard(const LedCamera& camera, std::size_t state) {
  for (const BoardRow& row : boardRows) {
    if (ul84 == row.board && row.belongs(camera)) {
      return state < row.steps.size() ? &row.steps[state] : nullptr;
    }
  }
  return nullptr;
}

void setUsbLeds(int device, int state, std::int32_t features) {
  nTmpIdx = device;
  nPid = productIdOf(device);
  const LedCamera camera = {nPid, features};
  if (!isVK73xxxSeries(nPid)) selectCameraBus(device);
  UsbLeds leds(device, camera);
  leds.run(Steps{p});
  if (tellsItsBoard(camera)) {
    ul84 = ReadFromPIC(device, controller::lightingBoard);
    const Steps* const steps = stepsOfBoard(camera, static_cast<std::size_t>(state));
    if (steps != nullptr) return leds.run(*steps);
  }
  if (state == 0) leds.run(offRows);
  if (state == 1) leds.run(onRows);
  if (state == 2) leds.run(alternativeRows);
}

}  // namespace

void setLedState(int deviceIndex, int state) {
  const std::int32_t features = featureWord(deviceIndex);
  if (isWifiDevice(deviceIndex)) {
    setWifiLeds(deviceIndex, state, {nPid, features});
  } else {
    setUsbLeds(deviceIndex, state, features);
  }
}

}  // namespace qvx
