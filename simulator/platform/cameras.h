// Simulated cameras, as the simulated machine can be furnished with them. They follow the machine's
// clock and must stay until it is reset.
#pragma once

#include <memory>
#include <string>

#include "simulator/model/bridge_chip_device.h"
#include "simulator/model/bridge_chip_extension_unit.h"
#include "simulator/model/bridge_chip_hid.h"
#include "simulator/platform/world.h"

namespace qvx::simulator {

// What clients did wrong, a line each; nothing when all went by the rules.
std::string complaintsOf(Camera& camera);

// Answers at the camera's address as its web server does; other addresses are out of reach.
HttpServer wifiFront(Camera& camera);

std::shared_ptr<ControlEndpoint> usb3Front(Camera& camera);

// A camera behind a bridge chip, with both interfaces that its firmware may offer.
class VirtualBridge : public BridgeDevice {
 public:
  explicit VirtualBridge(std::uint16_t productId, const BridgeSetup& setup = {},
                         ExtensionUnit::Variant variant = ExtensionUnit::Variant::usual);

  // At every transfer: follows the machine's clock, and starts anew after it was plugged in again.
  void follow();

  ExtensionUnit extensionUnit;
  HidFunction hid;
  PictureControls picture;

 private:
  unsigned connection_ = world().connection();
};

std::shared_ptr<PropertyNode> extensionUnitFront(VirtualBridge& camera);
std::shared_ptr<FeatureDevice> hidFront(VirtualBridge& camera);

// The path of a video input as the system writes it: "@device:pnp:\\?\usb#vid_3c7e&pid_0970...".
std::wstring videoInputPath(int productId, const std::string& instance);

// A video input with the bridge's extension unit among other nodes.
VideoInput bridgeInput(VirtualBridge& camera, const std::string& instance = "1");

// A HID interface as the bridge firmware describes it.
HidInterface bridgeHidInterface(VirtualBridge& camera, const std::string& path = "hid#1");

}  // namespace qvx::simulator
