// A complete camera with the decoders of all transports.
#pragma once

#include "simulator/model/camera_description.h"
#include "simulator/model/extension_unit.h"
#include "simulator/model/usb3_function.h"
#include "simulator/model/wifi_server.h"

namespace qvx::simulator {

class CameraDevice {
 public:
  explicit CameraDevice(const CameraDescription& description, Still still = {})
      : camera(description.productId),
        chip(description.setup, camera),
        extensionUnit(chip, description.unit),
        hid(chip, description.reports),
        usb3(camera),
        wifi(camera, std::move(still)),
        buttonPeriod_ms_(description.buttonPeriod_ms) {
    if (description.zoom) camera.setZoom(*description.zoom);
  }

  // Advances the clock of camera and button. Time counts from power-up and never decreases.
  void advanceTo(std::uint64_t now_ms) {
    // A client that polls four times a second cannot miss it.
    constexpr std::uint32_t longestPress_ms = 600;
    camera.advanceTo(now_ms);
    if (buttonPeriod_ms_ == 0) return;
    const std::uint64_t presses = now_ms / buttonPeriod_ms_;
    if (presses != presses_) touchButton(true);
    presses_ = presses;
    const std::uint32_t press_ms = std::min(longestPress_ms, buttonPeriod_ms_ / 2);
    if (now_ms % buttonPeriod_ms_ >= press_ms) touchButton(false);
  }

  void touchButton(bool touched) {
    camera.gpio.touch(touched);
    chip.touch(touched);
  }

  Camera camera;
  BridgeChip chip;
  ExtensionUnit extensionUnit;
  HidFunction hid;
  Usb3Function usb3;
  WifiServer wifi;

 private:
  std::uint32_t buttonPeriod_ms_;  // the button is pressed automatically once per period; 0: never
  std::uint64_t presses_ = 0;
};

}  // namespace qvx::simulator
