#include "etlib2/hid_bridge.h"

#include <algorithm>
#include <utility>

#include "etlib2/bytes.h"

namespace qvx {

namespace {

// Byte 0 of a command header. The firmware also knows follow-on forms of the I2C codes (6 and 7)
// that skip the status check; every access here is a whole one and uses the plain forms.
enum HeaderCode : std::uint8_t {
  registerRead8 = 0x00,
  registerWrite8 = 0x01,
  i2cRead = 0x02,
  i2cWrite = 0x03,
  registerRead16 = 0x08,
  registerWrite16 = 0x09,
};

// Byte 0 of a one-shot request. Custom commands always carry these two: on this interface the
// firmware takes the command's own code from nowhere.
enum OneShotCode : std::uint8_t {
  i2cReadOneShot = 0x0C,
  i2cWriteOneShot = 0x0D,
  customRead = 0x1D,
  customWrite = 0x1E,
};

constexpr std::size_t oneShotOverhead = 6;

// Appends bytes to a block that is known to have room for them.
class Writer {
 public:
  explicit Writer(std::span<std::uint8_t> block) : block_(block) {}

  Writer& put(std::uint8_t byte) {
    block_[used_++] = byte;
    return *this;
  }
  Writer& put(const std::uint8_t* bytes, std::size_t count) {
    std::copy_n(bytes, count, block_.begin() + static_cast<std::ptrdiff_t>(used_));
    used_ += count;
    return *this;
  }

