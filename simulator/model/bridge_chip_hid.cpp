#include "simulator/model/bridge_chip_hid.h"

#include <algorithm>

#include "simulator/model/bridge_chip_requests.h"

namespace qvx::simulator {

namespace {

constexpr std::size_t mostRegisterBytes = 4;
constexpr std::size_t mostAnswerBytes = 38;  // of a one-shot I2C read

struct FeatureReport {
  std::uint8_t id, bytes;
};

// A vendor-defined collection of byte-wide feature reports; without any, of an input.
std::vector<std::uint8_t> descriptorOf(std::initializer_list<FeatureReport> reports) {
  std::vector<std::uint8_t> bytes = {
      0x06, 0x00, 0xFF,                          // usage page: vendor-defined
      0x09, 0x01, 0xA1, 0x01,                    // usage 1: application collection
      0x15, 0x00, 0x26, 0xFF, 0x00, 0x75, 0x08,  // values 0 to 255, 8 bits each
  };
  std::uint8_t usage = 2;
  for (const FeatureReport& report : reports) {
    bytes.insert(bytes.end(), {0x85, report.id, 0x09, usage++, 0x95, report.bytes, 0xB1, 0x02});
  }
  if (reports.size() == 0) bytes.insert(bytes.end(), {0x09, usage, 0x95, 4, 0x81, 0x02});
  bytes.push_back(0xC0);  // end of the collection
  return bytes;
}

}  // namespace

// What a first report may ask for. Without a second handler the client fetches an answer, with one
// it sends a data block.
struct HidFunction::Exchange {
  Report report;
  std::uint8_t code;
  BridgeFirmware since;
  bool (HidFunction::*begin)(Bytes);
  bool (HidFunction::*finish)(Bytes);
};

constexpr std::array<HidFunction::Exchange, 10> HidFunction::exchanges = {{
    {commandHeader, 0x00, BridgeFirmware::narrow, &HidFunction::readRegister8, nullptr},
    {commandHeader, 0x01, BridgeFirmware::narrow, &HidFunction::awaitData,
     &HidFunction::writeRegister8},
    {commandHeader, 0x02, BridgeFirmware::narrow, &HidFunction::readI2c, nullptr},
    {commandHeader, 0x03, BridgeFirmware::narrow, &HidFunction::awaitData, &HidFunction::writeI2c},
    {commandHeader, 0x08, BridgeFirmware::wide, &HidFunction::readRegister16, nullptr},
    {commandHeader, 0x09, BridgeFirmware::wide, &HidFunction::awaitData,
     &HidFunction::writeRegister16},
    {oneShot, 0x0C, BridgeFirmware::oneShot, &HidFunction::readI2cOneShot, nullptr},
    {oneShot, 0x0D, BridgeFirmware::oneShot, &HidFunction::awaitRepetition,
     &HidFunction::writeI2cOneShot},
    {oneShot, 0x1D, BridgeFirmware::oneShot, &HidFunction::readCommand, nullptr},
    {oneShot, 0x1E, BridgeFirmware::oneShot, &HidFunction::awaitRepetition,
     &HidFunction::writeCommand},
}};

std::vector<std::uint8_t> HidFunction::reportDescriptor() const {
  constexpr FeatureReport header = {commandHeader, headerSize}, block = {dataBlock, blockSize},
                          shot = {oneShot, blockSize}, unknown = {0x98, 8};
  switch (reports_) {
    case HidReports::extra:
      return descriptorOf({header, block, shot, unknown});
    case HidReports::withoutBlock:
      return descriptorOf({header, shot});
    case HidReports::none:
      return descriptorOf({});
    default:
      return chip_.firmware() < BridgeFirmware::oneShot ? descriptorOf({header, block})
                                                        : descriptorOf({header, block, shot});
  }
}

bool HidFunction::setFeature(std::span<const std::uint8_t> report) {
  if (report.empty() || reports_ != HidReports::bridge) return false;
  report_ = report[0];
  if (report_ == oneShot && chip_.firmware() < BridgeFirmware::oneShot) return false;
  const bool header = report_ == commandHeader;
  if (!header && report_ != dataBlock && report_ != oneShot) {
    return violate("unknown request in");
  }
  const Bytes payload = report.subspan(1);
  if (payload.size() != (header ? headerSize : blockSize)) {
    return violate("wrong length of");
  }
  return report_ == dataBlock ? finish(payload) : begin(payload);
}

bool HidFunction::getFeature(std::span<std::uint8_t> report) {
  if (report.empty() || reports_ != HidReports::bridge) return false;
  report_ = report[0];
  if (report_ != dataBlock) return violate("unknown request in");
  if (report.size() != blockSize + 1) return violate("wrong length of");
  if (open_ == nullptr || open_->finish != nullptr) return violate("get without its set:");
  open_ = nullptr;
  std::copy(block_.begin(), block_.end(), report.begin());
  report.back() = 0;
  return true;
}

bool HidFunction::violate(std::string_view what) {
  chip_.violations().add({"HID: ", what, " report ", hex(report_, 2)});
  return false;
}

bool HidFunction::begin(Bytes payload) {
  const auto found =
      std::find_if(exchanges.begin(), exchanges.end(), [this, payload](const Exchange& exchange) {
        return exchange.report == report_ && exchange.code == payload[0];
      });
  if (found == exchanges.end()) return violate("unknown request in");
  if (found->since > chip_.firmware()) return false;
  // The firmware forgets what it was asked before.
  if (open_ != nullptr) violate("exchange not finished before");
  open_ = nullptr;
  block_.fill(0);
  if (!(this->*found->begin)(payload)) return false;
  open_ = &*found;
  return true;
}

bool HidFunction::finish(Bytes block) {
  const Exchange* const exchange = open_;
  if (exchange == nullptr || exchange->finish == nullptr) {
    return violate("exchange not finished before");
  }
  open_ = nullptr;
  if (exchange->report == oneShot && !std::equal(block.begin(), block.end(), block_.begin())) {
    return violate("data block does not repeat the request");
  }
  return (this->*exchange->finish)(block);
}

bool HidFunction::answerRegister(std::uint16_t address, std::uint8_t length) {
  if (length < 1 || length > mostRegisterBytes) return violate("wrong length of");
  chip_.readRegister(address, std::span(block_).first(length));
  return true;
}

bool HidFunction::writeRegister(std::uint16_t address, std::uint8_t length, Bytes valueAndPadding) {
  if (length < 1 || length > mostRegisterBytes) return violate("wrong length of");
  if (!allZero(valueAndPadding.subspan(length))) return violate("unused bytes not 0 in");
  chip_.writeRegister(address, valueAndPadding.first(length));
  return true;
}

bool HidFunction::readRegister8(Bytes header) {
  if (header[3] != 0) return violate("unused bytes not 0 in");
  return answerRegister(header[1], header[2]);
}

bool HidFunction::readRegister16(Bytes header) {
  return answerRegister(registerAddress(header.subspan(1)), header[3]);
}

bool HidFunction::readI2c(Bytes header) {
  const std::uint8_t slave = header[1], count = header[2];
  if (count < 1 || count > blockSize || header[3] != 1) {
    return violate("wrong length of");
  }
  chip_.readI2cLegacy(slave, std::span(block_).first(count));
  return true;
}

// A slave that does not answer shows as a count of 0.
bool HidFunction::readI2cOneShot(Bytes bytes) {
  const auto request = I2cRequest::parse(bytes.subspan(1), false);
  if (!request.wellFormed) return violate("wrong length of");
  const auto count = std::min<std::size_t>(request.count, mostAnswerBytes);
  if (chip_.readI2c(request.slave, request.subAddress, std::span(block_).subspan(1, count))) {
    block_[0] = static_cast<std::uint8_t>(count);
  }
  return true;
}

namespace {

BridgeCommandData commandIn(std::span<const std::uint8_t> request) {
  BridgeCommandData data;
  std::copy_n(request.begin() + 1, data.size(), data.begin());
  return data;
}

}  // namespace

bool HidFunction::readCommand(Bytes request) {
  if (!allZero(request.subspan(1 + bridgeCommandSize))) {
    return violate("unused bytes not 0 in");
  }
  const BridgeCommandData answer = chip_.commands().read(commandIn(request));
  std::copy(answer.begin(), answer.end(), block_.begin());
  return true;
}

bool HidFunction::awaitData(Bytes header) {
  return allZero(header.subspan(1)) || violate("unused bytes not 0 in");
}

bool HidFunction::awaitRepetition(Bytes request) {
  std::copy(request.begin(), request.end(), block_.begin());
  return true;
}

bool HidFunction::writeRegister8(Bytes block) {
  return writeRegister(block[0], block[1], block.subspan(2));
}

bool HidFunction::writeRegister16(Bytes block) {
  return writeRegister(registerAddress(block), block[2], block.subspan(3));
}

bool HidFunction::writeI2c(Bytes block) {
  const std::size_t total = block[1];
  const Bytes bytes = block.subspan(3);
  if (total > bytes.size() || block[2] > 1) return violate("wrong length of");
  if (!allZero(bytes.subspan(total))) return violate("unused bytes not 0 in");
  chip_.writeI2cLegacy(block[0], bytes.first(total));
  return true;
}

bool HidFunction::writeI2cOneShot(Bytes block) {
  const auto request = I2cRequest::parse(block.subspan(1), true);
  if (!request.wellFormed) return violate("wrong length of");
  chip_.writeI2c(request.slave, request.subAddress, request.data);
  return true;
}

bool HidFunction::writeCommand(Bytes block) {
  if (!allZero(block.subspan(1 + bridgeCommandSize))) {
    return violate("unused bytes not 0 in");
  }
  chip_.writeCommand(commandIn(block));
  return true;
}

}  // namespace qvx::simulator
