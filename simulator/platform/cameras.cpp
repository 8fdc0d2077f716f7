#include "simulator/platform/cameras.h"

#include <cstdio>

#include "simulator/model/usb3_function.h"
#include "simulator/model/wifi_server.h"

namespace qvx::simulator {

namespace {

class Usb3Front final : public ControlEndpoint {
 public:
  explicit Usb3Front(Camera& camera) : camera_(camera), function_(camera) {}

  std::optional<std::size_t> transfer(const UsbSetup& setup,
                                      std::span<std::uint8_t> buffer) override {
    camera_.advanceTo(world().clock.now_ms());
    return function_.transfer(setup, buffer);
  }

 private:
  Camera& camera_;
  Usb3Function function_;
};

class ExtensionUnitFront final : public PropertyNode {
 public:
  explicit ExtensionUnitFront(VirtualBridge& bridge) : bridge_(bridge) {}

  bool supports(const PropertySetId& set) override { return bridge_.extensionUnit.supports(set); }
  bool set(const PropertySetId& set, std::uint32_t selector,
           std::span<const std::uint8_t> bytes) override {
    bridge_.follow();
    return bridge_.extensionUnit.set(set, selector, bytes);
  }
  bool get(const PropertySetId& set, std::uint32_t selector,
           std::span<std::uint8_t> bytes) override {
    return bridge_.extensionUnit.get(set, selector, bytes);
  }

 private:
  VirtualBridge& bridge_;
};

class HidFront final : public FeatureDevice {
 public:
  explicit HidFront(VirtualBridge& bridge) : bridge_(bridge) {}

  bool set(std::span<const std::uint8_t> report) override {
    bridge_.follow();
    return bridge_.hid.setFeature(report);
  }
  bool get(std::span<std::uint8_t> report) override { return bridge_.hid.getFeature(report); }

 private:
  VirtualBridge& bridge_;
};

}  // namespace

std::string complaintsOf(Camera& camera) {
  std::string text;
  for (std::size_t i = 0; i < camera.violations().count(); ++i) {
    text += std::string(camera.violations()[i]) + "\n";
  }
  return text;
}

HttpServer wifiFront(Camera& camera) {
  return [&camera](const std::string& url) -> HttpAnswer {
    const std::string base = "http://127.0.0.1:8080";
    if (!url.starts_with(base + "/")) return {.reachable = false, .chunks = {}};
    camera.advanceTo(world().clock.now_ms());
    return {true, {WifiServer(camera).get(url.substr(base.size())).body}};
  };
}

std::shared_ptr<ControlEndpoint> usb3Front(Camera& camera) {
  return std::make_shared<Usb3Front>(camera);
}

VirtualBridge::VirtualBridge(std::uint16_t productId, const BridgeSetup& setup,
                             ExtensionUnit::Variant variant)
    : BridgeDevice(productId, setup), extensionUnit(chip, variant), hid(chip) {}

void VirtualBridge::follow() {
  advanceTo(world().clock.now_ms());
  if (connection_ == world().connection()) return;
  connection_ = world().connection();
  extensionUnit.reset();
  hid.reset();
}

std::shared_ptr<PropertyNode> extensionUnitFront(VirtualBridge& camera) {
  return std::make_shared<ExtensionUnitFront>(camera);
}

std::shared_ptr<FeatureDevice> hidFront(VirtualBridge& camera) {
  return std::make_shared<HidFront>(camera);
}

std::wstring videoInputPath(int productId, const std::string& instance) {
  char path[160];
  std::snprintf(path, sizeof path,
                "@device:pnp:\\\\?\\usb#vid_3c7e&pid_%04x&mi_00#%s#"
                "{65e8773d-8f56-11d0-a3b9-00a0c9223196}\\global",
                productId, instance.c_str());
  return {path, path + std::string(path).size()};
}

VideoInput bridgeInput(VirtualBridge& camera, const std::string& instance) {
  return {videoInputPath(camera.camera.productId(), instance),
          L"Microscope " + std::wstring(instance.begin(), instance.end()),
          {nullptr, nullptr, extensionUnitFront(camera), nullptr},
          &camera.picture};
}

HidInterface bridgeHidInterface(VirtualBridge& camera, const std::string& path) {
  const bool oneShot = camera.chip.firmware() == BridgeFirmware::oneShot;
  HidInterface interface {
    path, 2, {HidFunction::commandHeader, HidFunction::dataBlock}, hidFront(camera)
  };
  if (oneShot) {
    interface.featureItems = 3;
    interface.featureReportIds.push_back(HidFunction::oneShot);
  }
  return interface;
}

}  // namespace qvx::simulator
