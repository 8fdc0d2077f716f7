#include "simulator/model/register_names.h"

#include "simulator/model/controller.h"

namespace qvx::simulator {

namespace {

namespace reg = controller_register;

constexpr struct {
  std::uint8_t reg, value;
  std::string_view meaning;
} values[] = {
    {reg::lensDirection, 1, "lens direction: forward"},
    {reg::lensDirection, 2, "lens direction: backward"},
    {reg::lightingKind, 4, "lighting kind: ring with dimmable quadrants"},
    {reg::calibrationKind, 1, "calibration: three points in hundredths"},
    {reg::calibrationKind, 2, "calibration: stored coefficients, kind 2"},
    {reg::calibrationKind, 3, "calibration: stored coefficients, kind 3"},
    {reg::calibrationKind, 4, "calibration: stored coefficients, kind 4"},
    {reg::calibrationDegree, 1, "calibration: line through two points"},
    {reg::calibrationDegree, 2, "calibration: parabola through three points"},
    {reg::calibrationDegree, 3, "calibration: cubic through four points"},
    {reg::calibrationDegree, erased, "calibration: of the kind that register 0xC3 says"},
    {reg::lensDriverKind, 1, "lens driver: position register"},
    {reg::lensDriverKind, 2, "lens driver: voice coil"},
};

constexpr struct {
  std::uint8_t first, last;
  std::string_view meaning;
} registers[] = {
    {reg::modelByte, reg::modelByte, "model byte"},
    {reg::encoderPosition, reg::encoderPosition, "zoom encoder: position"},
    {reg::encoderFraction, reg::encoderFraction, "zoom encoder: quarters of the position"},
    {reg::lightLevel, reg::lightLevel, "light level"},
    {reg::lightSwitch, reg::lightSwitch, "light switch"},
    {reg::lensDirection, reg::lensDirection, "lens direction"},
    {reg::quadrant1Level, reg::quadrant4Level, "level of one light quadrant"},
    {reg::threePoints, reg::threePointsEnd, "calibration by three points, or the lens's zero"},
    {reg::lensZeroAt50, reg::lensZeroAt50, "lens: zero position"},
    {reg::fineOffsetBackward, reg::fineOffsetForward, "lens: fine offset"},
    {reg::fourPointsY, reg::fourPointsX - 1, "calibration by four points: magnifications"},
    {reg::fourPointsX, reg::fourPointsEnd, "calibration by four points: positions"},
    {reg::features, reg::features, "feature register"},
    {reg::reserved81, reg::reserved81, "reserved"},
    {reg::lightingKind, reg::lightingKind, "lighting kind"},
    {reg::lightingBoard, reg::lightingBoard, "lighting board"},
    {reg::opticsKind, reg::opticsKind, "optics kind"},
    {reg::reservedC1, reg::reservedC1, "reserved"},
    {reg::wideLensRange, reg::wideLensRange, "lens: wide range"},
    {reg::calibrationKind, reg::calibrationKind, "calibration kind"},
    {reg::reservedC4, reg::reservedC4, "reserved"},
    {reg::calibrationDegree, reg::calibrationDegree, "calibration degree"},
    {reg::lensDriverKind, reg::lensDriverKind, "lens driver"},
};

}  // namespace

std::string_view meaningOf(std::uint8_t reg, std::uint8_t value) {
  for (const auto& row : values) {
    if (row.reg == reg && row.value == value) return row.meaning;
  }
  for (const auto& row : registers) {
    if (reg >= row.first && reg <= row.last) return row.meaning;
  }
  return {};
}

}  // namespace qvx::simulator
