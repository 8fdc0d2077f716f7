#include "simulator/platform/cameras.h"

#include <cstdio>
#include <utility>

namespace qvx::simulator {

// Follows the machine's clock, and powers up again when plugged in again.
CameraDevice& VirtualBridge::asItIsNow() {
  advanceTo(world().clock.now_ms());
  const unsigned last = std::exchange(connection_, world().connection());
  if (last != connection_) {
    extensionUnit.reset();
    hid.reset();
  }
  return *this;
}

std::string complaintsOf(Camera& camera) {
  std::string text;
  for (const std::string& violation : camera.violations) text += violation + "\n";
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
          {nullptr, nullptr, camera.port(), nullptr},
          &camera.camera.picture};
}

HidInterface bridgeHidInterface(VirtualBridge& camera, const std::string& path) {
  std::vector<std::uint8_t> ids = {HidFunction::commandHeader, HidFunction::dataBlock};
  if (camera.chip.firmware() == BridgeFirmware::oneShot) ids.push_back(HidFunction::oneShot);
  return {path, ids.size(), ids, camera.port()};
}

}  // namespace qvx::simulator
