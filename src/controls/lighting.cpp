#include "controls/lighting.h"

#include "controls/device_selection.h"
#include "controls/family_rows.h"
#include "platform/timers.h"
#include "transport/bridge_chip.h"
#include "transport/controller.h"
#include "transport/wifi_camera.h"

namespace qvx {

namespace {

enum SwitchValue : std::uint32_t {
  ringOff = 0x10,
  axialOn = 0x18,
  axialOff = 0x20,
  aimOn = 0x28,
  aimOff = 0x30,
};

// The level register serves several lights; each has its own range of values.
enum LevelValue : std::uint32_t {
  axialDark = 7,
  axialFull = 13,
  switchedAxialDark = 32,
  aimDark = 76,
};

constexpr std::uint32_t quadrantFull = 31, quadrantBelowFull = 30;

// How the lights' pins are set in segment mode, behind a bridge and on the Wi-Fi camera.
constexpr std::uint32_t bridgeSegmentMode = 0xF5;
constexpr int allLightPins = 0x07, segmentPins = 6, segmentPinsOf9C0 = 5;
constexpr Family segmentsOnPins = within<range(0x9C0, 0x9C7)>;

constexpr std::int32_t countLimit = 10000;
constexpr std::uint32_t pauseAfterWrite_ms = 50;

void pause() {
  platform::pause(pauseAfterWrite_ms);
}

void write(int device, std::uint32_t reg, std::uint32_t value) {
  WriteToSEG(device, reg, value);
}

// Null for a device index that has no count.
std::int32_t* countOf(int device) {
  const auto index = static_cast<std::size_t>(device);
  return device >= 0 && index < SEGCount.size() ? &SEGCount[index] : nullptr;
}

// Never back to 0: segment mode is entered once per device.
void countCommand(int device) {
  std::int32_t* const count = countOf(device);
  if (count != nullptr && ++*count >= countLimit) *count = 1;
}

void enterSegmentModeOnce(int device) {
  const std::int32_t* const count = countOf(device);
  if (count == nullptr || *count == 0) LedCtrlUVC5640_SegSet(device);
}

// The current device's model decides, not that of the device written to.
void selectModel(int device) {
  nPid = device == wifiDeviceIndex ? nCurrPid : productIdOf(VideoDeviceIndex);
}

int anyModel(int /*pid*/) {
  return 1;
}

void setSwitchedAxial(int device, std::int32_t level) {
  if (level > 0) write(device, controller::lightSwitch, axialOn);
  if (level == 0) write(device, controller::lightSwitch, axialOff);
  pause();
  write(device, controller::lightLevel, static_cast<std::uint32_t>(level) + switchedAxialDark);
  pause();
}

void setAxial(int device, std::int32_t level) {
  if (level > 0) write(device, controller::lightLevel, axialFull);
  pause();
  write(device, controller::lightLevel, static_cast<std::uint32_t>(level) + axialDark);
  pause();
}

void setAxialOfSegments(int device, std::int32_t level) {
  enterSegmentModeOnce(device);
  pause();
  setAxial(device, level);
}

void setSwitchedAim(int device, std::int32_t level) {
  if (level > 0) write(device, controller::lightSwitch, aimOn);
  if (level == 0) write(device, controller::lightSwitch, aimOff);
  pause();
  write(device, controller::lightLevel, aimDark - static_cast<std::uint32_t>(level));
  pause();
}

// These cameras have no aiming light: the axial light stands in for it.
void setAimOfSegments(int device, std::int32_t level) {
  enterSegmentModeOnce(device);
  write(device, controller::lightLevel, static_cast<std::uint32_t>(level) + axialDark);
  pause();
}

using LightRow = FamilyRow<void(int device, std::int32_t level)>;

constexpr LightRow axialRows[] = {
    {segmentsOnPins, setSwitchedAxial},
    {isVk4xx7Series, setSwitchedAxial},
    {isVK73xxxSeries, setAxial},
    {isVK7xxxSeries, setAxialOfSegments},
    {anyModel, setAxial},
};

constexpr LightRow aimRows[] = {
    {segmentsOnPins, setSwitchedAim},
    {isVk4xx7Series, setSwitchedAim},
    {isVK73xxxSeries, setSwitchedAim},
    {isVK7xxxSeries, setAimOfSegments},
};

template <std::size_t count>
void setLight(const LightRow (&rows)[count], int deviceIndex, std::int32_t level) {
  const int device = deviceNumberOf(deviceIndex);
  selectModel(device);
  runRowFor(nPid, rows, device, level);
  countCommand(device);
}

}  // namespace

void setSegSwitch(int deviceIndex, std::int32_t value) {
  const int device = deviceNumberOf(deviceIndex);
  enterSegmentModeOnce(device);
  write(device, controller::lightSwitch, static_cast<std::uint32_t>(value));
  pause();
  countCommand(device);
}

void setSegLevel(int deviceIndex, std::int32_t level) {
  const int device = deviceNumberOf(deviceIndex);
  enterSegmentModeOnce(device);
  if (level == 0) write(device, controller::lightSwitch, ringOff);
  pause();
  write(device, controller::lightLevel, static_cast<std::uint32_t>(level));
  pause();
  countCommand(device);
}

// The index is passed on unchanged: -1 writes to the Wi-Fi camera but does not read from it.
void setSegQuadrant(int deviceIndex, std::int32_t quadrant, std::int32_t level) {
  if (ReadFromPIC(deviceIndex, controller::lightingKind) != controller::dimmableQuadrants) return;
  if (quadrant < 0 || quadrant > 4) return;
  std::uint32_t reg = controller::lightLevel;
  if (quadrant != 0) {
    reg = controller::quadrant1Level + static_cast<std::uint32_t>(quadrant) - 1;
    // A quadrant leaves full by one step before it takes a new level.
    if (ReadFromPIC(deviceIndex, reg) == quadrantFull) {
      write(deviceIndex, reg, quadrantBelowFull);
      pause();
    }
  }
  write(deviceIndex, reg, static_cast<std::uint32_t>(level));
  pause();
}

void setAxialLevel(int deviceIndex, std::int32_t level) {
  setLight(axialRows, deviceIndex, level);
}

void setAimpointLevel(int deviceIndex, std::int32_t level) {
  setLight(aimRows, deviceIndex, level);
}

void LedCtrlUVC5640_SegSet(int deviceIndex) {
  const int device = deviceNumberOf(deviceIndex);
  selectModel(device);
  if (device == wifiDeviceIndex) {
    setLightPins(allLightPins, segmentsOnPins(nPid) ? segmentPinsOf9C0 : segmentPins);
  } else if (segmentsOnPins(nPid)) {
    // On the current device, whose model decided; the other ways write to the device they are
    // given.
    writeBridge(VideoDeviceIndex, bridge::lights, bridgeSegmentMode);
  } else if (!isVK73xxxSeries(nPid)) {
    sendSegmentCommand(device, SegmentFunction::ring);
    sendSegmentCommand(device, SegmentFunction::power);
  }
}

bool isSEGMode() {
  return isVK7xxxSeries(nPid) && saysSegmentMode(VideoDeviceIndex);
}

}  // namespace qvx
