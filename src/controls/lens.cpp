#include "controls/lens.h"

#include <algorithm>
#include <optional>
#include <span>

#include "controls/device_selection.h"
#include "controls/magnification.h"
#include "controls/single_precision.h"
#include "controls/truncation.h"
#include "etlib2/bytes.h"
#include "etlib2/etLib2.h"
#include "models/families.h"
#include "platform/timers.h"
#include "state/device_state.h"
#include "transport/controller.h"
#include "transport/usb3.h"
#include "transport/wifi.h"

namespace qvx {

namespace {

enum Slave : std::uint8_t { voiceCoil = 0x18, lensController = 0x46 };

enum ControllerRegister : std::uint8_t {
  noZero = 0x00,  // what is read for a zero position on models without one
  directionSwitch = 0x08,
  zeroAt40 = 0x40,
  zeroAt50 = 0x50,
  fineOffsetBackward = 0x5E,
  fineOffsetForward = 0x5F,
  opticsKind = 0xC0,
  wideRange = 0xC2,
  driverKind = 0xCA,
};

enum Direction : std::uint8_t { forward = 1, backward = 2 };
enum DriverKind : std::uint32_t { anyDriver = 0, positionDriver = 1, voiceCoilDriver = 2 };
enum class Width : std::uint8_t { any, wide };

constexpr std::uint8_t targetRegister = 0;  // of the lens controller
constexpr std::uint32_t notCalibrated = 255;
constexpr std::uint32_t isWide = 1;
constexpr std::uint32_t pauseAfterDirection_ms = 50;

constexpr LensRange wideLens{-27, 71}, narrowLens{-15, 44}, coilLens{-48, 48};
constexpr LensRange fineLens{-1023, 1023}, noFineLens{-1, -1};

struct RangeRow {
  int first, last;  // product ids
  DriverKind driver;
  Width width;
  LensRange range;
};

// The first row that matches decides, narrowLens without one. Moving and asking differ at 0x9BF.
constexpr RangeRow movingRanges[] = {
    {0x990, 0x99F, positionDriver, Width::any, wideLens},
    {0x9C0, 0x9CF, positionDriver, Width::any, wideLens},
    {0x9E0, 0x9EF, positionDriver, Width::any, wideLens},
    {0x910, 0x91F, anyDriver, Width::any, wideLens},
    {0x980, 0x98F, anyDriver, Width::wide, wideLens},
    {0x9B0, 0x9BF, voiceCoilDriver, Width::any, coilLens},
    {0x9E0, 0x9EF, voiceCoilDriver, Width::any, coilLens},
    {0x9B0, 0x9BE, anyDriver, Width::any, wideLens},
};
constexpr RangeRow askedRanges[] = {
    {0x990, 0x99F, positionDriver, Width::any, wideLens},
    {0x9C0, 0x9CF, positionDriver, Width::any, wideLens},
    {0x9B0, 0x9BF, positionDriver, Width::any, wideLens},
    {0x9B0, 0x9BF, voiceCoilDriver, Width::any, coilLens},
    {0x9E0, 0x9EF, positionDriver, Width::any, wideLens},
    {0x9E0, 0x9EF, voiceCoilDriver, Width::any, coilLens},
    {0x910, 0x91F, anyDriver, Width::any, wideLens},
    {0x980, 0x98F, anyDriver, Width::wide, wideLens},
    {0x9B0, 0x9BE, anyDriver, Width::any, wideLens},
};

constexpr struct {
  int first, last;
  ControllerRegister reg;
} zeroRegisters[] = {
    {0x990, 0x99F, zeroAt50}, {0x9B0, 0x9BF, zeroAt50}, {0x9C0, 0x9CF, zeroAt50},
    {0x9E0, 0x9EF, zeroAt50}, {0x910, 0x919, zeroAt40}, {0x940, 0x949, zeroAt40},
    {0x980, 0x98F, zeroAt40},
};

// Steps of the voice coil per unit of position, by the kind of optics and the magnification.
constexpr struct {
  std::uint32_t opticsKind;
  double (*stepsPerUnit)(float rate);
} speeds[] = {
    {8, [](float rate) { return -6.70906 * static_cast<double>(log(rate)) + 40.62967; }},
    {0, [](float rate) { return -8.3529507 * static_cast<double>(log(rate)) + 51.8172787; }},
    {5, [](float rate) { return 103714.0 * static_cast<double>(pow(rate, -1.661F)); }},
    {6, [](float rate) { return 73847705.22 * static_cast<double>(pow(rate, -2.4386132F)); }},
};
constexpr std::int32_t stepsPerUnitOverUsb3 = 21;

// Camera data and positions come as they like: sums and products wrap.
std::int32_t wrappedSum(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

std::int32_t wrappedProduct(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

std::int32_t magnitude(std::int32_t value) {
  return value < 0 ? wrappedProduct(value, -1) : value;
}

bool isWifi(int deviceIndex) {
  return deviceIndex == wifiDeviceIndex;
}

std::uint32_t read(int deviceIndex, ControllerRegister reg) {
  return ReadFromPIC(deviceIndex, reg);
}

// The index that register accesses take; sets `nPid`.
int selectCamera(int deviceIndex) {
  selectProductId(deviceIndex);
  return isWifiDevice(deviceIndex) ? wifiDeviceIndex : deviceIndex;
}

// To the limits, an index below -1 is the Wi-Fi camera, too.
int selectCameraOfLimits(int deviceIndex) {
  return selectCamera(deviceIndex < 0 ? wifiDeviceIndex : deviceIndex);
}

struct CoilMove {
  Direction direction;
  std::int32_t steps;

  std::uint8_t firstByte() const { return lowByte(steps / 16); }
  std::uint8_t secondByte() const { return lowByte(steps % 16 * 16 + 1); }
};

// Below zero is backward.
CoilMove coilMove(std::int32_t steps) {
  return {steps < 0 ? backward : forward, magnitude(steps)};
}

void sendCoilMoveOverUsb3(const CoilMove& move) {
  constexpr auto selector = Usb3Selector::lensDriver;
  sendUsb3(selector, {controllerAddress, directionSwitch, move.direction});
  platform::pause(pauseAfterDirection_ms);
  sendUsb3(selector, {voiceCoil, move.firstByte(), move.secondByte()});
}

void sendPositionOverUsb3(std::int32_t position) {
  sendUsb3(Usb3Selector::lensPosition, {lensController, lowByte(position)});
}

void writeOnBridge(int deviceIndex, std::uint8_t slave, std::uint8_t reg, std::uint8_t value) {
  etLib2_I2cWrite_DevNum(static_cast<std::uint32_t>(deviceIndex), slave, 1, &reg, 1, &value);
}

// Only the fine position gives the direction switch its time: the coarse one and the reset follow
// at once, as the firmware of these models expects.
void sendCoilMoveOverBridge(int deviceIndex, const CoilMove& move, std::uint32_t pause_ms) {
  writeOnBridge(deviceIndex, controllerAddress, directionSwitch, move.direction);
  if (pause_ms != 0) platform::pause(pause_ms);
  writeOnBridge(deviceIndex, voiceCoil, move.firstByte(), move.secondByte());
}

// The lens controller behind a bridge has a single register and takes no address for it.
void sendPositionOverBridge(int deviceIndex, std::int32_t position) {
  const std::uint8_t value = lowByte(position);
  etLib2_I2cWrite_DevNum(static_cast<std::uint32_t>(deviceIndex), lensController, 0, nullptr, 1,
                         &value);
}

// The register is named, but of no length: on the camera's bus, too, the byte goes out without one.
void sendPositionOverWifi(std::uint8_t reg, std::int32_t position) {
  loadUrlwWininet(CMD_I2C_W(s_mainhttp, lensController, reg, 0, position, 1));
}

// The zero position under the number of the controller's own register.
void sendZeroOverWifi(ControllerRegister reg, std::uint32_t zero) {
  sendPositionOverWifi(reg, static_cast<std::int32_t>(zero));
}

void sendZeroOverBridge(int deviceIndex, std::uint32_t zero) {
  sendPositionOverBridge(deviceIndex, static_cast<std::int32_t>(zero));
}

// The factory's fine adjustment of the coil: both registers, of which the forward one counts first.
struct FineOffset {
  std::uint32_t ahead, back;

  std::optional<CoilMove> move() const {
    if (ahead != notCalibrated) return CoilMove{forward, static_cast<std::int32_t>(2 * ahead)};
    if (back != notCalibrated) return CoilMove{backward, static_cast<std::int32_t>(2 * back)};
    return std::nullopt;
  }
};

std::optional<CoilMove> readFineOffset(int deviceIndex) {
  const std::uint32_t ahead = read(deviceIndex, fineOffsetForward);
  return FineOffset{ahead, read(deviceIndex, fineOffsetBackward)}.move();
}

// Asking for the limits reads the two the other way round.
std::optional<CoilMove> readFineOffsetForLimits(int deviceIndex) {
  const std::uint32_t back = read(deviceIndex, fineOffsetBackward);
  return FineOffset{read(deviceIndex, fineOffsetForward), back}.move();
}

std::int32_t signedSteps(const CoilMove& move) {
  return move.direction == forward ? move.steps : wrappedProduct(move.steps, -1);
}

CoilMove readCoilZero(int deviceIndex) {
  return readFineOffset(deviceIndex).value_or(CoilMove{forward, 0});
}

void resetUsb3Lens(int deviceIndex, std::uint32_t zero) {
  if (read(deviceIndex, driverKind) != voiceCoilDriver) {
    sendPositionOverUsb3(static_cast<std::int32_t>(zero));
  } else {
    sendCoilMoveOverUsb3(readCoilZero(deviceIndex));
  }
}

LensRange rangeIn(std::span<const RangeRow> rows, std::uint32_t driver, std::uint32_t width) {
  for (const RangeRow& row : rows) {
    if (nPid < row.first || nPid > row.last) continue;
    if (row.driver != anyDriver && row.driver != driver) continue;
    if (row.width == Width::wide && width != isWide) continue;
    return row.range;
  }
  return narrowLens;
}

std::int32_t cut(std::int32_t position, const LensRange& range) {
  return std::clamp(position, range.lower, range.upper);
}

ControllerRegister zeroRegister() {
  for (const auto& row : zeroRegisters) {
    if (nPid >= row.first && nPid <= row.last) return row.reg;
  }
  return noZero;
}

std::int32_t stepsPerUnit(std::uint32_t optics) {
  for (const auto& speed : speeds) {
    if (speed.opticsKind == optics) return truncated(speed.stepsPerUnit(f890Rate));
  }
  return 0;
}

// The middle of the 8-bit range is where the coil rests. Below 0 counts as far above it.
CoilMove coilMoveTo(std::int32_t target, std::uint32_t optics) {
  constexpr std::int32_t rest = 128;
  const bool isAbove = static_cast<std::uint32_t>(target) > static_cast<std::uint32_t>(rest);
  const std::int32_t distance = magnitude(wrappedSum(target, -rest));
  return {isAbove ? backward : forward, wrappedProduct(distance, stepsPerUnit(optics))};
}

// Without a calibration the coil stays at 0 whatever the position.
CoilMove fineMove(std::int32_t position, const std::optional<CoilMove>& offset) {
  const std::int32_t steps = offset ? wrappedSum(position, signedSteps(*offset)) : 0;
  return coilMove(cut(steps, fineLens));
}

// What asking for limits does before it answers.
void restoreZero(int deviceIndex, std::uint32_t driver) {
  if (isEdof40(nPid)) {
    const std::uint32_t zero = read(deviceIndex, zeroAt40);
    if (isWifi(deviceIndex)) return sendZeroOverWifi(zeroAt40, zero);
    sendZeroOverBridge(deviceIndex, zero);
  } else if (isEdof50(nPid)) {
    const std::uint32_t zero = read(deviceIndex, zeroAt50);
    if (isWifi(deviceIndex)) return sendZeroOverWifi(zeroAt50, zero);
    if (driver != voiceCoilDriver) sendZeroOverBridge(deviceIndex, zero);
  }
}

bool hasFineRange(std::uint32_t driver) {
  return driver == voiceCoilDriver && (isVk4xx7Series(nPid) || (nPid >= 0x9B0 && nPid <= 0x9BE));
}

LensRange shifted(const LensRange& range, std::int32_t steps) {
  return {std::max(wrappedSum(range.lower, steps), range.lower),
          std::min(wrappedSum(range.upper, steps), range.upper)};
}

}  // namespace

void resetLens(int deviceIndex) {
  const int device = selectCamera(deviceIndex);
  if (isEdof40(nPid)) {
    const std::uint32_t zero = read(device, zeroAt40);
    if (isWifi(device)) return sendZeroOverWifi(zeroAt40, zero);
    sendZeroOverBridge(device, zero);
  }
  if (!isEdof50(nPid)) return;
  const std::uint32_t zero = read(device, zeroAt50);
  if (isVK73xxxSeries(nPid)) return resetUsb3Lens(device, zero);
  if (isVk4xx7Series(nPid)) sendCoilMoveOverBridge(device, readCoilZero(device), 0);
  if (isWifi(device)) return sendZeroOverWifi(zeroAt50, zero);
  sendZeroOverBridge(device, zero);
}

void moveLens(int deviceIndex, std::int32_t position) {
  const int device = selectCamera(deviceIndex);
  const std::uint32_t driver = read(device, driverKind);
  const std::uint32_t width = read(device, wideRange);
  const std::uint32_t optics = read(device, opticsKind);
  position = cut(position, rangeIn(movingRanges, driver, width));
  const auto zero = static_cast<std::int32_t>(read(device, zeroRegister()));
  const std::int32_t target = wrappedSum(zero, position);
  if (isWifi(device)) return sendPositionOverWifi(targetRegister, target);
  if (isVK73xxxSeries(nPid)) {
    if (driver != voiceCoilDriver) return sendPositionOverUsb3(target);
    return sendCoilMoveOverUsb3(coilMove(stepsPerUnitOverUsb3 * position));
  }
  if (isVk4xx7Series(nPid)) {
    return sendCoilMoveOverBridge(device, coilMoveTo(target, optics), 0);
  }
  sendPositionOverBridge(device, target);
}

void moveLensFine(int deviceIndex, std::int32_t position) {
  const int device = selectCamera(deviceIndex);
  const std::uint32_t driver = read(device, driverKind);
  // Read as before a coarse move; nothing here depends on these two.
  read(device, wideRange);
  read(device, opticsKind);
  const std::optional<CoilMove> offset = readFineOffset(device);
  if (isWifi(device)) return;
  const CoilMove move = fineMove(cut(position, fineLens), offset);
  if (isVK73xxxSeries(nPid)) {
    return driver == voiceCoilDriver ? sendCoilMoveOverUsb3(move) : sendPositionOverUsb3(0);
  }
  if (isVk4xx7Series(nPid)) return sendCoilMoveOverBridge(device, move, pauseAfterDirection_ms);
  sendPositionOverBridge(device, 0);
}

LensRange lensLimits(int deviceIndex) {
  // With the index as it came: of a negative one the bridge is asked, not the Wi-Fi camera.
  const std::uint32_t driver = read(deviceIndex, driverKind);
  const std::uint32_t width = read(deviceIndex, wideRange);
  restoreZero(selectCameraOfLimits(deviceIndex), driver);
  return rangeIn(askedRanges, driver, width);
}

LensRange fineLensLimits(int deviceIndex) {
  const std::uint32_t driver = read(deviceIndex, driverKind);
  read(deviceIndex, wideRange);
  const int device = selectCameraOfLimits(deviceIndex);
  restoreZero(device, driver);
  const std::optional<CoilMove> offset = readFineOffsetForLimits(device);
  if (!hasFineRange(driver)) return noFineLens;
  return offset ? shifted(fineLens, signedSteps(*offset)) : fineLens;
}

}  // namespace qvx
