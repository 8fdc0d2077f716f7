#include "controls/exposure.h"

#include <algorithm>

#include "controls/device_selection.h"
#include "controls/family_rows.h"
#include "transport/camera_bus.h"
#include "transport/controller.h"
#include "transport/sensor.h"
#include "transport/sensor_registers.h"

namespace qvx {

namespace {

// The sensor at 0x34 counts the lines that it does not expose, of a frame of 1125.
constexpr int frameLines = 1125;
constexpr int longestExposure = 0xFFFF;

// In this order of operations: the rounding of each is part of the result.
int shutterFor(int lines) {
  return static_cast<int>(1125.0 - (1000.0 * ((lines - 0.3) * 29.63 / 1000000.0)) * 1000.0 / 29.63 -
                          0.3);
}

int linesFor(int shutter) {
  return static_cast<int>((-(shutter - 1124.7) * 29.63 / 1000000.0) * 1000.0 * 1000.0 / 29.63 +
                          0.3);
}

void writeFrame34(int deviceNumber, int linesHigh, int linesLow, int shutter) {
  writeSensor34(deviceNumber, sensor34::frameLinesHigh, linesHigh);
  writeSensor34(deviceNumber, sensor34::frameLinesLow, linesLow);
  writeSensor34(deviceNumber, sensor34::shutterHigh, shutter / 256);
  writeSensor34(deviceNumber, sensor34::shutterLow, shutter % 256);
}

void setExposure34(int deviceNumber, std::int32_t value) {
  const int lines = std::clamp(value, 0, longestExposure);
  if (lines < frameLines) {
    return writeFrame34(deviceNumber, frameLines / 256, frameLines % 256, shutterFor(lines));
  }
  // A longer exposure lengthens the frame, to the value as it was passed.
  writeFrame34(deviceNumber, value / 256, value % 256, 0);
}

std::int32_t getExposure34(int deviceNumber) {
  selectCameraBus(deviceNumber);
  const int frameHigh = readSensor34(deviceNumber, sensor34::frameLinesHigh);
  const int frame = frameHigh * 256 + readSensor34(deviceNumber, sensor34::frameLinesLow);
  const int shutterHigh = readSensor34(deviceNumber, sensor34::shutterHigh);
  const int shutter = shutterHigh * 256 + readSensor34(deviceNumber, sensor34::shutterLow);
  return frame <= frameLines ? linesFor(shutter) : frame;
}

void setExposure48(int deviceNumber, std::int32_t value) {
  WriteTo88x(deviceNumber, sensor48::exposureHigh, static_cast<std::uint32_t>(value / 256));
  WriteTo88x(deviceNumber, sensor48::exposureLow, static_cast<std::uint32_t>(value % 256));
}

std::int32_t getExposure48(int deviceNumber) {
  const std::uint32_t high = ReadFrom88x(deviceNumber, sensor48::exposureHigh);
  return static_cast<std::int32_t>(high * 256 + ReadFrom88x(deviceNumber, sensor48::exposureLow));
}

// The longest exposure that the sensor may make is set to the step below the exposure asked for.
constexpr struct {
  std::int32_t below, step;
} longestExposureSteps[] = {{64, 48}, {133, 80}, {266, 133}, {533, 266}, {1000, 533}};

std::int32_t longestExposureFor(std::int32_t value) {
  for (const auto& row : longestExposureSteps) {
    if (value < row.below) return row.step;
  }
  return value;
}

void setExposure78(int deviceNumber, std::int32_t value) {
  const std::int32_t high = value / 4096;
  const std::int32_t middle = value % 4096 / 16;
  const std::int32_t low = value % 16 * 16;
  const auto longest =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(longestExposureFor(value)) + 16);
  const struct {
    std::uint32_t reg;
    std::int32_t value;
  } writes[] = {
      {sensor78::longestExposureHigh, longest / 256},
      {sensor78::longestExposureLow, longest % 256},
      {sensor78::exposureHigh, high},
      {sensor78::exposureMiddle, middle},
      {sensor78::exposureLow, low},
  };
  for (const auto& write : writes) {
    WriteTo90x(deviceNumber, write.reg, static_cast<std::uint32_t>(write.value));
  }
}

std::int32_t getExposure78(int deviceNumber) {
  const std::uint32_t high = ReadFrom90x(deviceNumber, sensor78::exposureHigh);
  const std::uint32_t middle = ReadFrom90x(deviceNumber, sensor78::exposureMiddle);
  const std::uint32_t low = ReadFrom90x(deviceNumber, sensor78::exposureLow);
  return static_cast<std::int32_t>(high * 4096 + middle * 16 + low / 16);
}

// Two exposures of 16 bits; their sum counts.
std::int32_t getExposure42(int deviceNumber) {
  const std::uint32_t high = ReadFrom88x(deviceNumber, sensor42::exposureHigh);
  const std::uint32_t low = ReadFrom88x(deviceNumber, sensor42::exposureLow);
  const std::uint32_t extraHigh = ReadFrom88x(deviceNumber, sensor42::extraExposureHigh);
  const std::uint32_t extraLow = ReadFrom88x(deviceNumber, sensor42::extraExposureLow);
  return static_cast<std::int32_t>(high * 256 + low + extraHigh * 256 + extraLow);
}

// The upper product ids of the 4xxx blocks take no exposure, and the sensor at 0x42 none at all.
constexpr FamilyRow<void(int, std::int32_t)> setters[] = {
    {isVk4xx7Series, setExposure34},
    {within<range(0x870, 0x899), range(0x910, 0x919), range(0x9C0, 0x9CF)>, setExposure48},
    {isVK7xxxSeries, setExposure78},
    {isVK7xxxR4Series, setExposure78},
    {isVK73xxxSeries, setExposure78},
};

constexpr FamilyRow<std::int32_t(int)> getters[] = {
    {isVK4xx7Series, getExposure34},   {isVK4xxxSeries, getExposure48},
    {isVR4xxxSeries, getExposure48},   {isVK7xxxSeries, getExposure78},
    {isVK7xxxR4Series, getExposure78}, {isVK3xxxR4Series, getExposure42},
    {isVR3xxxSeries, getExposure42},
};

}  // namespace

void setExposureValue(int deviceIndex, std::int32_t value) {
  withoutMeasuring([=] {
    return runRowFor(productIdFor(deviceIndex), setters, deviceNumberOf(deviceIndex), value);
  });
}

std::int32_t getExposureValue(int deviceIndex) {
  return withoutMeasuring([=] {
           return runRowFor(productIdFor(deviceIndex), getters, deviceNumberOf(deviceIndex));
         })
      .value_or(0);
}

}  // namespace qvx
