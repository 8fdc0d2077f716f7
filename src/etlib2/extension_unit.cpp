#include <algorithm>
#include <span>
#include <utility>

#include "base/bytes.h"
#include "etlib2/bridge.h"
#include "platform/topology.h"

namespace qvx {

namespace {

using platform::PropertySet;
using platform::TopologyFilter;

constexpr PropertySet registerSet = {
    0x5A215226, 0x3289, 0x4156, {0x89, 0x4A, 0x5C, 0x55, 0x7C, 0xDF, 0x96, 0x64}};
constexpr PropertySet registerSetOfVariant1 = {
    0xAAB8F252, 0x8ED1, 0x4972, {0x8C, 0xED, 0x96, 0xB1, 0x7F, 0x04, 0x40, 0x8B}};
constexpr PropertySet commandSet = {
    0xC66D125B, 0x0480, 0x0844, {0x8C, 0x26, 0xB8, 0x36, 0x3A, 0x84, 0xDE, 0x63}};

constexpr std::uint32_t commandSelector = 2;  // of the command set
constexpr std::uint8_t normalAccessMode = 1;

using OneShot = Payload<32>;
using Legacy = Payload<3 + 2 * i2cFieldSize>;
using Command = Payload<256>;

class ExtensionUnitBridge final : public Bridge {
 public:
  // Without a register node every register and I2C access fails, and nothing is sent.
  ExtensionUnitBridge(std::shared_ptr<TopologyFilter> filter,
                      std::optional<std::uint32_t> registerNode,
                      std::optional<std::uint32_t> commandNode)
      : filter_(std::move(filter)), registerNode_(registerNode), commandNode_(commandNode) {}

  std::optional<std::uint8_t> readChipGeneration() override;
  bool readRegister(RegisterTransfer& transfer) override;
  bool writeRegister(const RegisterTransfer& transfer) override;
  bool readI2c(I2cBlock& block) override;
  bool writeI2c(const I2cBlock& block) override;
  bool readCommand(CommandBlock& command) override;
  bool writeCommand(const CommandBlock& command) override;

 private:
  // Selectors of the register set. The one-shot forms came with newer firmware.
  enum Selector : std::uint8_t {
    accessMode = 1,
    registerRead8 = 2,
    registerWrite8 = 3,
    i2cRead = 4,
    i2cWrite = 5,
    registerRead16 = 10,
    registerWrite16 = 11,
    i2cReadOneShot = 20,
    i2cWriteOneShot = 21,
    registerReadOneShot = 26,
    registerWriteOneShot = 27,
  };

  bool set(Selector selector, std::span<const std::uint8_t> bytes) {
    return registerNode_ &&
           filter_->setProperty(*registerNode_, registerSet, selector, bytes.data(),
                                static_cast<std::uint32_t>(bytes.size()));
  }
  bool get(Selector selector, std::span<std::uint8_t> bytes) {
    return registerNode_ &&
           filter_->getProperty(*registerNode_, registerSet, selector, bytes.data(),
                                static_cast<std::uint32_t>(bytes.size()));
  }
  bool setAccessMode(std::size_t mode) {
    const auto byte = static_cast<std::uint8_t>(mode);
    return set(accessMode, {&byte, 1});
  }

  // Runs a legacy transfer in its access mode and goes back to the normal one whatever its outcome.
  // Nothing when the camera refused the mode. When it refuses to go back, nothing more
  // is sent: the next transfer sets its own mode.
  template <class Transfer>
  std::optional<bool> inAccessMode(std::size_t mode, Transfer transfer) {
    if (!setAccessMode(mode)) return std::nullopt;
    const bool done = transfer();
    setAccessMode(normalAccessMode);
    return done;
  }

  std::optional<bool> readRegisterLegacy(Selector selector, const Legacy& header,
                                         RegisterTransfer& transfer);
  bool transferFailed();

