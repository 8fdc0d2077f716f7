#include "simulator/model/camera.h"

namespace qvx::simulator {

namespace {

constexpr std::uint32_t frameLines = 1125;  // of the sensor at 0x34

constexpr struct {
  std::uint16_t first, last;  // product ids
  std::uint8_t slave;
} cameras[] = {
    {0x870, 0x89F, 0x48}, {0x900, 0x909, 0x78}, {0x910, 0x91F, 0x48}, {0x920, 0x94F, 0x78},
    {0x960, 0x99F, 0x78}, {0x9A0, 0x9AF, 0x42}, {0x9B0, 0x9BF, 0x78}, {0x9C0, 0x9CF, 0x48},
    {0x9D0, 0x9DF, 0x42}, {0x9E0, 0x9EF, 0x34},
};

const SensorKind* kindAt(std::uint8_t slave) {
  // Every sensor powers up with automatic exposure on and values in mid-range.
  static const SensorKind kinds[] = {
      {{{0x3500, 0x3501, 0x3502}, 16, {}, 0, 500, 2000, 0x3503, 0x00, 0x07, 0x3A1E, 0x38},
       0x78,
       2,
       {{0x3500, {0x00, 0x1F, 0x40}},  // exposure in 1/16 lines: 500 lines
        {0x3503, {0x00}},              // bits 0 to 2: manual settings
        {0x350C, {0x03, 0xD8}},        // longest exposure in lines: 984
        {0x3A0F, {0x46, 0x3A}},        // automatic exposure around brightness 0x38
        {0x3A1B, {0x58}},
        {0x3A1E, {0x38}},
        {0x3C00, {0x04, 0x34}}}},  // mains frequency: detected, 50 Hz
      {{{0x0015, 0x0016}, 1, {}, 0, 480, 2000, 0x0380, 0x55, 0x54, 0x038E, 0x40},
       0x48,
       2,
       {{0x0015, {0x01, 0xE0}},  // exposure in lines: 480
        {0x0120, {0x00}},        // bit 0: mains of 60 Hz
        {0x0380, {0x55}},        // bit 0: automatic exposure
        {0x038E, {0x40}},        // brightness target
        {0x085C, {0x00}}}},      // 1 applies the target
      {{{0x08, 0x10}, 1, {0x2E, 0x2D}, 0, 312, 1250, 0x13, 0xBD, 0xB8, 0x25, 0x48},
       0x42,
       1,
       {{0x08, {0x01}},  // exposure in lines: 256 + 37, plus 16 + 3 additional ones
        {0x10, {0x25}},
        {0x2D, {0x13, 0x00}},
        {0x0E, {0xD5}},
        {0x13, {0xBD}},        // bit 0: automatic exposure
        {0x22, {0x99, 0x02}},  // mains of 50 Hz
        {0x25, {0x48}}}},      // brightness target
      {{{0x0202, 0x0203}, -1, {0x0340, 0x0341}, frameLines, 500, frameLines - 1, 0, 0, 0, 0, 0x40},
       0x34,
       2,
       {{0x0202, {0x02, 0x71}},  // lines that are not exposed: 625 of 1125
        {0x0340, {0x04, 0x65}}}},
  };
  return std::ranges::find(kinds, slave, &SensorKind::slave);
}

std::uint32_t wide(const Sensor& sensor, const SensorExposure::Addresses& addresses) {
  std::uint32_t value = 0;
  for (const std::uint16_t address : addresses) value = value << 8 | sensor.at(address);
  return value;
}

void setWide(Sensor& sensor, const SensorExposure::Addresses& addresses, std::uint32_t value) {
  for (auto address = addresses.rbegin(); address != addresses.rend(); ++address) {
    sensor.set(*address, static_cast<std::uint8_t>(value));
    value >>= 8;
  }
}

}  // namespace

const SensorKind* sensorFor(std::uint16_t productId) {
  const auto* const camera = rowFor(productId, cameras);
  return camera == nullptr ? nullptr : kindAt(camera->slave);
}

double SensorExposure::lines(const Sensor& sensor) const {
  return 1.0 * wide(sensor, counted) / partsPerLine + wide(sensor, added);
}

void SensorExposure::setLines(Sensor& sensor, std::uint32_t lines) const {
  setWide(sensor, counted, (lines - usuallyAdded) * static_cast<std::uint32_t>(partsPerLine));
  setWide(sensor, added, usuallyAdded);
}

bool SensorExposure::isAutomatic(const Camera& camera) const {
  if (automaticRegister == 0) return camera.firmwareExposure.automatic;
  return ((camera.sensor.at(automaticRegister) ^ automatic) & 1) == 0;
}

void SensorExposure::setAutomatic(Camera& camera, bool on) const {
  if (automaticRegister == 0) camera.firmwareExposure.automatic = on;
  camera.sensor.set(automaticRegister, on ? automatic : manual);
}

double SensorExposure::target(const Camera& camera) const {
  if (automaticRegister == 0) return camera.firmwareExposure.target;
  return camera.sensor.at(targetRegister);
}

Sensor::Sensor(std::uint16_t productId, Violations& violations)
    : kind_(sensorFor(productId)), violations_(violations) {
  if (kind_ == nullptr) return;
  for (const auto& [first, values] : kind_->registers) {
    std::uint16_t address = first;
    for (const std::uint8_t value : values) values_[address++] = value;
  }
}

bool Sensor::write(Bytes subAddress, Bytes data) {
  std::uint8_t* const value = findForAccess(subAddress, data.size());
  if (value != nullptr) *value = data[0];
  return value != nullptr;
}

bool Sensor::read(Bytes subAddress, Room data) {
  const std::uint8_t* const value = findForAccess(subAddress, data.size());
  if (value != nullptr) data[0] = *value;
  return value != nullptr;
}

std::uint8_t Sensor::at(std::uint16_t address) const {
  const auto found = values_.find(address);
  return found == values_.end() ? std::uint8_t{0} : found->second;
}

void Sensor::set(std::uint16_t address, std::uint8_t value) {
  const auto found = values_.find(address);
  if (found != values_.end()) found->second = value;
}

std::uint8_t* Sensor::findForAccess(Bytes subAddress, std::size_t dataBytes) {
  const std::size_t size = subAddress.size();
  const auto address = static_cast<std::uint16_t>(numberIn(subAddress));
  const std::string name = hex(address, 2 * kind_->addressBytes);
  const auto found = values_.find(address);
  if (size != kind_->addressBytes) {
    violations_.push_back("sensor: bytes of register address: " + hex(size, 2));
  } else if (dataBytes != 1) {
    violations_.push_back("sensor: not one byte for register " + name);
  } else if (found == values_.end()) {
    violations_.push_back("sensor: unknown register " + name);
  } else {
    return &found->second;
  }
  return nullptr;
}

}  // namespace qvx::simulator
