#include "controls/lens.h"

#include <algorithm>
#include <optional>
#include <span>

#include "base/single_precision.h"
#include "base/truncation.h"
#include "controls/device_selection.h"
#include "controls/family_rows.h"
#include "controls/magnification.h"
#include "transport/controller.h"
#include "transport/lens_driver.h"

namespace qvx {

namespace {

enum DriverKind : std::uint32_t { anyDriver = 0, positionDriver = 1, voiceCoilDriver = 2 };
enum class Width : std::uint8_t { any, wide };

constexpr std::uint8_t targetRegister = 0;  // of the lens controller
constexpr std::uint32_t isWide = 1;

constexpr LensRange wideLens{-27, 71}, narrowLens{-15, 44}, coilLens{-48, 48};
constexpr LensRange fineLens{-1023, 1023}, noFineLens{-1, -1};

struct RangeRow {
  Family family;
  DriverKind driver;
  Width width;
  LensRange range;
};

constexpr Family is99xOr9Cx = within<range(0x990, 0x99F), range(0x9C0, 0x9CF)>;
constexpr Family is91x = within<range(0x910, 0x91F)>;
constexpr Family is98x = within<range(0x980, 0x98F)>;
constexpr Family is73xxxBut9BF = within<range(0x9B0, 0x9BE)>;

// The first row that matches decides, narrowLens without one. Moving and asking differ at 0x9BF.
constexpr RangeRow movingRanges[] = {
    {is99xOr9Cx, positionDriver, Width::any, wideLens},
    {isVk4xx7Series, positionDriver, Width::any, wideLens},
    {is91x, anyDriver, Width::any, wideLens},
    {is98x, anyDriver, Width::wide, wideLens},
    {isVK73xxxSeries, voiceCoilDriver, Width::any, coilLens},
    {isVk4xx7Series, voiceCoilDriver, Width::any, coilLens},
    {is73xxxBut9BF, anyDriver, Width::any, wideLens},
};
constexpr RangeRow askedRanges[] = {
    {is99xOr9Cx, positionDriver, Width::any, wideLens},
    {isVK73xxxSeries, positionDriver, Width::any, wideLens},
    {isVK73xxxSeries, voiceCoilDriver, Width::any, coilLens},
    {isVk4xx7Series, positionDriver, Width::any, wideLens},
    {isVk4xx7Series, voiceCoilDriver, Width::any, coilLens},
    {is91x, anyDriver, Width::any, wideLens},
    {is98x, anyDriver, Width::wide, wideLens},
    {is73xxxBut9BF, anyDriver, Width::any, wideLens},
};

constexpr struct {
  Family belongs;
  controller::Register reg;
} zeroRegisters[] = {
    {isEdof50, controller::lensZero50},
    {within<range(0x910, 0x919), range(0x940, 0x949), range(0x980, 0x98F)>, controller::lensZero40},
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

// Neither camera data nor positions are limited: sums and products wrap.
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

std::uint32_t read(int deviceIndex, controller::Register reg) {
  return ReadFromPIC(deviceIndex, reg);
}

// The index that register accesses take; sets `nPid`.
int selectCamera(int deviceIndex) {
  selectProductId(deviceIndex);
  return isWifiDevice(deviceIndex) ? wifiDeviceIndex : deviceIndex;
}

// For the limits, every negative index is the Wi-Fi camera.
int selectCameraOfLimits(int deviceIndex) {
  return selectCamera(deviceIndex < 0 ? wifiDeviceIndex : deviceIndex);
}

// Below zero is backward.
CoilMove coilMove(std::int32_t steps) {
  return {steps < 0 ? backward : forward, magnitude(steps)};
}

// The zero position, sent to the number of the controller register that it was read from.
void sendZeroOverWifi(controller::Register reg, std::uint32_t zero) {
  sendPositionOverWifi(reg, static_cast<std::int32_t>(zero));
}

void sendZeroOverBridge(int deviceIndex, std::uint32_t zero) {
  sendPositionOverBridge(deviceIndex, static_cast<std::int32_t>(zero));
}

// The factory's fine adjustment of the coil, of whose two registers the forward one counts first.
std::optional<CoilMove> fineOffset(std::uint32_t ahead, std::uint32_t back) {
  using controller::notPresent;
  if (ahead != notPresent) return CoilMove{forward, static_cast<std::int32_t>(2 * ahead)};
  if (back != notPresent) return CoilMove{backward, static_cast<std::int32_t>(2 * back)};
  return std::nullopt;
}

std::optional<CoilMove> readFineOffset(int deviceIndex) {
  const std::uint32_t ahead = read(deviceIndex, controller::fineOffsetForward);
  return fineOffset(ahead, read(deviceIndex, controller::fineOffsetBackward));
}

// Asking for the limits reads the two the other way round.
std::optional<CoilMove> readFineOffsetForLimits(int deviceIndex) {
  const std::uint32_t back = read(deviceIndex, controller::fineOffsetBackward);
  return fineOffset(read(deviceIndex, controller::fineOffsetForward), back);
}

std::int32_t signedSteps(const CoilMove& move) {
  return move.direction == forward ? move.steps : wrappedProduct(move.steps, -1);
}

CoilMove readCoilZero(int deviceIndex) {
  return readFineOffset(deviceIndex).value_or(CoilMove{forward, 0});
}

void resetUsb3Lens(int deviceIndex, std::uint32_t zero) {
  if (read(deviceIndex, controller::lensDriver) != voiceCoilDriver) {
    sendPositionOverUsb3(static_cast<std::int32_t>(zero));
  } else {
    sendCoilMoveOverUsb3(readCoilZero(deviceIndex));
  }
}

LensRange rangeIn(std::span<const RangeRow> rows, std::uint32_t driver, std::uint32_t width) {
  for (const RangeRow& row : rows) {
    if (!row.family(nPid)) continue;
    if (row.driver != anyDriver && row.driver != driver) continue;
    if (row.width == Width::wide && width != isWide) continue;
    return row.range;
  }
  return narrowLens;
}

std::int32_t cut(std::int32_t position, const LensRange& range) {
  return std::clamp(position, range.lower, range.upper);
}

controller::Register zeroRegister() {
  const auto* const row = rowFor(nPid, zeroRegisters);
  return row == nullptr ? controller::noZeroPosition : row->reg;
}

std::int32_t stepsPerUnit(std::uint32_t optics) {
  for (const auto& speed : speeds) {
    if (speed.opticsKind == optics) return truncated(speed.stepsPerUnit(f890Rate));
  }
  return 0;
}

// The middle of the 8-bit range is where the coil rests. A target below 0 counts as above it.
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

// Asking for limits first brings the lens to its zero position.
void restoreZero(int deviceIndex, std::uint32_t driver) {
  if (isEdof40(nPid)) {
    const std::uint32_t zero = read(deviceIndex, controller::lensZero40);
    if (isWifi(deviceIndex)) return sendZeroOverWifi(controller::lensZero40, zero);
    sendZeroOverBridge(deviceIndex, zero);
  } else if (isEdof50(nPid)) {
    const std::uint32_t zero = read(deviceIndex, controller::lensZero50);
    if (isWifi(deviceIndex)) return sendZeroOverWifi(controller::lensZero50, zero);
    if (driver != voiceCoilDriver) sendZeroOverBridge(deviceIndex, zero);
  }
}

bool hasFineRange(std::uint32_t driver) {
  return driver == voiceCoilDriver && (isVk4xx7Series(nPid) || is73xxxBut9BF(nPid));
}

LensRange shifted(const LensRange& range, std::int32_t steps) {
  return {std::max(wrappedSum(range.lower, steps), range.lower),
          std::min(wrappedSum(range.upper, steps), range.upper)};
}

}  // namespace

void resetLens(int deviceIndex) {
  const int device = selectCamera(deviceIndex);
  if (isEdof40(nPid)) {
    const std::uint32_t zero = read(device, controller::lensZero40);
    if (isWifi(device)) return sendZeroOverWifi(controller::lensZero40, zero);
    sendZeroOverBridge(device, zero);
  }
  if (!isEdof50(nPid)) return;
  const std::uint32_t zero = read(device, controller::lensZero50);
  if (isVK73xxxSeries(nPid)) return resetUsb3Lens(device, zero);
  if (isVk4xx7Series(nPid)) sendCoilMoveOverBridge(device, readCoilZero(device), 0);
  if (isWifi(device)) return sendZeroOverWifi(controller::lensZero50, zero);
  sendZeroOverBridge(device, zero);
}

void moveLens(int deviceIndex, std::int32_t position) {
  const int device = selectCamera(deviceIndex);
  const std::uint32_t driver = read(device, controller::lensDriver);
  const std::uint32_t width = read(device, controller::wideLens);
  const std::uint32_t optics = read(device, controller::opticsKind);
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
  const std::uint32_t driver = read(device, controller::lensDriver);
  // Read as before a coarse move; nothing here depends on these two.
  read(device, controller::wideLens);
  read(device, controller::opticsKind);
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
  // With the index as passed: for a negative one the bridge is asked, not the Wi-Fi camera.
  const std::uint32_t driver = read(deviceIndex, controller::lensDriver);
  const std::uint32_t width = read(deviceIndex, controller::wideLens);
  restoreZero(selectCameraOfLimits(deviceIndex), driver);
  return rangeIn(askedRanges, driver, width);
}

LensRange fineLensLimits(int deviceIndex) {
  const std::uint32_t driver = read(deviceIndex, controller::lensDriver);
  read(deviceIndex, controller::wideLens);
  const int device = selectCameraOfLimits(deviceIndex);
  restoreZero(device, driver);
  const std::optional<CoilMove> offset = readFineOffsetForLimits(device);
  if (!hasFineRange(driver)) return noFineLens;
  return offset ? shifted(fineLens, signedSteps(*offset)) : fineLens;
}

}  // namespace qvx
