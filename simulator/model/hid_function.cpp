#include "simulator/model/hid_function.h"

#include <utility>

namespace qvx::simulator {

namespace {

struct FeatureReport {
  std::uint8_t id, bytes;
};

// A vendor-defined collection of byte-wide feature reports; if there are none, of an input report.
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

bool HidFunction::setFeature(Bytes report) {
  if (report.empty() || reports_ != HidReports::bridge) return false;
  report_ = report[0];
  if (report_ == oneShot && chip_.firmware() < BridgeFirmware::oneShot) return false;
  const bool header = report_ == commandHeader;
  if (!header && report_ != dataBlock && report_ != oneShot) return violate("unknown request in");
  const Bytes payload = report.subspan(1);
  if (payload.size() != (header ? headerSize : blockSize)) return violate("wrong length of");
  return report_ == dataBlock ? finish(payload) : begin(payload);
}

bool HidFunction::getFeature(Room report) {
  if (report.empty() || reports_ != HidReports::bridge) return false;
  report_ = report[0];
  if (report_ != dataBlock) return violate("unknown request in");
  if (report.size() != blockSize + 1) return violate("wrong length of");
  if (open_ == nullptr || !open_->reads) return violate("get without its set:");
  open_ = nullptr;
  std::copy(block_.begin(), block_.end(), report.begin());
  report.back() = 0;
  return true;
}

bool HidFunction::violate(std::string_view what) {
  chip_.violations().push_back("HID: " + std::string(what) + " report " + hex(report_, 2));
  return false;
}

// A read is executed at once; the data of a write follow in a data block, which for a one-shot
// request repeats the request.
bool HidFunction::begin(Bytes payload) {
  const BridgeRequest* const request = findRequest([&](const BridgeRequest& known) {
    return known.reportCode == payload[0] && known.isOneShot() == (report_ == oneShot);
  });
  if (request == nullptr) return violate("unknown request in");
  if (request->since > chip_.firmware()) return false;
  // The firmware drops the previous request.
  if (open_ != nullptr) violate("exchange not finished before");
  open_ = nullptr;
  const Bytes body = payload.subspan(1);
  if (request->reads) {
    BridgeOutcome outcome =
        request->run(chip_, body, request->isOneShot() ? blockSize - 1 : blockSize);
    if (!outcome.complaint.empty()) return violate(outcome.complaint);
    block_ = std::move(outcome.answer);
    block_.resize(blockSize);
  } else if (request->isOneShot()) {
    block_.assign(payload.begin(), payload.end());
  } else if (!allZero(body)) {
    return violate("unused bytes not 0 in");
  }
  open_ = request;
  return true;
}

bool HidFunction::finish(Bytes block) {
  const BridgeRequest* const request = open_;
  if (request == nullptr || request->reads) return violate("exchange not finished before");
  open_ = nullptr;
  if (request->isOneShot() && !std::equal(block.begin(), block.end(), block_.begin())) {
    return violate("data block does not repeat the request");
  }
  const Bytes body = request->isOneShot() ? block.subspan(1) : block;
  const BridgeOutcome outcome = request->run(chip_, body, 0);
  return outcome.complaint.empty() || violate(outcome.complaint);
}

}  // namespace qvx::simulator
