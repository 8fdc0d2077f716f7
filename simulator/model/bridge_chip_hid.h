// The bridge's HID interface: three feature reports, and what the firmware makes of them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "simulator/model/bridge_chip.h"

namespace qvx::simulator {

// What a HID interface offers: a bridge's reports, or those of what only looks a little like one.
enum class HidReports : std::uint8_t {
  bridge,
  extra,         // one feature report more than a bridge has
  withoutBlock,  // none for data blocks
  none,          // no feature report at all
};

class HidFunction {
 public:
  enum Report : std::uint8_t {
    commandHeader = 0x87,  // 4 bytes: what the next data block means
    dataBlock = 0x93,      // 40 bytes
    oneShot = 0x97,        // 40 bytes; only the newest firmware has it
  };
  static constexpr std::size_t headerSize = 4, blockSize = 40;

  explicit HidFunction(BridgeChip& chip, HidReports reports = HidReports::bridge)
      : chip_(chip), reports_(reports) {}

  // The interface's report descriptor: firmware without one-shot requests has two reports.
  std::vector<std::uint8_t> reportDescriptor() const;

  // As after power-up.
  void reset() { open_ = nullptr; }

  // One feature report, its id in byte 0; false when the camera refuses it. What is no bridge
  // refuses all.
  bool setFeature(std::span<const std::uint8_t> report);
  // The answer's first byte takes the place of the report id: so the firmware does it.
  bool getFeature(std::span<std::uint8_t> report);

 private:
  using Bytes = std::span<const std::uint8_t>;
  struct Exchange;
  static const std::array<Exchange, 10> exchanges;

  bool violate(std::string_view what);
  bool begin(Bytes payload);
  bool finish(Bytes block);
  bool answerRegister(std::uint16_t address, std::uint8_t length);
  bool writeRegister(std::uint16_t address, std::uint8_t length, Bytes valueAndPadding);

  bool readRegister8(Bytes header);
  bool readRegister16(Bytes header);
  bool readI2c(Bytes header);
  bool readI2cOneShot(Bytes request);
  bool readCommand(Bytes request);
  bool awaitData(Bytes header);
  bool awaitRepetition(Bytes request);

  bool writeRegister8(Bytes block);
  bool writeRegister16(Bytes block);
  bool writeI2c(Bytes block);
  bool writeI2cOneShot(Bytes block);
  bool writeCommand(Bytes block);

  BridgeChip& chip_;
  HidReports reports_;
  const Exchange* open_ = nullptr;               // begun; its data block is still to come
  std::uint8_t report_ = 0;                      // id of the report at work
  std::array<std::uint8_t, blockSize> block_{};  // the answer, or the request to be repeated
};

}  // namespace qvx::simulator
