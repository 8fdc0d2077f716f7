#include "simulator/model/bridge_chip.h"

namespace qvx::simulator {

namespace {

enum Address : std::uint16_t {
  chipIdentity = 0x0000,
  status = 0x0005,     // bit 4: the last legacy I2C transfer failed
  busSwitch = 0x0006,  // bit 2: 0 selects the EEPROM's bus, 1 the camera's
  lights = 0x0080,
  buttonState = 0x0085,        // bit 7: pressed
  buttonStateOf4xx7 = 0x0608,  // bit 4: pressed
  exposureMode = 0x1700,       // bit 15: automatic
};

constexpr std::uint8_t transferFailedBit = 0x10;
constexpr std::uint8_t cameraBusBit = 0x04;
constexpr std::uint8_t pressedBit = 0x80;
constexpr std::uint8_t pressedBitOf4xx7 = 0x10;
constexpr std::uint8_t automaticBit = 0x80;                        // in the higher byte
constexpr std::uint8_t allLightPinsLow = 0xF0, segmentsOn = 0xF5;  // light modes

}  // namespace

BridgeChip::BridgeChip(const BridgeSetup& setup, Camera& camera)
    : setup_(setup),
      registers_{{chipIdentity, {{setup.family, 0x60, 0x01, 0x00}}},
                 {status, {{0x00}}},
                 {busSwitch, {{0x00}, true}},
                 {lights, {{0xF0}, true}},
                 {buttonState, {{0x00}}},
                 {buttonStateOf4xx7, {{0x00}}},
                 {exposureMode, {{0x00, 0x80}, true}}},
      camera_(camera) {}

void BridgeChip::touch(bool touched) {
  setBit(buttonState, pressedBit, touched);
  setBit(buttonStateOf4xx7, pressedBitOf4xx7, touched);
  if (touched) flags_[touchButton] = 1;
}

std::uint32_t BridgeChip::peek(std::uint16_t address) const {
  const auto found = registers_.find(address);
  std::uint32_t number = 0;
  if (found == registers_.end()) return number;
  const auto& bytes = found->second.value;
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) number = number << 8 | *byte;
  return number;
}

void BridgeChip::readRegister(std::uint16_t address, Room value) {
  const Register* const entry = findForAccess(address, value.size());
  std::fill(value.begin(), value.end(), std::uint8_t{0});
  if (entry != nullptr) std::copy(entry->value.begin(), entry->value.end(), value.begin());
  tell(false, address, value);
}

void BridgeChip::writeRegister(std::uint16_t address, Bytes value) {
  Register* const entry = findForAccess(address, value.size());
  if (entry == nullptr) return;
  if (!entry->writable) {
    violations().push_back("bridge: write to read-only register " + hex(address, 4));
    return;
  }
  if (address == lights && (value[0] < allLightPinsLow || value[0] > segmentsOn)) {
    violations().push_back("bridge: unknown state of the lights " + hex(value[0], 2));
  }
  tell(true, address, value);
  if (camera_.tap.losesWrites) return;
  entry->value.assign(value.begin(), value.end());
  if (address == lights) camera_.gpio.setLights(value[0]);
  if (address == exposureMode) {
    camera_.firmwareExposure.automatic = (value[1] & automaticBit) != 0;
  }
}

bool BridgeChip::writeI2c(std::uint8_t slave, Bytes subAddress, Bytes data) {
  const auto place = answering(slave);
  if (!place || !point(*place, subAddress)) return false;
  return data.empty() || camera_.write(*place, subAddress, data);
}

bool BridgeChip::readI2c(std::uint8_t slave, Bytes subAddress, Room data) {
  const auto place = answering(slave);
  if (!place || (!subAddress.empty() && !point(*place, subAddress))) return false;
  Pointer& pointer = pointers_[slave];
  pointer.resize(place->subAddressLength);
  return camera_.read(*place, pointer, data);
}

void BridgeChip::writeI2cLegacy(std::uint8_t slave, Bytes bytes) {
  const auto place = answering(slave);
  const std::size_t boundary =
      std::min<std::size_t>(place ? place->subAddressLength : 0, bytes.size());
  setBit(status, transferFailedBit,
         !writeI2c(slave, bytes.first(boundary), bytes.subspan(boundary)));
}

