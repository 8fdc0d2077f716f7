// A virtual HID device: a bridge camera, or a device that only looks a little like one. Runs in a
// kernel-mode driver: no heap, no exceptions, nothing of the system's.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/hid_bridge/device_settings.h"
#include "simulator/model/bridge_chip_device.h"
#include "simulator/model/bridge_chip_hid.h"
#include "simulator/model/text.h"

namespace qvx::simulator {

class VirtualHidDevice {
 public:
  explicit VirtualHidDevice(const HidDeviceSettings& settings);

  std::uint16_t vendorId() const { return settings_.vendorId; }
  std::uint16_t productId() const { return settings_.productId; }
  std::span<const std::uint8_t> reportDescriptor() const;

  // Takes over what may be changed while clients run: zoom, button and fault.
  void follow(const HidDeviceSettings& settings);

  // Brings the camera up to date, before each transfer; how late the transfer has to be done, or a
  // refusal.
  struct Verdict {
    bool refused;
    std::uint32_t delay_ms;
  };
  Verdict prepare(std::uint64_t now_ms);

  // A feature report, its id in byte 0.
  bool setFeature(std::span<const std::uint8_t> report);
  bool getFeature(std::span<std::uint8_t> report);

  void describe(HidDeviceState& state);

 private:
  void obey();
  bool isBridge() const;
  bool wasTold(std::string_view line) const;
  void collectViolations();

  HidDeviceSettings settings_;
  BridgeDevice device_;
  HidFunction function_;
  std::uint32_t violationCount_ = 0;
  FixedText<sizeof HidDeviceState::violations - 1> violations_;  // a line of each kind
};

}  // namespace qvx::simulator
