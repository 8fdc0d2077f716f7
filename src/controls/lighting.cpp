#include "controls/lighting.h"

#include "controls/device_selection.h"
#include "controls/family_rows.h"
#include "etlib2/etLib2.h"
#include "models/families.h"
#include "platform/timers.h"
#include "state/device_state.h"
#include "transport/controller.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

enum ControllerRegister : std::uint32_t {
  levelRegister = 0x03,
  switchRegister = 0x04,
  quadrant1Level = 0x12,
  lightingKind = 0x83,
};

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

constexpr std::uint32_t dimmableQuadrants = 4;                      // in lightingKind
constexpr std::uint32_t quadrantFull = 31, quadrantBelowFull = 30;  // as registers

constexpr std::uint32_t bridgeLights = 0x80;  // a bridge register
constexpr std::uint32_t bridgeSegmentMode = 0xF5;

constexpr int lightPort = 0, lightPins = 0x07;  // of the Wi-Fi camera
constexpr int segmentPins = 6, segmentPinsOf9C0 = 5;

constexpr std::uint8_t bodyCommand = 0xF0;
using CommandBuffer = std::array<std::uint8_t, 40>;  // function, 1 to switch on, then zeros

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
  if (level > 0) write(device, switchRegister, axialOn);
  if (level == 0) write(device, switchRegister, axialOff);
  pause();
  write(device, levelRegister, static_cast<std::uint32_t>(level) + switchedAxialDark);
  pause();
}

void setAxial(int device, std::int32_t level) {
  if (level > 0) write(device, levelRegister, axialFull);
  pause();
  write(device, levelRegister, static_cast<std::uint32_t>(level) + axialDark);
  pause();
}

void setAxialOfSegments(int device, std::int32_t level) {
  enterSegmentModeOnce(device);
  pause();
  setAxial(device, level);
}

void setSwitchedAim(int device, std::int32_t level) {
  if (level > 0) write(device, switchRegister, aimOn);
  if (level == 0) write(device, switchRegister, aimOff);
  pause();
  write(device, levelRegister, aimDark - static_cast<std::uint32_t>(level));
  pause();
}

// These cameras have no aiming light: the axial light stands in for it.
void setAimOfSegments(int device, std::int32_t level) {
  enterSegmentModeOnce(device);
  write(device, levelRegister, static_cast<std::uint32_t>(level) + axialDark);
  pause();
}

using LightRow = FamilyRow<void(int device, std::int32_t level)>;

constexpr LightRow axialRows[] = {
    {within<0x9C0, 0x9C7>, setSwitchedAxial},
    {within<0x9E0, 0x9EF>, setSwitchedAxial},
    {isVK73xxxSeries, setAxial},
    {within<0x960, 0x99F>, setAxialOfSegments},
    {anyModel, setAxial},
};

constexpr LightRow aimRows[] = {
    {within<0x9C0, 0x9C7>, setSwitchedAim},
    {within<0x9E0, 0x9EF>, setSwitchedAim},
    {isVK73xxxSeries, setSwitchedAim},
    {within<0x960, 0x99F>, setAimOfSegments},
};

template <std::size_t count>
void setLight(const LightRow (&rows)[count], int deviceIndex, std::int32_t level) {
  const int device = deviceNumberOf(deviceIndex);
  selectModel(device);
  const LightRow* const row = rowFor(nPid, rows);
  if (row != nullptr) row->run(device, level);
  countCommand(device);
}

}  // namespace

void setSegSwitch(int deviceIndex, std::int32_t value) {
  const int device = deviceNumberOf(deviceIndex);
  enterSegmentModeOnce(device);
  write(device, switchRegister, static_cast<std::uint32_t>(value));
  pause();
  countCommand(device);
}

void setSegLevel(int deviceIndex, std::int32_t level) {
  const int device = deviceNumberOf(deviceIndex);
  enterSegmentModeOnce(device);
  if (level == 0) write(device, switchRegister, ringOff);
  pause();
  write(device, levelRegister, static_cast<std::uint32_t>(level));
  pause();
  countCommand(device);
}

// The index goes to both as it is: -1 writes to the Wi-Fi camera but does not read from it.
void setSegQuadrant(int deviceIndex, std::int32_t quadrant, std::int32_t level) {
  if (ReadFromPIC(deviceIndex, lightingKind) != dimmableQuadrants) return;
  if (quadrant < 0 || quadrant > 4) return;
  std::uint32_t reg = levelRegister;
  if (quadrant != 0) {
    reg = quadrant1Level + static_cast<std::uint32_t>(quadrant) - 1;
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
  const bool by9C0 = within<0x9C0, 0x9C7>(nPid) != 0;
  if (device == wifiDeviceIndex) {
    loadUrlwWininet(
        CMD_GPIO_W(s_mainhttp, lightPort, lightPins, by9C0 ? segmentPinsOf9C0 : segmentPins));
  } else if (by9C0) {
    // Of the current device, as its model: the other ways address the device they are given.
    etLib2_RegWrite_DevNum(static_cast<std::uint32_t>(VideoDeviceIndex), bridgeLights, 1,
                           &bridgeSegmentMode);
  } else if (!isVK73xxxSeries(nPid)) {
    sendSegmentCommand(device, SegmentFunction::ring);
    sendSegmentCommand(device, SegmentFunction::power);
  }
}

void sendSegmentCommand(int device, SegmentFunction function) {
  const CommandBuffer block = {static_cast<std::uint8_t>(function), 1};
  etLib2_Custom_CMD_Write(static_cast<std::uint32_t>(device), bodyCommand, block.size(),
                          block.data());
}

bool isSEGMode() {
  if (!within<0x960, 0x99F>(nPid)) return false;
  CommandBuffer block{};
  // The second question goes out with the first answer still in the block, as the firmware is used
  // to it.
  const auto isOn = [&block](SegmentFunction function) {
    block[0] = static_cast<std::uint8_t>(function);
    etLib2_Custom_CMD_Read(static_cast<std::uint32_t>(VideoDeviceIndex), bodyCommand, block.size(),
                           block.data());
    return block[2] == 1 || block[1] == 1;
  };
  const bool ringOn = isOn(SegmentFunction::ring);
  const bool powerOn = isOn(SegmentFunction::power);
  return ringOn && powerOn;
}

}  // namespace qvx
