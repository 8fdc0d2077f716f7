// The bridge's extension unit: its properties (selectors) and how the firmware takes them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/model/bridge_chip.h"
#include "simulator/model/property_sets.h"

namespace qvx::simulator {

class ExtensionUnit {
 public:
  enum class Variant : std::uint8_t { usual = 0, variant1 = 1 };

  explicit ExtensionUnit(BridgeChip& chip, Variant variant = Variant::usual)
      : chip_(chip), variant_(variant) {}

  bool supports(const PropertySetId& set) const;

  // One property request of exactly that many bytes; false when the camera refuses it.
  bool set(const PropertySetId& set, std::uint32_t selector, std::span<const std::uint8_t> data);
  bool get(const PropertySetId& set, std::uint32_t selector, std::span<std::uint8_t> data);

  // As after power-up.
  void reset() {
    accessMode_ = normalAccessMode;
    replySize_ = 0;
  }

  // Whether the last legacy transfer was followed by going back to the normal access mode.
  bool atRest() const { return accessMode_ == normalAccessMode; }

 private:
  using Bytes = std::span<const std::uint8_t>;
  struct Selector;
  static const std::array<Selector, 11> selectors;

  static constexpr std::uint8_t normalAccessMode = 1;
  static constexpr std::size_t commandSize = 256;

  bool violate(std::string_view what);
  bool inItsAccessMode(const Selector& selector, std::size_t length);
  std::span<std::uint8_t> prepareReply(std::size_t size);
  bool readRegister(std::uint16_t address, std::uint8_t length, std::size_t replySize);
  bool writeRegister(std::uint16_t address, std::uint8_t length, Bytes valueAndPadding);

  bool setAccessMode(Bytes data);
  bool readRegister8(Bytes data);
  bool writeRegister8(Bytes data);
  bool readI2c(Bytes data);
  bool writeI2c(Bytes data);
  bool readRegister16(Bytes data);
  bool writeRegister16(Bytes data);
  bool readI2cOneShot(Bytes data);
  bool writeI2cOneShot(Bytes data);
  bool readRegisterOneShot(Bytes data);
  bool writeRegisterOneShot(Bytes data);
  bool runCommand(Bytes data);

  // A property request as it came.
  struct Request {
    bool command;  // of the command set
    std::uint32_t selector;

    bool operator==(const Request&) const = default;
  };

  BridgeChip& chip_;
  Variant variant_;
  std::uint8_t accessMode_ = normalAccessMode;
  Request request_{};  // the one at work

  // The answer that waits to be fetched, and what it answers.
  std::array<std::uint8_t, commandSize> reply_{};
  std::size_t replySize_ = 0;
  Request replyTo_{};
};

}  // namespace qvx::simulator
