// The USB video bridge chip of a simulated camera: its registers, its two I2C buses and the
// commands of its firmware. ExtensionUnit and HidFunction decode the requests that reach it.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <optional>

#include "simulator/model/camera.h"
#include "simulator/model/eeprom.h"

namespace qvx::simulator {

// Generations of firmware. Each also understands the requests of the ones before it.
enum class BridgeFirmware : std::uint8_t {
  narrow,   // legacy transfers with 8-bit register addresses
  wide,     // 16-bit ones as well
  oneShot,  // one-shot requests as well
};

// First byte of the chip identity; its high nibble is the generation.
struct BridgeFamily {
  enum : std::uint8_t {
    generation0 = 0x28,  // two I2C buses behind a switch
    generation2 = 0xB2,  // one bus, no switch
    generation2HidOnly =
        0xC1,  // the same, but clients of the extension unit take it for generation 0
  };
};

struct BridgeSetup {
  std::uint8_t family = BridgeFamily::generation0;
  BridgeFirmware firmware = BridgeFirmware::oneShot;
};

// A custom command of the camera's firmware: segment lighting, the latched touch button, the
// parameters of automatic exposure. The reply has the same length.
constexpr std::size_t bridgeCommandSize = 32;

class BridgeChip {
 public:
  // First byte of a custom command: a function of the camera's body, or 0.
  enum Function : std::uint8_t {
    parameters = 0x00,    // bytes 0 to 2: parameter, 3: count (always 1), 4: value
    segmentRing = 0xF2,   // byte 1: 1 switches it on; reply byte 2: 1 if on
    segmentPower = 0xF3,  // likewise
    touchButton = 0xF5,   // byte 2: 1 acknowledges; reply byte 2: 1 if pressed since then
  };

  BridgeChip(const BridgeSetup& setup, Camera& camera);

  // The button on the camera's body.
  void touch(bool touched);

  BridgeFirmware firmware() const { return setup_.firmware; }
  Violations& violations() { return camera_.violations; }

  // For tests: a register's little-endian value, read without side effects; 0 if it does not exist.
  std::uint32_t peek(std::uint16_t address) const;
  bool segmentMode() const { return flags_.at(segmentRing) != 0 && flags_.at(segmentPower) != 0; }

  // For the decoders. A register that does not exist reads as 0 and ignores writes.
  void readRegister(std::uint16_t address, Room value);
  void writeRegister(std::uint16_t address, Bytes value);

  // I2C transfers; each returns whether the slave acknowledged. A read without a sub-address uses
  // the sub-address of the last transfer that had one.
  bool writeI2c(std::uint8_t slave, Bytes subAddress, Bytes data);
  bool readI2c(std::uint8_t slave, Bytes subAddress, Room data);

  // The legacy forms: the slave's own sub-address length separates sub-address and data; the status
  // register holds the outcome.
  void writeI2cLegacy(std::uint8_t slave, Bytes bytes);
  void readI2cLegacy(std::uint8_t slave, Room data);

  // Executes what the flags of the command request. Cleared flags change nothing.
  void writeCommand(Bytes command);
  // The camera's reply; changes nothing.
  std::vector<std::uint8_t> readCommand(Bytes command);

 private:
  struct Register {
    std::vector<std::uint8_t> value;
    bool writable = false;
  };
  using Pointer = std::vector<std::uint8_t>;  // the last sub-address

  void refresh();
  Register* findForAccess(std::uint16_t address, std::size_t length);
  void tell(bool isWrite, std::uint16_t address, Bytes value) const;
  void setBit(std::uint16_t address, std::uint8_t bit, bool on);
  std::optional<BusPlace> answering(std::uint8_t slave);
  bool point(const BusPlace& place, Bytes subAddress);
  std::uint8_t* meantBy(Bytes command);

  BridgeSetup setup_;
  std::map<std::uint16_t, Register> registers_;
  std::map<std::uint8_t, Pointer> pointers_;  // by slave address
  Camera& camera_;
  Eeprom eeprom_;
  std::map<std::uint8_t, std::uint8_t> flags_{
      {segmentRing, 0}, {segmentPower, 0}, {touchButton, 0}};
  // Brightness target, lower and upper bound of automatic exposure.
  std::array<std::uint8_t, 3> parameters_{0x40, 0x30, 0x50};
};

}  // namespace qvx::simulator
