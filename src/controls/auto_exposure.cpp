#include <algorithm>

#include "controls/device_selection.h"
#include "controls/exposure.h"
#include "controls/family_rows.h"
#include "platform/timers.h"
#include "transport/bridge_chip.h"
#include "transport/controller.h"
#include "transport/sensor.h"
#include "transport/sensor_registers.h"

namespace qvx {

namespace {

enum Mode : std::int32_t { reset = -1, manual = 0, automatic = 1 };

bool isAutomatic(std::int32_t mode) {
  return mode == automatic || mode == reset;
}

// Wraps, as callers may pass any value.
constexpr std::uint32_t plus(std::int32_t value, std::uint32_t offset) {
  return static_cast<std::uint32_t>(value) + offset;
}

// The brightness target.

constexpr std::uint32_t targetHighOf7xxx = 32;
constexpr std::uint32_t targetHighOf73xxx = 16;

// Where the camera's automatic exposure begins and ends, around the target.
template <class Write>
void setTarget78(std::int32_t target, std::uint32_t targetHigh, Write write) {
  write(sensor78::targetLow, plus(target, 0));
  write(sensor78::targetHigh, plus(target, targetHigh));
  write(sensor78::restLow, plus(target, 2));
  write(sensor78::restHigh, plus(target, 14));
}

void setTarget7xxx(int deviceNumber, std::int32_t target) {
  setTarget78(target, targetHighOf7xxx, [=](std::uint32_t reg, std::uint32_t value) {
    if (deviceNumber == wifiDeviceIndex) {
      WriteEmpia_Sensor(reg, value);
    } else {
      WriteTo90x(deviceNumber, reg, value);
    }
  });
}

void setTarget73xxx(int deviceNumber, std::int32_t target) {
  constexpr std::int32_t brightest = 208;
  setTarget78(
      std::min(target, brightest), targetHighOf73xxx,
      [=](std::uint32_t reg, std::uint32_t value) { WriteTo90x(deviceNumber, reg, value); });
}

void setTarget48(int deviceNumber, std::int32_t target) {
  WriteTo88x(deviceNumber, sensor48::target, plus(target, 0));
  WriteTo88x(deviceNumber, sensor48::applyTarget, 1);
}

void setTarget42(int deviceNumber, std::int32_t target) {
  WriteTo88x(deviceNumber, sensor42::target, plus(target, 0));
}

// Everything goes first to where it fits any target. The highest upper bound comes out as 0.
void setTarget4xx7(int deviceNumber, std::int32_t wanted) {
  using enum ExposureParameter;
  const std::int32_t value = std::clamp(wanted, 21, 240);
  const struct {
    ExposureParameter parameter;
    std::int32_t value;
  } steps[] = {
      {lowerBound, 0}, {target, 0x80},           {upperBound, 0xFF},
      {target, value}, {upperBound, value + 16}, {lowerBound, value - 16},
  };
  for (const auto& step : steps) writeParameter(deviceNumber, step.parameter, step.value);
}

std::int32_t getTarget78(int deviceNumber) {
  return static_cast<std::int32_t>(ReadFrom90x(deviceNumber, sensor78::targetLow));
}

std::int32_t getTarget48(int deviceNumber) {
  return static_cast<std::int32_t>(ReadFrom88x(deviceNumber, sensor48::target));
}

std::int32_t getTarget42(int deviceNumber) {
  return static_cast<std::int32_t>(ReadFrom88x(deviceNumber, sensor42::target));
}

std::int32_t getTarget4xx7(int deviceNumber) {
  return readParameter(deviceNumber, ExposureParameter::target);
}

constexpr struct {
  Family belongs;
  void (*run)(int deviceNumber, std::int32_t target);
  bool measuringAfterwards;
} targetSetters[] = {
    {isVK7xxxSeries, setTarget7xxx, false},  {isVK7xxxR4Series, setTarget7xxx, false},
    {isVK73xxxSeries, setTarget73xxx, true}, {isVK4xxxSeries, setTarget48, true},
    {isVR4xxxSeries, setTarget48, true},     {isVK3xxxR4Series, setTarget42, true},
    {isVR3xxxSeries, setTarget42, true},     {isVK4xx7Series, setTarget4xx7, true},
};

constexpr FamilyRow<std::int32_t(int)> targetGetters[] = {
    {isVK7xxxSeries, getTarget78}, {isVK7xxxR4Series, getTarget78}, {isVK73xxxSeries, getTarget78},
    {isVK4xxxSeries, getTarget48}, {isVR4xxxSeries, getTarget48},   {isVK3xxxR4Series, getTarget42},
    {isVR3xxxSeries, getTarget42}, {isVK4xx7Series, getTarget4xx7},
};

constexpr std::int32_t targetOfOtherFamilies = 1;
constexpr std::int32_t targetWithoutProductId = 16;

// The switch.

constexpr std::uint32_t automatic4xx7 = 0x8000;

// Unlike elsewhere, -1 switches to manual.
void switchMode4xx7(int deviceNumber, std::int32_t mode) {
  const std::uint32_t others =
      readBridge(deviceNumber, bridge::exposureMode4xx7) & (automatic4xx7 - 1);
  const std::uint32_t wanted = others | (mode == automatic ? automatic4xx7 : 0);
  writeBridge(deviceNumber, bridge::exposureMode4xx7, wanted);
}

void switchMode78(int deviceNumber, std::int32_t mode) {
  constexpr std::uint32_t everythingByHand = 0x07;
  std::uint32_t value = ReadFrom90x(deviceNumber, sensor78::manualExposure);
  if (isAutomatic(mode)) value = 0;
  if (mode == manual) value |= everythingByHand;
  WriteTo90x(deviceNumber, sensor78::manualExposure, value);
}

void switchMode48(int deviceNumber, std::int32_t mode) {
  std::uint32_t value = ReadFrom88x(deviceNumber, sensor48::automaticExposure);
  if (isAutomatic(mode)) value |= 0x01;
  if (mode == manual) value &= 0xFE;
  WriteTo88x(deviceNumber, sensor48::automaticExposure, value);
}

constexpr struct {
  std::int32_t mode;
  std::uint32_t reg, value;
} modes42[] = {
    {reset, sensor42::automaticControls, 0xBD},     {reset, sensor42::exposureMode, 0xD5},
    {automatic, sensor42::automaticControls, 0xBD}, {automatic, sensor42::exposureMode, 0xD5},
    {manual, sensor42::automaticControls, 0xB8},    {manual, sensor42::exposureMode, 0x15},
};

void switchMode42(int deviceNumber, std::int32_t mode) {
  const std::uint32_t before = ReadFrom88x(deviceNumber, sensor42::automaticControls);
  if (!isAutomatic(mode) && mode != manual) {
    WriteTo88x(deviceNumber, sensor42::automaticControls, before);
  }
  for (const auto& row : modes42) {
    if (row.mode == mode) WriteTo88x(deviceNumber, row.reg, row.value);
  }
}

std::int32_t getMode4xx7(int deviceNumber) {
  const std::uint32_t bits = readBridge(deviceNumber, bridge::exposureMode4xx7);
  return (bits & automatic4xx7) != 0 ? automatic : manual;
}

std::int32_t getMode78(int deviceNumber) {
  const bool byHand = (ReadFrom90x(deviceNumber, sensor78::manualExposure) & 1) != 0;
  return byHand ? manual : automatic;
}

std::int32_t getMode48(int deviceNumber) {
  return (ReadFrom88x(deviceNumber, sensor48::automaticExposure) & 1) != 0 ? automatic : manual;
}

// The sensor needs a moment before it reports a switch.
std::int32_t getMode42(int deviceNumber) {
  constexpr std::uint32_t pauseBeforeRead_ms = 50;
  platform::pause(pauseBeforeRead_ms);
  return (ReadFrom88x(deviceNumber, sensor42::automaticControls) & 1) != 0 ? automatic : manual;
}

constexpr FamilyRow<void(int, std::int32_t)> modeSwitches[] = {
    {isVK4xx7Series, switchMode4xx7}, {isVK7xxxR4Series, switchMode78},
    {isVK7xxxSeries, switchMode78},   {isVK73xxxSeries, switchMode78},
    {isVK4xxxSeries, switchMode48},   {isVR4xxxSeries, switchMode48},
    {isVK3xxxR4Series, switchMode42}, {isVR3xxxSeries, switchMode42},
};

constexpr FamilyRow<std::int32_t(int)> modeGetters[] = {
    {isVK4xx7Series, getMode4xx7}, {isVK7xxxR4Series, getMode78}, {isVK7xxxSeries, getMode78},
    {isVK73xxxSeries, getMode78},  {isVK4xxxSeries, getMode48},   {isVR4xxxSeries, getMode48},
    {isVK3xxxR4Series, getMode42}, {isVR3xxxSeries, getMode42},
};

}  // namespace

void setAETarget(int deviceIndex, std::int32_t target) {
  withoutMeasuring([=] {
    const int deviceNumber = nTmpIdx = deviceNumberOf(deviceIndex);
    selectProductId(deviceIndex);
    const auto* const row = rowFor(nPid, targetSetters);
    if (row == nullptr) return false;
    row->run(deviceNumber, target);
    return row->measuringAfterwards;
  });
}

std::int32_t getAETarget(int deviceIndex) {
  const auto target = withoutMeasuring([=]() -> std::optional<std::int32_t> {
    const int deviceNumber = nTmpIdx = deviceNumberOf(deviceIndex);
    selectProductId(deviceIndex);
    if (nPid == 0) nPid = nCurrPid;
    if (nPid == 0) return std::nullopt;
    return runRowFor(nPid, targetGetters, deviceNumber);
  });
  return target.value_or(nPid == 0 ? targetWithoutProductId : targetOfOtherFamilies);
}

void setAutoExposure(int deviceIndex, std::int32_t mode) {
  withoutMeasuring([=] {
    selectProductId(deviceIndex);
    return runRowFor(nPid, modeSwitches, deviceNumberOf(deviceIndex), mode);
  });
}

// The only one of these that leaves the magnification timer running.
std::int32_t getAutoExposure(int deviceIndex) {
  selectProductId(deviceIndex);
  return runRowFor(nPid, modeGetters, deviceNumberOf(deviceIndex)).value_or(manual);
}

}  // namespace qvx
