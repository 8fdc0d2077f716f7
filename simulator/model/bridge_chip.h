// The USB video bridge chip of a simulated camera: its registers, its two I2C buses and the
// commands of its firmware. How they are reached is the matter of its two decoders: ExtensionUnit
// and HidFunction.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <optional>

#include "simulator/model/camera.h"
#include "simulator/model/eeprom.h"

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

// A custom command of the camera's firmware: segment lighting, the latched touch button, and the
// parameters of automatic exposure. The firmware answers with as many bytes.
constexpr std::size_t bridgeCommandSize = 32;

class BridgeChip {
 public:
  // First byte of a custom command: a function that the camera's body offers, or 0.
  enum Function : std::uint8_t {
    parameters = 0x00,    // bytes 0 to 2: parameter, 3: count (always 1), 4: value
    segmentRing = 0xF2,   // byte 1: 1 switches on; reply byte 2: 1 when on
    segmentPower = 0xF3,  // likewise
    touchButton = 0xF5,   // byte 2: 1 acknowledges; reply byte 2: 1 when pressed since
  };

  BridgeChip(const BridgeSetup& setup, Camera& camera);

  // The button on the camera's body.
  void touch(bool touched);

  BridgeFirmware firmware() const { return setup_.firmware; }
  Violations& violations() { return camera_.violations; }

  // For tests: a register's value, little-endian, read without a trace. 0 when there is none.
  std::uint32_t peek(std::uint16_t address) const;
  bool segmentMode() const { return flags_.at(segmentRing) != 0 && flags_.at(segmentPower) != 0; }

  // For the decoders. A register that does not exist reads 0 and takes no value.
  void readRegister(std::uint16_t address, Room value);
  void writeRegister(std::uint16_t address, Bytes value);

  // I2C transfers; each returns whether the slave acknowledged. Without a sub-address a read goes
  // on where the last transfer with one pointed.
  bool writeI2c(std::uint8_t slave, Bytes subAddress, Bytes data);
  bool readI2c(std::uint8_t slave, Bytes subAddress, Room data);

  // The legacy forms: bytes without a boundary between sub-address and data, which the slave's own
  // length of sub-addresses decides, and the outcome in the status register.
  void writeI2cLegacy(std::uint8_t slave, Bytes bytes);
  void readI2cLegacy(std::uint8_t slave, Room data);

  // Does what the flags of the command say. Cleared flags leave everything as it is.
  void writeCommand(Bytes command);
  // What the camera answers; changes nothing.
  std::vector<std::uint8_t> readCommand(Bytes command);

 private:
  struct Register {
    std::vector<std::uint8_t> value;
    bool writable = false;
  };
  using Pointer = std::vector<std::uint8_t>;  // what the last sub-address said

  void refresh();
  Register* findForAccess(std::uint16_t address, std::size_t length);
  void tell(bool isWrite, std::uint16_t address, Bytes value) const;
  void setBit(std::uint16_t address, std::uint8_t bit, bool on);
  std::optional<BusPlace> answering(std::uint8_t slave);
  bool point(const BusPlace& place, Bytes subAddress);
  std::uint8_t* meantBy(Bytes command);

  BridgeSetup setup_;
  std::map<std::uint16_t, Register> registers_;
  std::map<std::uint8_t, Pointer> pointers_;  // of the slaves
  Camera& camera_;
  Eeprom eeprom_;
  std::map<std::uint8_t, std::uint8_t> flags_{
      {segmentRing, 0}, {segmentPower, 0}, {touchButton, 0}};
  // Brightness target, lower and upper bound of automatic exposure.
  std::array<std::uint8_t, 3> parameters_{0x40, 0x30, 0x50};
};

}  // namespace qvx::simulator
