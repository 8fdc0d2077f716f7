#include "simulator/model/bridge_chip.h"

#include <algorithm>

namespace qvx::simulator {

namespace {

enum Address : std::uint16_t {
  chipIdentity = 0x0000,
  status = 0x0005,     // bit 4: the last legacy I2C transfer failed
  busSwitch = 0x0006,  // bit 2: clear for bus 1, set for bus 2
  lights = 0x0080,
  touchButton = 0x0085,        // bit 7: pressed
  touchButtonOf4xx7 = 0x0608,  // bit 4: pressed
  exposureMode = 0x1700,       // bit 15: automatic
};

constexpr std::uint8_t transferFailedBit = 0x10;
constexpr std::uint8_t secondBusBit = 0x04;
constexpr std::uint8_t pressedBit = 0x80;
constexpr std::uint8_t pressedBitOf4xx7 = 0x10;
constexpr std::uint8_t automaticBit = 0x80;                         // in the higher byte
constexpr std::uint8_t allLightPinsLow = 0xF0, segmentMode = 0xF5;  // of the lights

}  // namespace

BridgeChip::BridgeChip(const BridgeSetup& setup, Camera& camera)
    : setup_(setup),
      registers_{{{chipIdentity, 4, false, {setup.family, 0x60, 0x01, 0x00}},
                  {status, 1, false, {}},
                  {busSwitch, 1, true, {}},
                  {lights, 1, true, {0xF0}},
                  {touchButton, 1, false, {}},
                  {touchButtonOf4xx7, 1, false, {}},
                  {exposureMode, 2, true, {0x00, 0x80}}}},
      camera_(camera),
      violations_(camera.violations()),
      commands_(violations_) {}

bool BridgeChip::attach(I2cBus bus, std::uint8_t slave, std::uint8_t subAddressLength,
                        I2cDevice& device) {
  if (deviceCount_ == devices_.size() || subAddressLength > mostSubAddressBytes) return false;
  devices_[deviceCount_++] = {bus, slave, subAddressLength, &device, {}};
  return true;
}

void BridgeChip::pressButton() {
  setBit(touchButton, pressedBit, true);
  setBit(touchButtonOf4xx7, pressedBitOf4xx7, true);
  commands_.latchButton();
}

void BridgeChip::releaseButton() {
  setBit(touchButton, pressedBit, false);
  setBit(touchButtonOf4xx7, pressedBitOf4xx7, false);
}

std::uint32_t BridgeChip::peek(std::uint16_t address) const {
  for (const Register& entry : registers_) {
    if (entry.address != address) continue;
    const auto& bytes = entry.value;
    return bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
  }
  return 0;
}

void BridgeChip::readRegister(std::uint16_t address, std::span<std::uint8_t> value) {
  std::fill(value.begin(), value.end(), std::uint8_t{0});
  const Register* const entry = findForAccess(address, value.size());
  if (entry != nullptr) std::copy_n(entry->value.begin(), value.size(), value.begin());
  tell("read  bridge ", address, " ->", value);
}

void BridgeChip::writeRegister(std::uint16_t address, std::span<const std::uint8_t> value) {
  Register* const entry = findForAccess(address, value.size());
  if (entry == nullptr) return;
  if (!entry->writable) {
    violations_.add({"bridge: write to read-only register ", hex(address, 4)});
    return;
  }
  if (address == lights && (value[0] < allLightPinsLow || value[0] > segmentMode)) {
    violations_.add({"bridge: unknown state of the lights ", hex(value[0], 2)});
  }
  tell("write bridge ", address, " <-", value);
  if (camera_.tap().losesWrites) return;
  std::copy(value.begin(), value.end(), entry->value.begin());
  if (address == lights) camera_.gpio().setLights(value[0]);
  if (address == exposureMode) {
    camera_.firmwareExposure().automatic = (value[1] & automaticBit) != 0;
  }
}

void BridgeChip::writeCommand(const BridgeCommandData& request) {
  if (camera_.tap().losesWrites) return;
  commands_.write(request);
  camera_.firmwareExposure().target = commands_.exposureParameters()[0];
}

bool BridgeChip::writeI2c(std::uint8_t slave, std::span<const std::uint8_t> subAddress,
                          std::span<const std::uint8_t> data) {
  Attachment* const attachment = answering(slave);
  if (attachment == nullptr || !point(*attachment, subAddress)) return false;
  return data.empty() || attachment->device->write(subAddress, data);
}

bool BridgeChip::readI2c(std::uint8_t slave, std::span<const std::uint8_t> subAddress,
                         std::span<std::uint8_t> data) {
  Attachment* const attachment = answering(slave);
  if (attachment == nullptr) return false;
  if (!subAddress.empty() && !point(*attachment, subAddress)) return false;
  const auto pointer = std::span(attachment->pointer).first(attachment->subAddressLength);
  return attachment->device->read(pointer, data);
}

void BridgeChip::writeI2cLegacy(std::uint8_t slave, std::span<const std::uint8_t> bytes) {
  const Attachment* const attachment = answering(slave);
  if (attachment == nullptr) return reportLegacyTransfer(false);
  const std::size_t boundary = std::min<std::size_t>(attachment->subAddressLength, bytes.size());
  reportLegacyTransfer(writeI2c(slave, bytes.first(boundary), bytes.subspan(boundary)));
}

bool BridgeChip::readI2cLegacy(std::uint8_t slave, std::span<std::uint8_t> data) {
  const bool acknowledged = readI2c(slave, {}, data);
  reportLegacyTransfer(acknowledged);
  return acknowledged;
}

void BridgeChip::tell(const char* verb, std::uint16_t address, const char* arrow,
                      std::span<const std::uint8_t> value) const {
  if (!camera_.tap().tell) return;
  std::string line = verb;
  (line += hex(address, 4)) += arrow;
  for (const std::uint8_t byte : value) (line += ' ') += hex(byte, 2);
  camera_.tap().tell(line);
}

// What else changes these is to be read here, too.
void BridgeChip::refresh() {
  find(lights)->value[0] = allLightPinsLow | camera_.gpio().lights();
  std::uint8_t& mode = find(exposureMode)->value[1];
  mode = static_cast<std::uint8_t>(mode & ~automaticBit);
  if (camera_.firmwareExposure().automatic) mode |= automaticBit;
}

bool BridgeChip::hasBusSwitch() const {
  const std::uint8_t generation = setup_.family & 0xF0;
  return generation != 0xB0 && generation != 0xC0;
}

I2cBus BridgeChip::selectedBus() const {
  return (peek(busSwitch) & secondBusBit) != 0 ? I2cBus::camera : I2cBus::eeprom;
}

BridgeChip::Register* BridgeChip::find(std::uint16_t address) {
  const auto found = std::find_if(registers_.begin(), registers_.end(),
                                  [address](const Register& r) { return r.address == address; });
  return found == registers_.end() ? nullptr : &*found;
}

BridgeChip::Register* BridgeChip::findForAccess(std::uint16_t address, std::size_t length) {
  refresh();
  Register* const entry = find(address);
  // Who knows the chip to be of generation 2 leaves its bus alone.
  const bool absent = address == busSwitch && (setup_.family & 0xF0) == 0xB0;
  if (entry == nullptr || absent) {
    violations_.add({"bridge: unknown register ", hex(address, 4)});
    return nullptr;
  }
  if (entry->length != length) {
    violations_.add({"bridge: wrong length at register ", hex(address, 4)});
    return nullptr;
  }
  return entry;
}

void BridgeChip::setBit(std::uint16_t address, std::uint8_t bit, bool on) {
  std::uint8_t& value = find(address)->value[0];
  value = static_cast<std::uint8_t>(on ? value | bit : value & ~bit);
}

BridgeChip::Attachment* BridgeChip::answering(std::uint8_t slave) {
  for (Attachment& attachment : std::span(devices_).first(deviceCount_)) {
    const bool reachable = !hasBusSwitch() || attachment.bus == selectedBus();
    if (reachable && attachment.slave == slave) return &attachment;
  }
  return nullptr;
}

bool BridgeChip::point(Attachment& attachment, std::span<const std::uint8_t> subAddress) {
  if (subAddress.size() != attachment.subAddressLength) {
    violations_.add({"bridge: wrong sub-address length for I2C device ", hex(attachment.slave, 2)});
    return false;
  }
  std::copy(subAddress.begin(), subAddress.end(), attachment.pointer.begin());
  return true;
}

void BridgeChip::reportLegacyTransfer(bool acknowledged) {
  setBit(status, transferFailedBit, !acknowledged);
}

}  // namespace qvx::simulator