 private:
  std::span<std::uint8_t> block_;
  std::size_t used_ = 0;
};

}  // namespace

HidBridge::HidBridge(std::unique_ptr<platform::HidDevice> device) : device_(std::move(device)) {}

bool HidBridge::send(Report report, std::span<const std::uint8_t> payload) {
  std::array<std::uint8_t, 65> buffer{report};
  std::copy(payload.begin(), payload.end(), buffer.begin() + 1);
  return device_->setFeature(buffer.data(), static_cast<std::uint32_t>(payload.size() + 1));
}

bool HidBridge::sendHeader(std::array<std::uint8_t, 4> header) {
  return send(commandHeader, header);
}

// The block starts at the report-id position: that is where the bridge puts its first byte.
bool HidBridge::fetch(DataBlock& block) {
  std::array<std::uint8_t, 65> buffer{dataBlock};
  if (!device_->getFeature(buffer.data(), blockSize + 1)) return false;
  std::copy_n(buffer.begin(), blockSize, block.begin());
  return true;
}

bool HidBridge::usesWideAddress(std::uint16_t address) const {
  return chipGeneration == 2 || address >= 256;
}

std::optional<std::uint8_t> HidBridge::readChipGeneration() {
  DataBlock identity;
  if (!sendHeader({registerRead16, 0x00, 0x00, 0x04}) || !fetch(identity)) return std::nullopt;
  const std::uint8_t family = identity[0] & 0xF0;
  return family == 0xB0 || family == 0xC0 ? std::uint8_t{2} : std::uint8_t{0};
}

bool HidBridge::readRegister(RegisterTransfer& transfer) {
  const std::uint16_t address = transfer.address;
  const bool asked =
      usesWideAddress(address)
          ? sendHeader({registerRead16, lowByte(address), highByte(address), transfer.length})
          : sendHeader({registerRead8, lowByte(address), transfer.length, 0});
  DataBlock block;
  if (!asked || !fetch(block)) return false;
  transfer.value = block[0] | static_cast<std::uint32_t>(block[1]) << 8 |
                   static_cast<std::uint32_t>(block[2]) << 16 |
                   static_cast<std::uint32_t>(block[3]) << 24;
  return true;
}

bool HidBridge::writeRegister(const RegisterTransfer& transfer) {
  const bool wide = usesWideAddress(transfer.address);
  DataBlock block{};
  Writer writer(block);
  writer.put(lowByte(transfer.address));
  if (wide) writer.put(highByte(transfer.address));
  writer.put(transfer.length);
  for (unsigned i = 0; i < transfer.length; ++i) {
    writer.put(static_cast<std::uint8_t>(transfer.value >> (8 * i)));
  }
  return sendHeader({wide ? registerWrite16 : registerWrite8, 0, 0, 0}) && send(dataBlock, block);
}

bool HidBridge::writeI2c(const I2cBlock& block) {
  if (oneShotOverhead + block.subAddressLength + block.dataLength <= blockSize) {
    DataBlock request{};
    Writer(request)
        .put(i2cWriteOneShot)
        .put(0)
        .put(block.slave)
        .put(block.speedBit())
        .put(block.subAddressLength)
        .put(block.subAddress.data(), block.subAddressLength)
        .put(block.dataLength)
        .put(block.data.data(), block.dataLength);
    if (send(oneShot, request)) {
      send(dataBlock, request);  // the firmware acts on it; whether it took it does not matter
      return true;
    }
  }
  return sendI2cLegacy(block) && !transferFailed();
}

bool HidBridge::sendI2cLegacy(const I2cBlock& block) {
  const std::size_t total = std::size_t{block.subAddressLength} + block.dataLength;
  if (total + 3 > blockSize) return false;
  DataBlock request{};
  Writer writer(request);
  writer.put(block.slave)
      .put(static_cast<std::uint8_t>(total))
      .put(block.dataLength > 0 ? std::uint8_t{1} : block.speedBit());
  if (block.sendsSubAddress()) writer.put(block.subAddress.data(), block.subAddressLength);
  writer.put(block.data.data(), block.dataLength);
  return sendHeader({i2cWrite, 0, 0, 0}) && send(dataBlock, request);
}

bool HidBridge::readI2c(I2cBlock& block) {
  if (oneShotOverhead + block.subAddressLength > blockSize) return readI2cLegacy(block);
  DataBlock request{};
  Writer(request)
      .put(i2cReadOneShot)
      .put(0)
      .put(block.slave)
      .put(block.speedBit())
      .put(block.subAddressLength)
      .put(block.subAddress.data(), block.subAddressLength)
      .put(block.dataLength);
  if (!send(oneShot, request)) return readI2cLegacy(block);
  DataBlock reply;
  constexpr std::uint8_t mostReplyBytes = 38;
  if (!fetch(reply) || reply[0] < 1 || reply[0] > mostReplyBytes) return false;
  std::copy_n(reply.begin() + 1, std::min<std::size_t>(block.dataLength, blockSize - 1),
              block.data.begin());
  return true;
}

bool HidBridge::readI2cLegacy(I2cBlock& block) {
  if (block.sendsSubAddress()) {
    I2cBlock subAddressOnly = block;
    subAddressOnly.dataLength = 0;
    if (!writeI2c(subAddressOnly)) return false;
  }
  if (!sendHeader({i2cRead, block.slave, block.dataLength, 1})) return false;
  block.data.fill(0);
  DataBlock reply;
  if (!fetch(reply)) return false;
  std::copy(reply.begin(), reply.end(), block.data.begin());
  return !transferFailed();
}

// The chip's own word on the last legacy I2C transfer, always asked in the 8-bit form; a chip that
// does not say counts as content.
bool HidBridge::transferFailed() {
  DataBlock status;
  return sendHeader({registerRead8, bridge_register::status, 1, 0}) && fetch(status) &&
         (status[0] & transferFailedBit) != 0;
}

bool HidBridge::writeCommand(const CommandBlock& command) {
  DataBlock request{};
  Writer(request).put(customWrite).put(command.data.data(), command.data.size());
  return send(oneShot, request) && send(dataBlock, request);
}

bool HidBridge::readCommand(CommandBlock& command) {
  DataBlock request{};
  Writer(request).put(customRead).put(command.data.data(), command.data.size());
  DataBlock reply;
  if (!send(oneShot, request) || !fetch(reply)) return false;
  std::copy_n(reply.begin(), command.data.size(), command.data.begin());
  return true;
}

}  // namespace qvx
