#include "simulator/model/sensor.h"

#include <iterator>

namespace qvx::simulator {

namespace {

// Every sensor wakes up with automatic exposure on, in mid-range.
constexpr SensorRegister at78[] = {
    // exposure in 1/16 lines: 500 lines
    {0x3500, 0x00},
    {0x3501, 0x1F},
    {0x3502, 0x40},
    {0x3503, 0x00},  // bits 0 to 2: what is set by hand
    // longest exposure in lines: 984
    {0x350C, 0x03},
    {0x350D, 0xD8},
    // automatic exposure around brightness 0x38
    {0x3A0F, 0x46},
    {0x3A10, 0x3A},
    {0x3A1B, 0x58},
    {0x3A1E, 0x38},
    // mains frequency: detected, 50 Hz
    {0x3C00, 0x04},
    {0x3C01, 0x34},
};

constexpr SensorRegister at48[] = {
    // exposure in lines: 480
    {0x0015, 0x01}, {0x0016, 0xE0}, {0x0120, 0x00},  // bit 0: mains of 60 Hz
    {0x0380, 0x55},                                  // bit 0: automatic exposure
    {0x038E, 0x40},                                  // brightness target
    {0x085C, 0x00},                                  // 1 takes the target over
};

constexpr SensorRegister at42[] = {
    // exposure in lines: 256 + 37, and 16 + 3 of the second kind
    {0x08, 0x01},
    {0x0E, 0xD5},
    {0x10, 0x25},
    {0x13, 0xBD},  // bit 0: automatic exposure
    // mains of 50 Hz
    {0x22, 0x99},
    {0x23, 0x02},
    {0x25, 0x48},  // brightness target
    {0x2D, 0x13},
    {0x2E, 0x00},
};

constexpr SensorRegister at34[] = {
    // lines of the frame that are not exposed: 625 of 1125
    {0x0202, 0x02},
    {0x0203, 0x71},
    {0x0340, 0x04},
    {0x0341, 0x65},
};

constexpr struct {
  std::uint16_t first, last;  // product ids
  SensorKind kind;
} sensors[] = {
    {0x870, 0x89F, {0x48, 2, at48}}, {0x900, 0x909, {0x78, 2, at78}},
    {0x910, 0x91F, {0x48, 2, at48}}, {0x920, 0x94F, {0x78, 2, at78}},
    {0x960, 0x99F, {0x78, 2, at78}}, {0x9A0, 0x9AF, {0x42, 1, at42}},
    {0x9B0, 0x9BF, {0x78, 2, at78}}, {0x9C0, 0x9CF, {0x48, 2, at48}},
    {0x9D0, 0x9DF, {0x42, 1, at42}}, {0x9E0, 0x9EF, {0x34, 2, at34}},
};

}  // namespace

const SensorKind* sensorFor(std::uint16_t productId) {
  for (const auto& row : sensors) {
    if (productId >= row.first && productId <= row.last) return &row.kind;
  }
  return nullptr;
}

Sensor::Sensor(std::uint16_t productId, Violations& violations)
    : kind_(sensorFor(productId)), violations_(violations) {
  static_assert(std::size(at78) <= mostRegisters);
  if (kind_ == nullptr) return;
  for (std::size_t i = 0; i < kind_->registers.size(); ++i) {
    values_[i] = kind_->registers[i].atPowerUp;
  }
}

bool Sensor::write(std::span<const std::uint8_t> subAddress, std::span<const std::uint8_t> data) {
  const std::size_t index = indexForAccess(subAddress, data.size());
  if (index == mostRegisters) return false;
  values_[index] = data[0];
  return true;
}

bool Sensor::read(std::span<const std::uint8_t> subAddress, std::span<std::uint8_t> data) {
  const std::size_t index = indexForAccess(subAddress, data.size());
  if (index == mostRegisters) return false;
  data[0] = values_[index];
  return true;
}

std::uint8_t Sensor::at(std::uint16_t address) const {
  const std::size_t index = indexOf(address);
  return index == mostRegisters ? std::uint8_t{0} : values_[index];
}

void Sensor::set(std::uint16_t address, std::uint8_t value) {
  const std::size_t index = indexOf(address);
  if (index != mostRegisters) values_[index] = value;
}

std::size_t Sensor::indexOf(std::uint16_t address) const {
  if (kind_ == nullptr) return mostRegisters;
  for (std::size_t i = 0; i < kind_->registers.size(); ++i) {
    if (kind_->registers[i].address == address) return i;
  }
  return mostRegisters;
}

std::size_t Sensor::indexForAccess(std::span<const std::uint8_t> subAddress,
                                   std::size_t dataBytes) {
  if (kind_ == nullptr) return mostRegisters;
  if (subAddress.size() != kind_->addressBytes) {
    return refuse("bytes of register address: ", static_cast<std::uint32_t>(subAddress.size()), 2);
  }
  std::uint16_t address = 0;
  for (const std::uint8_t byte : subAddress) {
    address = static_cast<std::uint16_t>(address << 8 | byte);
  }
  const int digits = 2 * kind_->addressBytes;
  if (dataBytes != 1) return refuse("not one byte for register ", address, digits);
  const std::size_t index = indexOf(address);
  return index == mostRegisters ? refuse("unknown register ", address, digits) : index;
}

std::size_t Sensor::refuse(std::string_view what, std::uint32_t number, int digits) {
  violations_.add({"sensor: ", what, hex(number, digits)});
  return mostRegisters;
}

}  // namespace qvx::simulator
