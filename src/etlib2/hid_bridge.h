// A bridge reached by feature reports of its HID interface.
#pragma once

#include <memory>
#include <span>

#include "etlib2/bridge.h"
#include "platform/hid.h"

namespace qvx {

class HidBridge final : public Bridge {
 public:
  // Feature reports of the bridge firmware, by their ids.
  enum Report : std::uint8_t {
    commandHeader = 0x87,  // 4 bytes: what the next data block means
    dataBlock = 0x93,      // 40 bytes
    oneShot = 0x97,        // 40 bytes: requests of newer firmware
  };

  explicit HidBridge(std::unique_ptr<platform::HidDevice> device);

  std::optional<std::uint8_t> readChipGeneration() override;
  bool readRegister(RegisterTransfer& transfer) override;
  bool writeRegister(const RegisterTransfer& transfer) override;
  bool readI2c(I2cBlock& block) override;
  bool writeI2c(const I2cBlock& block) override;
  bool readCommand(CommandBlock& command) override;
  bool writeCommand(const CommandBlock& command) override;

 private:
  static constexpr std::size_t blockSize = 40;
  using DataBlock = std::array<std::uint8_t, blockSize>;

  bool send(Report report, std::span<const std::uint8_t> payload);
  bool sendHeader(std::array<std::uint8_t, 4> header);
  bool fetch(DataBlock& block);
  bool usesWideAddress(std::uint16_t address) const;
  bool sendI2cLegacy(const I2cBlock& block);
  bool readI2cLegacy(I2cBlock& block);
  bool transferFailed();

  std::unique_ptr<platform::HidDevice> device_;
};

}  // namespace qvx
