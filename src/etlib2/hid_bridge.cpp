#include <algorithm>
#include <span>
#include <utility>

#include "base/bytes.h"
#include "etlib2/bridge.h"
#include "platform/hid.h"

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
// command's own code is not sent at all.
enum OneShotCode : std::uint8_t {
  i2cReadOneShot = 0x0C,
  i2cWriteOneShot = 0x0D,
  customRead = 0x1D,
  customWrite = 0x1E,
};

constexpr std::size_t oneShotOverhead = 6;

constexpr std::size_t maxFeatures = 3;

class HidBridge final : public Bridge {
 public:
  // Feature reports of the bridge firmware, by their ids.
  enum Report : std::uint8_t {
    commandHeader = 0x87,  // 4 bytes: what the next data block means
    dataBlock = 0x93,      // 40 bytes
    oneShot = 0x97,        // 40 bytes: requests of newer firmware
  };

  explicit HidBridge(std::unique_ptr<platform::HidDevice> device) : device_(std::move(device)) {}

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
  using Request = Payload<blockSize>;

  bool send(Report report, std::span<const std::uint8_t> bytes);
  bool sendHeader(std::array<std::uint8_t, 4> header);
  bool fetch(DataBlock& block);
  bool usesWideAddress(std::uint16_t address) const;
  bool sendI2cLegacy(const I2cBlock& block);
  bool readI2cLegacy(I2cBlock& block);
  bool transferFailed();

  std::unique_ptr<platform::HidDevice> device_;
};

bool HidBridge::send(Report report, std::span<const std::uint8_t> bytes) {
  std::array<std::uint8_t, 65> buffer{report};
  std::copy(bytes.begin(), bytes.end(), buffer.begin() + 1);
  return device_->setFeature(buffer.data(), static_cast<std::uint32_t>(bytes.size() + 1));
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
  transfer.value = valueOf(std::span(block).first(4));
  return true;
}

bool HidBridge::writeRegister(const RegisterTransfer& transfer) {
  const bool wide = usesWideAddress(transfer.address);
  const auto value = bytesOf(transfer.value);
  Request request{lowByte(transfer.address)};
  if (wide) request.append({highByte(transfer.address)});
  request.append({transfer.length});
  request.append(std::span(value).first(transfer.length));
  return sendHeader({wide ? registerWrite16 : registerWrite8, 0, 0, 0}) &&
         send(dataBlock, request.whole());
}

bool HidBridge::writeI2c(const I2cBlock& block) {
  if (oneShotOverhead + block.subAddressLength + block.dataLength <= blockSize) {
    Request request{i2cWriteOneShot, 0, block.slave, block.speedBit(), block.subAddressLength};
    request.append(block.sentSubAddress());
    request.append({block.dataLength});
    request.append(block.sentData());
    if (send(oneShot, request.whole())) {
      // The firmware acts on the block; whether it took it does not matter.
      send(dataBlock, request.whole());
      return true;
    }
  }
  return sendI2cLegacy(block) && !transferFailed();
}

bool HidBridge::sendI2cLegacy(const I2cBlock& block) {
  const std::size_t total = std::size_t{block.subAddressLength} + block.dataLength;
  if (total + 3 > blockSize) return false;
  Request request{block.slave, static_cast<std::uint8_t>(total),
                  block.dataLength > 0 ? std::uint8_t{1} : block.speedBit()};
  if (block.sendsSubAddress()) request.append(block.sentSubAddress());
  request.append(block.sentData());
  return sendHeader({i2cWrite, 0, 0, 0}) && send(dataBlock, request.whole());
}

bool HidBridge::readI2c(I2cBlock& block) {
  if (oneShotOverhead + block.subAddressLength > blockSize) return readI2cLegacy(block);
  Request request{i2cReadOneShot, 0, block.slave, block.speedBit(), block.subAddressLength};
  request.append(block.sentSubAddress());
  request.append({block.dataLength});
  if (!send(oneShot, request.whole())) return readI2cLegacy(block);
  DataBlock reply;
  constexpr std::uint8_t maxReplyBytes = 38;
  if (!fetch(reply) || reply[0] < 1 || reply[0] > maxReplyBytes) return false;
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

// What the chip itself says about the last legacy I2C transfer, always asked in the 8-bit form; no
// answer counts as success.
bool HidBridge::transferFailed() {
  DataBlock status;
  return sendHeader({registerRead8, bridge_register::status, 1, 0}) && fetch(status) &&
         (status[0] & transferFailedBit) != 0;
}

bool HidBridge::writeCommand(const CommandBlock& command) {
  Request request{customWrite};
  request.append(command.data);
  return send(oneShot, request.whole()) && send(dataBlock, request.whole());
}

bool HidBridge::readCommand(CommandBlock& command) {
  Request request{customRead};
  request.append(command.data);
  DataBlock reply;
  if (!send(oneShot, request.whole()) || !fetch(reply)) return false;
  std::copy_n(reply.begin(), command.data.size(), command.data.begin());
  return true;
}

// Vendor and product ids play no part: many makers' cameras carry the same bridge.
bool isBridge(const platform::HidFeatures& features) {
  if (features.dataCount < 1 || features.dataCount > maxFeatures) return false;
  const auto& ids = features.valueReportIds;
  const auto looked = std::min(features.dataCount, ids.size());
  const auto end = ids.begin() + static_cast<std::ptrdiff_t>(looked);
  return std::find(ids.begin(), end, HidBridge::commandHeader) != end &&
         std::find(ids.begin(), end, HidBridge::dataBlock) != end;
}

}  // namespace

std::vector<std::unique_ptr<Bridge>> findHidBridges() {
  constexpr std::size_t maxBridges = 24;
  std::vector<std::unique_ptr<Bridge>> bridges;
  const auto paths = platform::listHidInterfaces();
  if (!paths) return bridges;
  for (const std::string& path : *paths) {
    const auto features = platform::describeHidFeatures(path);
    if (!features || !isBridge(*features)) continue;
    bridges.push_back(std::make_unique<HidBridge>(platform::openHid(path)));
    if (bridges.size() == maxBridges) break;
  }
  return bridges;
}

}  // namespace qvx
