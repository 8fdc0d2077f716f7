// Simulated cameras, as the simulated machine can be furnished with them. They follow the machine's
// clock and must stay until it is reset.
#pragma once

#include "simulator/model/camera_device.h"
#include "simulator/platform/world.h"

namespace qvx::simulator {

// A camera with all interfaces that it may have.
class VirtualBridge : public CameraDevice, public CameraPort {
 public:
  explicit VirtualBridge(std::uint16_t productId, const BridgeSetup& setup = {},
                         Unit unit = Unit::bridge)
      : CameraDevice({.productId = productId, .unit = unit, .setup = setup}) {}

  bool supports(const PropertySetId& set) override { return extensionUnit.supports(set); }
  bool setProperty(const PropertySetId& set, std::uint32_t selector, Bytes data) override {
    return asItIsNow().extensionUnit.set(set, selector, data);
  }
  bool getProperty(const PropertySetId& set, std::uint32_t selector, Room data) override {
    return extensionUnit.get(set, selector, data);
  }
  bool setFeature(Bytes report) override { return asItIsNow().hid.setFeature(report); }
  bool getFeature(Room report) override { return hid.getFeature(report); }
  std::optional<std::size_t> transfer(const UsbSetup& setup, Room buffer) override {
    return asItIsNow().usb3.transfer(setup, buffer);
  }

  // For the machine, which does not own it.
  std::shared_ptr<CameraPort> port() { return {std::shared_ptr<void>(), this}; }

 private:
  CameraDevice& asItIsNow();

  unsigned connection_ = world().connection();
};

// What clients did wrong, a line each; nothing when all went by the rules.
std::string complaintsOf(Camera& camera);

// Answers at the camera's address as its web server does; other addresses are out of reach.
HttpServer wifiFront(Camera& camera);

// The path of a video input as the system writes it: "@device:pnp:\\?\usb#vid_3c7e&pid_0970...".
std::wstring videoInputPath(int productId, const std::string& instance);

// A video input with the bridge's extension unit among other nodes.
VideoInput bridgeInput(VirtualBridge& camera, const std::string& instance = "1");

// A HID interface as the bridge firmware describes it.
HidInterface bridgeHidInterface(VirtualBridge& camera, const std::string& path = "hid#1");

}  // namespace qvx::simulator
