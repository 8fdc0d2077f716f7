// What a virtual HID device's driver and the programs that plug it in tell each other, as values of
// the device's own registry key.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qvx::simulator {

inline constexpr wchar_t hidServiceName[] = L"qvx-hid-bridge";
inline constexpr wchar_t hidSettingsValue[] = L"VirtualCamera";
inline constexpr wchar_t hidStateValue[] = L"VirtualState";

// Written by the programs, read by the driver before each transfer.
struct HidDeviceSettings {
  std::uint16_t vendorId, productId;
  std::uint8_t family, firmware;  // as in BridgeSetup
  std::uint8_t reports;           // as in HidReports
  std::uint8_t faultKind;         // as in BridgeFault
  std::uint32_t firstFault, stall_ms;
  std::uint32_t buttonPeriod_ms;
  std::uint32_t sweep_ms;
  double zoomFrom, zoomTo;  // 0: the zoom ring stays where it is
};
static_assert(sizeof(HidDeviceSettings) == 40);

// Written by the driver after a transfer that changed it.
struct HidDeviceState {
  struct BridgeRegister {
    std::uint32_t address, value;
  };

  std::uint32_t violationCount;
  std::uint8_t controller[256];
  BridgeRegister bridge[4];
  char violations[600];  // each kind once, a line each, as many as fit; terminated
};
static_assert(sizeof(HidDeviceState) == 892);

}  // namespace qvx::simulator
