#include "simulator/hid_bridge/virtual_device.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

namespace qvx::simulator {

namespace {

// Devices that are no bridges. Each item: usage page, usage, collection, values of a byte each;
// then feature reports.
constexpr std::uint8_t withExtraReport[] = {
    0x06, 0x00, 0xFF, 0x09, 0x01, 0xA1, 0x01, 0x15, 0x00, 0x26, 0xFF,
    0x00, 0x75, 0x08, 0x85, 0x87, 0x09, 0x02, 0x95, 0x04, 0xB1, 0x02,  // 0x87: 4 bytes
    0x85, 0x93, 0x09, 0x03, 0x95, 0x28, 0xB1, 0x02,                    // 0x93: 40
    0x85, 0x97, 0x09, 0x04, 0x95, 0x28, 0xB1, 0x02,                    // 0x97: 40
    0x85, 0x98, 0x09, 0x05, 0x95, 0x08, 0xB1, 0x02,                    // 0x98: 8
    0xC0,
};
constexpr std::uint8_t withoutDataBlock[] = {
    0x06, 0x00, 0xFF, 0x09, 0x01, 0xA1, 0x01, 0x15, 0x00, 0x26, 0xFF,
    0x00, 0x75, 0x08, 0x85, 0x87, 0x09, 0x02, 0x95, 0x04, 0xB1, 0x02,  // 0x87: 4 bytes
    0x85, 0x97, 0x09, 0x04, 0x95, 0x28, 0xB1, 0x02,                    // 0x97: 40
    0xC0,
};
constexpr std::uint8_t withInputOnly[] = {
    0x06, 0x00, 0xFF, 0x09, 0x01, 0xA1, 0x01, 0x15, 0x00, 0x26,
    0xFF, 0x00, 0x75, 0x08, 0x09, 0x02, 0x95, 0x04, 0x81, 0x02,  // input: 4 bytes
    0xC0,
};

constexpr std::uint32_t reportedRegisters[] = {0x0005, 0x0006, 0x0080, 0x1700};

BridgeSetup setupOf(const HidDeviceSettings& settings) {
  return {settings.family, static_cast<BridgeFirmware>(settings.firmware)};
}

}  // namespace

VirtualHidDevice::VirtualHidDevice(const HidDeviceSettings& settings)
    : settings_(settings), device_(settings.productId, setupOf(settings)), function_(device_.chip) {
  obey();
}

std::span<const std::uint8_t> VirtualHidDevice::reportDescriptor() const {
  switch (static_cast<HidReports>(settings_.reports)) {
    case HidReports::extra:
      return withExtraReport;
    case HidReports::withoutBlock:
      return withoutDataBlock;
    case HidReports::none:
      return withInputOnly;
    default:
      return function_.reportDescriptor();
  }
}

void VirtualHidDevice::follow(const HidDeviceSettings& settings) {
  if (std::memcmp(&settings, &settings_, sizeof settings) == 0) return;
  settings_ = settings;
  obey();
}

VirtualHidDevice::Verdict VirtualHidDevice::prepare(std::uint64_t now_ms) {
  device_.advanceTo(now_ms);
  const BridgeFault::Kind fault = device_.nextTransfer();
  return {fault == BridgeFault::refuse, fault == BridgeFault::stall ? device_.stall_ms() : 0};
}

bool VirtualHidDevice::setFeature(std::span<const std::uint8_t> report) {
  return isBridge() && function_.setFeature(report);
}

bool VirtualHidDevice::getFeature(std::span<std::uint8_t> report) {
  return isBridge() && function_.getFeature(report);
}

void VirtualHidDevice::describe(HidDeviceState& state) {
  collectViolations();
  state.violationCount = violationCount_;
  for (unsigned i = 0; i < std::size(state.controller); ++i) {
    state.controller[i] = device_.camera.controller().at(static_cast<std::uint8_t>(i));
  }
  for (unsigned i = 0; i < std::size(reportedRegisters); ++i) {
    const std::uint32_t address = reportedRegisters[i];
    state.bridge[i] = {address, device_.chip.peek(static_cast<std::uint16_t>(address))};
  }
  std::fill(std::begin(state.violations), std::end(state.violations), '\0');
  const std::string_view lines = violations_.view();
  std::copy(lines.begin(), lines.end(), std::begin(state.violations));
}

bool VirtualHidDevice::wasTold(std::string_view line) const {
  const std::string_view lines = violations_.view();
  return std::search(lines.begin(), lines.end(), line.begin(), line.end()) != lines.end();
}

// However often a client repeats itself, what else it does is seen, too.
void VirtualHidDevice::collectViolations() {
  Violations& violations = device_.camera.violations();
  violationCount_ += static_cast<std::uint32_t>(violations.count());
  for (std::size_t i = 0; i < violations.count(); ++i) {
    if (wasTold(violations[i])) continue;
    violations_.append(violations[i]);
    violations_.append("\n");
  }
  violations.clear();
}

void VirtualHidDevice::obey() {
  if (settings_.zoomFrom > 0) {
    device_.camera.setZoom({settings_.zoomFrom, settings_.zoomTo, settings_.sweep_ms});
  }
  device_.setButtonPeriod(settings_.buttonPeriod_ms);
  device_.setFault({static_cast<BridgeFault::Kind>(settings_.faultKind), settings_.firstFault,
                    settings_.stall_ms});
}

bool VirtualHidDevice::isBridge() const {
  return static_cast<HidReports>(settings_.reports) == HidReports::bridge;
}

}  // namespace qvx::simulator
