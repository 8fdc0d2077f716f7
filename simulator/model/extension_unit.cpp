#include "simulator/model/extension_unit.h"

#include <utility>

namespace qvx::simulator {

namespace {

constexpr std::uint32_t accessModeSelector = 1;  // in the register set
constexpr std::uint32_t commandSelector = 2;     // in the command set

enum CommandCode : std::uint8_t {
  readParameters = 0x1D,
  writeParameters = 0x1E,
  bodyFunctions = 0xF0,  // segment lighting and the button: their reads and writes look alike
};

constexpr std::size_t oneShotSize = 32, commandSize = 256, maxLegacyBytes = 255;

}  // namespace

std::string inWords(const PropertyId& property) {
  return hex(property.set.data1, 8).substr(2) + '/' + std::to_string(property.selector);
}

bool ExtensionUnit::supports(const PropertySetId& set) const {
  if (unit_ == Unit::variant1) return set == bridgeVariant1Set;
  return set == bridgeRegisterSet || set == bridgeCommandSet;
}

bool ExtensionUnit::set(const PropertySetId& set, std::uint32_t selector, Bytes data) {
  if (!supports(set) || unit_ == Unit::variant1) return false;
  place_ = {set == bridgeCommandSet, selector};
  if (place_.command) return runCommand(data);
  if (selector == accessModeSelector) return setAccessMode(data);
  const BridgeRequest* const request =
      findRequest([selector](const auto& known) { return known.selector == selector; });
  if (request == nullptr) return violate("unknown");
  if (request->since > chip_.firmware()) return false;
  if (data.size() < request->shortest || data.size() > request->longest) {
    return violate("wrong length of");
  }
  return run(*request, data);
}

bool ExtensionUnit::get(const PropertySetId& set, std::uint32_t selector, Room data) {
  if (!supports(set) || unit_ == Unit::variant1) return false;
  place_ = {set == bridgeCommandSet, selector};
  if (reply_.empty() || place_ != replyPlace_) return violate("get without its set:");
  if (data.size() != reply_.size()) return violate("wrong length of");
  std::copy(reply_.begin(), reply_.end(), data.begin());
  reply_.clear();
  return true;
}

bool ExtensionUnit::violate(std::string_view what) {
  chip_.violations().push_back("extension unit: " + std::string(what) +
                               (place_.command ? " command selector " : " selector ") +
                               hex(place_.selector, 2));
  return false;
}

bool ExtensionUnit::setAccessMode(Bytes data) {
  if (data.size() != 1) return violate("wrong length of");
  const bool toNormal = data[0] == normalAccessMode;
  if (atRest() && toNormal) return violate("access mode restored but never set:");
  // Accepted nevertheless: after a lost transfer the mode of the next one counts.
  if (!atRest() && !toNormal) violate("access mode not restored before");
  accessMode_ = data[0];
  return true;
}

// Before a legacy request the client selects an access mode that announces its length.
bool ExtensionUnit::run(const BridgeRequest& request, Bytes data) {
  const bool oneShot = request.isOneShot();
  if (oneShot && !atRest()) return violate("access mode not restored before");
  if (!oneShot && accessMode_ != data.size()) return violate("access mode missing for");
  BridgeOutcome outcome = request.run(chip_, data, oneShot ? oneShotSize : maxLegacyBytes);
  if (!outcome.complaint.empty()) return violate(outcome.complaint);
  if (!oneShot && outcome.padding != 0) return violate("wrong length of");
  if (!request.reads) return true;
  if (oneShot) outcome.answer.resize(oneShotSize);
  reply_ = std::move(outcome.answer);
  replyPlace_ = place_;
  return true;
}

// The first half of a read looks like a write: the camera does what the flags say and keeps the
// answer ready.
bool ExtensionUnit::runCommand(Bytes data) {
  if (place_.selector != commandSelector) return violate("unknown");
  if (data.size() != commandSize) return violate("wrong length of");
  if (!allZero(data.subspan(1 + bridgeCommandSize))) return violate("unused bytes not 0 in");
  const std::uint8_t code = data[0];
  const Bytes command = data.subspan(1, bridgeCommandSize);
  const bool forParameters = code == readParameters || code == writeParameters;
  if (forParameters != (command[0] == BridgeChip::parameters) ||
      (!forParameters && code != bodyFunctions)) {
    return violate("unknown custom command in");
  }
  if (code != readParameters) chip_.writeCommand(command);
  reply_ = chip_.readCommand(command);
  reply_.resize(commandSize);
  replyPlace_ = place_;
  return true;
}

}  // namespace qvx::simulator
