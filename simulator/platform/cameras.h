// Simulated cameras for the simulated machine. They follow its clock and must live until it is
// reset.
#pragma once

#include "simulator/model/camera_device.h"
#include "simulator/platform/world.h"

namespace qvx::simulator {

// A camera with all interfaces.
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

  // Not owned by the machine.
  std::shared_ptr<CameraPort> port() { return {std::shared_ptr<void>(), this}; }

 private:
  CameraDevice& asItIsNow();

  unsigned connection_ = world().connection();
};

// The violations of clients, one line each; empty if there were none.
std::string complaintsOf(Camera& camera);

// Answers at the camera's address like its web server; other addresses are unreachable.
HttpServer wifiFront(Camera& camera);

// The display name of a video input as on Windows: "@device:pnp:\\?\usb#vid_3c7e&pid_0970...".
std::wstring videoInputPath(int productId, const std::string& instance);

// A video input whose topology has the bridge's extension unit among other nodes.
VideoInput bridgeInput(VirtualBridge& camera, const std::string& instance = "1");

// The HID interface of a bridge.
HidInterface bridgeHidInterface(VirtualBridge& camera, const std::string& path = "hid#1");

}  // namespace qvx::simulator