void BridgeChip::readI2cLegacy(std::uint8_t slave, Room data) {
  setBit(status, transferFailedBit, !readI2c(slave, {}, data));
}

void BridgeChip::writeCommand(Bytes command) {
  std::uint8_t* const value = camera_.tap.losesWrites ? nullptr : meantBy(command);
  if (value == nullptr) return;
  if (command[0] == parameters) *value = command[4];
  if (command[0] == touchButton && command[2] == 1) *value = 0;
  camera_.firmwareExposure.target = parameters_[0];
  if ((command[0] == segmentRing || command[0] == segmentPower) && command[1] == 1) *value = 1;
}

std::vector<std::uint8_t> BridgeChip::readCommand(Bytes command) {
  const std::uint8_t* const value = meantBy(command);
  std::vector<std::uint8_t> reply(bridgeCommandSize);
  reply[0] = command[0];
  if (value != nullptr) reply[command[0] == parameters ? 0 : 2] = *value;
  return reply;
}

// The firmware's storage for a parameter; null, and a violation, if the parameter is unknown.
std::uint8_t* BridgeChip::meantBy(Bytes command) {
  if (command[0] == parameters) {
    const bool known = command[1] == 0 && command[2] < parameters_.size() && command[3] == 1;
    if (known) return &parameters_[command[2]];
    violations().push_back("bridge: unknown parameter " + hex(command[2], 2));
    return nullptr;
  }
  const auto flag = flags_.find(command[0]);
  if (flag != flags_.end()) return &flag->second;
  violations().push_back("bridge: unknown custom command " + hex(command[0], 2));
  return nullptr;
}

void BridgeChip::tell(bool isWrite, std::uint16_t address, Bytes value) const {
  if (camera_.tap.tell) camera_.tap.tell(inWords(isWrite, "bridge " + hex(address, 4), value));
}

// These registers also reflect changes made by other means.
void BridgeChip::refresh() {
  registers_.at(lights).value[0] = allLightPinsLow | camera_.gpio.lights();
  setBit(exposureMode, automaticBit, camera_.firmwareExposure.automatic);
}

BridgeChip::Register* BridgeChip::findForAccess(std::uint16_t address, std::size_t length) {
  refresh();
  const auto found = registers_.find(address);
  // A client that knows that the chip is of generation 2 does not switch the bus.
  const bool absent = address == busSwitch && (setup_.family & 0xF0) == 0xB0;
  if (found == registers_.end() || absent) {
    violations().push_back("bridge: unknown register " + hex(address, 4));
    return nullptr;
  }
  if (found->second.value.size() != length) {
    violations().push_back("bridge: wrong length at register " + hex(address, 4));
    return nullptr;
  }
  return &found->second;
}

// In the highest byte.
void BridgeChip::setBit(std::uint16_t address, std::uint8_t bit, bool on) {
  std::uint8_t& value = registers_.at(address).value.back();
  value = static_cast<std::uint8_t>(on ? value | bit : value & ~bit);
}

std::optional<BusPlace> BridgeChip::answering(std::uint8_t slave) {
  const bool isEeprom = slave == Eeprom::slave;
  const bool isSwitched = setup_.family == BridgeFamily::generation0;
  const bool onCameraBus = (peek(busSwitch) & cameraBusBit) != 0;
  if (isSwitched && isEeprom == onCameraBus) return std::nullopt;
  if (isEeprom) return BusPlace{slave, Eeprom::subAddressLength, &eeprom_};
  return camera_.placeAt(slave);
}

bool BridgeChip::point(const BusPlace& place, Bytes subAddress) {
  if (subAddress.size() != place.subAddressLength) {
    violations().push_back("bridge: wrong sub-address length for I2C device " +
                           hex(place.address, 2));
    return false;
  }
  pointers_[place.address].assign(subAddress.begin(), subAddress.end());
  return true;
}

}  // namespace qvx::simulator