  std::shared_ptr<TopologyFilter> filter_;
  std::optional<std::uint32_t> registerNode_;
  std::optional<std::uint32_t> commandNode_;
};

std::optional<std::uint8_t> ExtensionUnitBridge::readChipGeneration() {
  RegisterTransfer identity{bridge_register::chipIdentity, 4, 0};
  if (!readRegister(identity)) return std::nullopt;
  return (identity.value & 0xF0) == 0xB0 ? std::uint8_t{2} : std::uint8_t{0};
}

bool ExtensionUnitBridge::readRegister(RegisterTransfer& transfer) {
  const std::uint16_t address = transfer.address;
  const OneShot request{lowByte(address), highByte(address), transfer.length};
  std::array<std::uint8_t, 32> reply{};
  if (set(registerReadOneShot, request.whole()) && get(registerReadOneShot, reply)) {
    transfer.value = valueOf(std::span(reply).first(transfer.length));
    return true;
  }
  const std::optional<bool> wide = readRegisterLegacy(
      registerRead16, {lowByte(address), highByte(address), transfer.length}, transfer);
  if (!wide || *wide) return wide.has_value();
  return readRegisterLegacy(registerRead8, {lowByte(address), transfer.length}, transfer)
      .value_or(false);
}

std::optional<bool> ExtensionUnitBridge::readRegisterLegacy(Selector selector, const Legacy& header,
                                                            RegisterTransfer& transfer) {
  return inAccessMode(header.used().size(), [&] {
    std::array<std::uint8_t, 4> buffer{};
    const auto bytes = std::span(buffer).first(transfer.length);
    if (!set(selector, header.used()) || !get(selector, bytes)) return false;
    transfer.value = valueOf(bytes);
    return true;
  });
}

bool ExtensionUnitBridge::writeRegister(const RegisterTransfer& transfer) {
  const auto bytes = bytesOf(transfer.value);
  const auto value = std::span(bytes).first(transfer.length);
  const std::uint8_t addressLow = lowByte(transfer.address),
                     addressHigh = highByte(transfer.address);

  OneShot request{addressLow, addressHigh, transfer.length};
  request.append(value);
  if (set(registerWriteOneShot, request.whole())) return true;

  const std::optional<bool> wide =
      inAccessMode(transfer.length + 3u, [&] { return set(registerWrite16, request.used()); });
  if (!wide || *wide) return wide.has_value();

  Legacy narrow{addressLow, transfer.length};
  narrow.append(value);
  return inAccessMode(transfer.length + 2u, [&] { return set(registerWrite8, narrow.used()); })
      .value_or(false);
}

bool ExtensionUnitBridge::writeI2c(const I2cBlock& block) {
  const std::size_t total = std::size_t{block.subAddressLength} + block.dataLength;
  if (total + 5 <= 32) {
    OneShot request{0, block.slave, block.speedBit(), block.subAddressLength};
    request.append(block.sentSubAddress());
    request.append({block.dataLength});
    request.append(block.sentData());
    if (set(i2cWriteOneShot, request.whole())) return true;
  }
  Legacy request{block.slave, static_cast<std::uint8_t>(total),
                 block.dataLength > 0 ? std::uint8_t{1} : block.speedBit()};
  if (block.sendsSubAddress()) request.append(block.sentSubAddress());
  request.append(block.sentData());
  const bool sent =
      inAccessMode(total + 3, [&] { return set(i2cWrite, request.used()); }).value_or(false);
  return sent && !transferFailed();
}

bool ExtensionUnitBridge::readI2c(I2cBlock& block) {
  if (block.subAddressLength + 5u <= 32) {
    OneShot request{0, block.slave, block.speedBit(), block.subAddressLength};
    request.append(block.sentSubAddress());
    request.append({block.dataLength});
    std::array<std::uint8_t, 32> reply{};
    if (set(i2cReadOneShot, request.whole()) && get(i2cReadOneShot, reply)) {
      // The camera's own count decides, whatever was asked for.
      const std::size_t count = std::min<std::size_t>(reply[0], reply.size() - 1);
      std::copy_n(reply.begin() + 1, count, block.data.begin());
      return true;
    }
  }
  if (block.sendsSubAddress()) {
    I2cBlock subAddressOnly = block;
    subAddressOnly.dataLength = 0;
    if (!writeI2c(subAddressOnly)) return false;
  }
  const Legacy request{block.slave, block.dataLength, 1};
  bool fetched = false;
  const bool asked = inAccessMode(request.used().size(), [&] {
                       if (!set(i2cRead, request.used())) return false;
                       fetched = get(i2cRead, std::span(block.data).first(block.dataLength));
                       return true;
                     }).value_or(false);
  return asked && !transferFailed() && fetched;
}

// What the chip itself says about the last legacy I2C transfer; no answer counts as success.
bool ExtensionUnitBridge::transferFailed() {
  RegisterTransfer status{bridge_register::status, 1, 0};
  return readRegister(status) && (status.value & transferFailedBit) != 0;
}

bool ExtensionUnitBridge::writeCommand(const CommandBlock& command) {
  Command request{command.code};
  request.append(command.data);
  const auto bytes = request.whole();
  return commandNode_ &&
         filter_->setProperty(*commandNode_, commandSet, commandSelector, bytes.data(),
                              static_cast<std::uint32_t>(bytes.size()));
}

bool ExtensionUnitBridge::readCommand(CommandBlock& command) {
  std::array<std::uint8_t, 256> reply{};
  if (!writeCommand(command) ||
      !filter_->getProperty(*commandNode_, commandSet, commandSelector, reply.data(),
                            static_cast<std::uint32_t>(reply.size()))) {
    return false;
  }
  std::copy_n(reply.begin(), command.data.size(), command.data.begin());
  return true;
}

std::optional<std::uint32_t> nodeFor(TopologyFilter& filter, const PropertySet& set) {
  for (const std::uint32_t node : filter.vendorNodes()) {
    if (filter.supports(node, set)) return node;
  }
  return std::nullopt;
}

std::unique_ptr<Bridge> bridgeOn(const std::shared_ptr<TopologyFilter>& filter) {
  const auto registerNode = nodeFor(*filter, registerSet);
  const auto node = registerNode ? registerNode : nodeFor(*filter, registerSetOfVariant1);
  if (!node) return nullptr;
  // A camera that does not name its command node gets commands at its register node.
  const auto commandNode = nodeFor(*filter, commandSet);
  return std::make_unique<ExtensionUnitBridge>(filter, registerNode,
                                               commandNode ? commandNode : node);
}

}  // namespace

std::vector<std::unique_ptr<Bridge>> findExtensionUnitBridges() {
  constexpr std::size_t maxBridges = 8;
  std::vector<std::unique_ptr<Bridge>> bridges;
  for (const auto& filter : platform::openTopologyFilters()) {
    if (bridges.size() == maxBridges) break;
    if (auto bridge = bridgeOn(filter)) bridges.push_back(std::move(bridge));
  }
  return bridges;
}

}  // namespace qvx
