#include "simulator/model/bridge_chip_extension_unit.h"

#include <algorithm>

#include "simulator/model/bridge_chip_requests.h"

namespace qvx::simulator {

namespace {

constexpr std::uint32_t accessModeSelector = 1;  // of the register set
constexpr std::uint32_t commandSelector = 2;     // of the command set

enum CommandCode : std::uint8_t {
  readParameters = 0x1D,
  writeParameters = 0x1E,
  bodyFunctions = 0xF0,  // segment lighting and the button: read and write look alike
};

constexpr std::size_t oneShotSize = 32;
constexpr std::size_t mostRegisterBytes = 4;

}  // namespace

// What the register set knows. Framed ones come in an access mode that announces their length.
struct ExtensionUnit::Selector {
  std::uint32_t number;
  BridgeFirmware since;
  bool framed;
  std::size_t shortest, longest;
  bool (ExtensionUnit::*handler)(Bytes);
};

constexpr std::array<ExtensionUnit::Selector, 11> ExtensionUnit::selectors = {{
    {accessModeSelector, BridgeFirmware::narrow, false, 1, 1, &ExtensionUnit::setAccessMode},
    {2, BridgeFirmware::narrow, true, 2, 2, &ExtensionUnit::readRegister8},
    {3, BridgeFirmware::narrow, true, 3, 6, &ExtensionUnit::writeRegister8},
    {4, BridgeFirmware::narrow, true, 3, 3, &ExtensionUnit::readI2c},
    {5, BridgeFirmware::narrow, true, 3, 131, &ExtensionUnit::writeI2c},
    {10, BridgeFirmware::wide, true, 3, 3, &ExtensionUnit::readRegister16},
    {11, BridgeFirmware::wide, true, 4, 7, &ExtensionUnit::writeRegister16},
    {20, BridgeFirmware::oneShot, false, 32, 32, &ExtensionUnit::readI2cOneShot},
    {21, BridgeFirmware::oneShot, false, 32, 32, &ExtensionUnit::writeI2cOneShot},
    {26, BridgeFirmware::oneShot, false, 32, 32, &ExtensionUnit::readRegisterOneShot},
    {27, BridgeFirmware::oneShot, false, 32, 32, &ExtensionUnit::writeRegisterOneShot},
}};

bool ExtensionUnit::supports(const PropertySetId& set) const {
  if (variant_ == Variant::variant1) return set == bridgeVariant1Set;
  return set == bridgeRegisterSet || set == bridgeCommandSet;
}

bool ExtensionUnit::set(const PropertySetId& set, std::uint32_t selector, Bytes data) {
  if (!supports(set) || variant_ == Variant::variant1) return false;
  request_ = {set == bridgeCommandSet, selector};
  if (request_.command) return runCommand(data);
  const auto found = std::find_if(selectors.begin(), selectors.end(),
                                  [selector](const Selector& s) { return s.number == selector; });
  if (found == selectors.end()) return violate("unknown");
  if (found->since > chip_.firmware()) return false;
  if (data.size() < found->shortest || data.size() > found->longest) {
    return violate("wrong length of");
  }
  return inItsAccessMode(*found, data.size()) && (this->*found->handler)(data);
}

bool ExtensionUnit::get(const PropertySetId& set, std::uint32_t selector,
                        std::span<std::uint8_t> data) {
  if (!supports(set) || variant_ == Variant::variant1) return false;
  request_ = {set == bridgeCommandSet, selector};
  if (replySize_ == 0 || request_ != replyTo_) return violate("get without its set:");
  if (data.size() != replySize_) return violate("wrong length of");
  std::copy_n(reply_.begin(), replySize_, data.begin());
  replySize_ = 0;
  return true;
}

bool ExtensionUnit::violate(std::string_view what) {
  chip_.violations().add({"extension unit: ", what,
                          request_.command ? " command selector " : " selector ",
                          hex(request_.selector, 2)});
  return false;
}

bool ExtensionUnit::inItsAccessMode(const Selector& selector, std::size_t length) {
  if (selector.framed) {
    return accessMode_ == length || violate("access mode missing for");
  }
  return atRest() || selector.number == accessModeSelector ||
         violate("access mode not restored before");
}

std::span<std::uint8_t> ExtensionUnit::prepareReply(std::size_t size) {
  reply_.fill(0);
  replySize_ = size;
  replyTo_ = request_;
  return std::span(reply_).first(size);
}

bool ExtensionUnit::readRegister(std::uint16_t address, std::uint8_t length,
                                 std::size_t replySize) {
  if (length < 1 || length > mostRegisterBytes) return violate("wrong length of");
  chip_.readRegister(address, prepareReply(replySize).first(length));
  return true;
}

bool ExtensionUnit::writeRegister(std::uint16_t address, std::uint8_t length,
                                  Bytes valueAndPadding) {
  if (length < 1 || length > std::min(mostRegisterBytes, valueAndPadding.size())) {
    return violate("wrong length of");
  }
  if (!allZero(valueAndPadding.subspan(length))) return violate("unused bytes not 0 in");
  chip_.writeRegister(address, valueAndPadding.first(length));
  return true;
}

bool ExtensionUnit::setAccessMode(Bytes data) {
  const bool toNormal = data[0] == normalAccessMode;
  if (atRest() && toNormal) return violate("access mode restored but never set:");
  // Taken all the same: after a transfer that was lost, the next one's mode counts.
  if (!atRest() && !toNormal) violate("access mode not restored before");
  accessMode_ = data[0];
  return true;
}

bool ExtensionUnit::readRegister8(Bytes data) {
  return readRegister(data[0], data[1], data[1]);
}

bool ExtensionUnit::writeRegister8(Bytes data) {
  return writeRegister(data[0], data[1], data.subspan(2));
}

bool ExtensionUnit::readRegister16(Bytes data) {
  return readRegister(registerAddress(data), data[2], data[2]);
}

bool ExtensionUnit::writeRegister16(Bytes data) {
  return writeRegister(registerAddress(data), data[2], data.subspan(3));
}

bool ExtensionUnit::readRegisterOneShot(Bytes data) {
  if (!allZero(data.subspan(3))) return violate("unused bytes not 0 in");
  return readRegister(registerAddress(data), data[2], oneShotSize);
}

bool ExtensionUnit::writeRegisterOneShot(Bytes data) {
  return writeRegister(registerAddress(data), data[2], data.subspan(3));
}

bool ExtensionUnit::readI2c(Bytes data) {
  const std::uint8_t slave = data[0], count = data[1];
  if (count < 1 || data[2] != 1) return violate("wrong length of");
  chip_.readI2cLegacy(slave, prepareReply(count));
  return true;
}

bool ExtensionUnit::writeI2c(Bytes data) {
  const Bytes bytes = data.subspan(3);
  if (data[1] != bytes.size() || data[2] > 1) return violate("wrong length of");
  chip_.writeI2cLegacy(data[0], bytes);
  return true;
}

// A slave that does not answer shows as a count of 0.
bool ExtensionUnit::readI2cOneShot(Bytes data) {
  const auto request = I2cRequest::parse(data, false);
  if (!request.wellFormed) return violate("wrong length of");
  const auto reply = prepareReply(oneShotSize);
  const auto count = std::min<std::size_t>(request.count, oneShotSize - 1);
  if (chip_.readI2c(request.slave, request.subAddress, reply.subspan(1, count))) {
    reply[0] = static_cast<std::uint8_t>(count);
  }
  return true;
}

bool ExtensionUnit::writeI2cOneShot(Bytes data) {
  const auto request = I2cRequest::parse(data, true);
  if (!request.wellFormed) return violate("wrong length of");
  chip_.writeI2c(request.slave, request.subAddress, request.data);
  return true;
}

// The camera cannot tell the first half of a read from a write: it does what the flags say and has
// the answer ready.
bool ExtensionUnit::runCommand(Bytes data) {
  if (request_.selector != commandSelector) return violate("unknown");
  if (data.size() != commandSize) return violate("wrong length of");
  if (!allZero(data.subspan(1 + bridgeCommandSize))) {
    return violate("unused bytes not 0 in");
  }
  BridgeCommandData request;
  std::copy_n(data.begin() + 1, request.size(), request.begin());
  const std::uint8_t code = data[0];
  const bool forParameters = code == readParameters || code == writeParameters;
  if (forParameters != (request[0] == BridgeCommands::parameters) ||
      (!forParameters && code != bodyFunctions)) {
    return violate("unknown custom command in");
  }
  if (code != readParameters) chip_.writeCommand(request);
  const BridgeCommandData answer = chip_.commands().read(request);
  std::copy(answer.begin(), answer.end(), prepareReply(commandSize).begin());
  return true;
}

}  // namespace qvx::simulator
