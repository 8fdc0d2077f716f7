// The USB video bridge chip of a simulated camera: its registers, its two I2C buses and the
// commands of its firmware. How they are reached is the matter of its two decoders: ExtensionUnit
// and HidFunction.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "simulator/model/bridge_chip_commands.h"
#include "simulator/model/camera.h"

namespace qvx::simulator {

// What the firmware understands. Each also understands what the ones before it do.
enum class BridgeFirmware : std::uint8_t {
  narrow,   // legacy transfers with 8-bit register addresses
  wide,     // and with 16-bit ones
  oneShot,  // and one-shot requests
};

// First byte of the chip identity: the high nibble tells the generation.
struct BridgeFamily {
  enum : std::uint8_t {
    generation0 = 0x28,  // two I2C buses behind a switch
    generation2 = 0xB2,  // one bus, no switch
    generation2HidOnly =
        0xC1,  // as above, but the extension unit's clients take it for generation 0
  };
};

struct BridgeSetup {
  std::uint8_t family = BridgeFamily::generation0;
  BridgeFirmware firmware = BridgeFirmware::oneShot;
};

enum class I2cBus : std::uint8_t { eeprom = 1, camera = 2 };

class BridgeChip {
 public:
  BridgeChip(const BridgeSetup& setup, Camera& camera);
  BridgeChip(const BridgeChip&) = delete;
  BridgeChip& operator=(const BridgeChip&) = delete;

  // Puts a device on a bus, at its address in 8-bit form. It must outlive the chip. Legacy
  // transfers do not tell sub-address from data: the device's own length decides (0 to 2). False
  // when all places are taken.
  bool attach(I2cBus bus, std::uint8_t slave, std::uint8_t subAddressLength, I2cDevice& device);

  // The button on the camera's body.
  void pressButton();
  void releaseButton();

  BridgeFirmware firmware() const { return setup_.firmware; }
  BridgeCommands& commands() { return commands_; }
  void writeCommand(const BridgeCommandData& request);
  Violations& violations() { return violations_; }

  // For tests: a register's value, little-endian, read without a trace. 0 when there is none.
  std::uint32_t peek(std::uint16_t address) const;

  // For the decoders. A register that does not exist reads 0 and takes no value.
  void readRegister(std::uint16_t address, std::span<std::uint8_t> value);
  void writeRegister(std::uint16_t address, std::span<const std::uint8_t> value);

  // I2C transfers; each returns whether the slave acknowledged. Without a sub-address a read goes
  // on where the last transfer with one pointed.
  bool writeI2c(std::uint8_t slave, std::span<const std::uint8_t> subAddress,
                std::span<const std::uint8_t> data);
  bool readI2c(std::uint8_t slave, std::span<const std::uint8_t> subAddress,
               std::span<std::uint8_t> data);

  // The legacy forms: bytes without a boundary, and the outcome in the status register.
  void writeI2cLegacy(std::uint8_t slave, std::span<const std::uint8_t> bytes);
  bool readI2cLegacy(std::uint8_t slave, std::span<std::uint8_t> data);

 private:
  static constexpr std::size_t mostRegisterBytes = 4;
  static constexpr std::size_t mostSubAddressBytes = 2;
  static constexpr std::size_t mostDevices = 10;

  struct Register {
    std::uint16_t address;
    std::uint8_t length;
    bool writable;
    std::array<std::uint8_t, mostRegisterBytes> value;
  };
  struct Attachment {
    I2cBus bus;
    std::uint8_t slave, subAddressLength;
    I2cDevice* device;
    std::array<std::uint8_t, mostSubAddressBytes> pointer;
  };

  void tell(const char* verb, std::uint16_t address, const char* arrow,
            std::span<const std::uint8_t> value) const;
  void refresh();
  bool hasBusSwitch() const;
  I2cBus selectedBus() const;
  Register* find(std::uint16_t address);
  Register* findForAccess(std::uint16_t address, std::size_t length);
  void setBit(std::uint16_t address, std::uint8_t bit, bool on);
  Attachment* answering(std::uint8_t slave);
  bool point(Attachment& attachment, std::span<const std::uint8_t> subAddress);
  void reportLegacyTransfer(bool acknowledged);

  BridgeSetup setup_;
  std::array<Register, 7> registers_;
  std::array<Attachment, mostDevices> devices_{};
  std::size_t deviceCount_ = 0;
  Camera& camera_;
  Violations& violations_;
  BridgeCommands commands_;
};

}  // namespace qvx::simulator
