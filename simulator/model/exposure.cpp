#include "simulator/model/exposure.h"

#include <initializer_list>

namespace qvx::simulator {

namespace {

constexpr std::uint32_t frameLines = 1125;  // of the sensor at 0x34, which counts those not exposed

using Addresses = std::initializer_list<std::uint16_t>;  // of several bytes, the highest first

double wide(const Sensor& sensor, Addresses addresses) {
  std::uint32_t value = 0;
  for (const std::uint16_t address : addresses) value = value << 8 | sensor.at(address);
  return value;
}

void setWide(Sensor& sensor, Addresses addresses, std::uint32_t value) {
  for (auto address = std::rbegin(addresses); address != std::rend(addresses); ++address) {
    sensor.set(*address, static_cast<std::uint8_t>(value));
    value >>= 8;
  }
}

double linesOf78(const Sensor& sensor) {
  return wide(sensor, {0x3500, 0x3501, 0x3502}) / 16;
}
void setLinesOf78(Sensor& sensor, std::uint32_t lines) {
  setWide(sensor, {0x3500, 0x3501, 0x3502}, lines * 16);
}

double linesOf48(const Sensor& sensor) {
  return wide(sensor, {0x0015, 0x0016});
}
void setLinesOf48(Sensor& sensor, std::uint32_t lines) {
  setWide(sensor, {0x0015, 0x0016}, lines);
}

double linesOf42(const Sensor& sensor) {
  return wide(sensor, {0x08, 0x10}) + wide(sensor, {0x2E, 0x2D});
}
void setLinesOf42(Sensor& sensor, std::uint32_t lines) {
  setWide(sensor, {0x08, 0x10}, lines);
  setWide(sensor, {0x2E, 0x2D}, 0);
}

double linesOf34(const Sensor& sensor) {
  return wide(sensor, {0x0340, 0x0341}) - wide(sensor, {0x0202, 0x0203});
}
void setLinesOf34(Sensor& sensor, std::uint32_t lines) {
  setWide(sensor, {0x0340, 0x0341}, frameLines);
  setWide(sensor, {0x0202, 0x0203}, frameLines - lines);
}

constexpr SensorExposure exposures[] = {
    {0x78, linesOf78, setLinesOf78, 500, 2000, 0x3503, 0x00, 0x07, 0x3A1E, 0x38},
    {0x48, linesOf48, setLinesOf48, 480, 2000, 0x0380, 0x55, 0x54, 0x038E, 0x40},
    {0x42, linesOf42, setLinesOf42, 312, 1250, 0x13, 0xBD, 0xB8, 0x25, 0x48},
    {0x34, linesOf34, setLinesOf34, 500, frameLines - 1, 0, 0, 0, 0, 0x40},
};

}  // namespace

const SensorExposure* exposureFor(std::uint16_t productId) {
  const SensorKind* const kind = sensorFor(productId);
  if (kind == nullptr) return nullptr;
  const SensorExposure* exposure = exposures;
  while (exposure->slave != kind->slave) ++exposure;
  return exposure;
}

}  // namespace qvx::simulator
