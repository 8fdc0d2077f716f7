// One camera behind a USB video bridge chip: the transfers that its firmware offers, whichever
// interface carries them. Every transfer reports only whether it succeeded.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace qvx {

// A transfer of 1 to 4 bytes at a bridge register; the value is little-endian.
struct RegisterTransfer {
  std::uint16_t address = 0;
  std::uint8_t length = 0;
  std::uint32_t value = 0;
};

constexpr std::size_t i2cFieldSize = 64;

// An I2C transfer, in the layout that the tools for the bridge's firmware use.
struct I2cBlock {
  std::uint16_t flags = 0;
  std::uint8_t slave = 0;  // 8-bit form
  std::uint8_t reserved = 0;
  std::array<std::uint8_t, i2cFieldSize> subAddress{};
  std::uint8_t subAddressLength = 0;
  std::array<std::uint8_t, i2cFieldSize> data{};
  std::uint8_t dataLength = 0;

  bool sendsSubAddress() const { return (flags & withSubAddress) != 0 && subAddressLength != 0; }
  std::span<const std::uint8_t> sentSubAddress() const {
    return {subAddress.data(), subAddressLength};
  }
  std::span<const std::uint8_t> sentData() const { return {data.data(), dataLength}; }
  std::uint8_t speedBit() const { return (flags & fastSpeed) != 0 ? 1 : 0; }

  static constexpr std::uint16_t withSubAddress = 0x01;
  static constexpr std::uint16_t fastSpeed = 0x10;
};
static_assert(sizeof(I2cBlock) == 134);
static_assert(offsetof(I2cBlock, subAddressLength) == 68 && offsetof(I2cBlock, data) == 69);

constexpr std::size_t commandDataSize = 32;

struct CommandBlock {
  std::uint8_t code = 0;
  std::array<std::uint8_t, commandDataSize> data{};
};

// The bytes of a request, filled from the front; the rest is 0. Whoever appends has checked that
// they fit.
template <std::size_t capacity>
class Payload {
 public:
  Payload(std::initializer_list<std::uint8_t> head) { append(head); }

  void append(std::span<const std::uint8_t> bytes) {
    std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(used_));
    used_ += bytes.size();
  }
  void append(std::initializer_list<std::uint8_t> bytes) {
    append(std::span<const std::uint8_t>(bytes.begin(), bytes.size()));
  }

  std::span<const std::uint8_t> used() const { return {bytes_.data(), used_}; }
  std::span<const std::uint8_t> whole() const { return bytes_; }

 private:
  std::array<std::uint8_t, capacity> bytes_{};
  std::size_t used_ = 0;
};

namespace bridge_register {
enum : std::uint16_t {
  chipIdentity = 0x0000,
  status = 0x0005,     // bit 4: the last I2C transfer failed
  busSelect = 0x0006,  // bit 2: clear for bus 1, set for bus 2
};
}

constexpr std::uint32_t transferFailedBit = 0x10;
constexpr std::uint32_t busSelectBit = 0x04;

class Bridge {
 public:
  virtual ~Bridge() = default;

  // 0 or 2, read from the chip; nothing when it does not answer.
  virtual std::optional<std::uint8_t> readChipGeneration() = 0;

  virtual bool readRegister(RegisterTransfer& transfer) = 0;
  virtual bool writeRegister(const RegisterTransfer& transfer) = 0;
  virtual bool readI2c(I2cBlock& block) = 0;
  virtual bool writeI2c(const I2cBlock& block) = 0;
  virtual bool readCommand(CommandBlock& command) = 0;
  virtual bool writeCommand(const CommandBlock& command) = 0;

  // The generation as read when the bridge was found, 0 if that failed.
  std::uint8_t chipGeneration = 0;
};

// The bridges among the system's video inputs, at most 8, in the system's order. Needs COM.
std::vector<std::unique_ptr<Bridge>> findExtensionUnitBridges();

// The bridges among all HID devices, recognised by the feature reports that their firmware offers:
// at most 24, in the system's order. One that cannot be opened is among them; its accesses fail.
std::vector<std::unique_ptr<Bridge>> findHidBridges();

}  // namespace qvx
