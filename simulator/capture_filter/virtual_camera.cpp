#include "simulator/capture_filter/virtual_camera.h"

#include <map>

namespace qvx::simulator {

namespace {

ExtensionUnit::Variant variantOf(BridgeSpec::Unit unit) {
  return unit == BridgeSpec::Unit::variant1 ? ExtensionUnit::Variant::variant1
                                            : ExtensionUnit::Variant::usual;
}

std::mutex camerasGuard;
std::map<std::wstring, std::shared_ptr<VirtualCamera>> cameras;

}  // namespace

std::shared_ptr<VirtualCamera> VirtualCamera::at(const std::wstring& instance) {
  const auto registered = registeredCamera(instance);
  if (!registered) return nullptr;
  std::string problem;
  const auto spec = bridgeSpecFrom(registered->text, problem);
  if (!spec) return nullptr;
  const std::lock_guard<std::mutex> lock(camerasGuard);
  std::shared_ptr<VirtualCamera>& camera = cameras[instance];
  if (camera == nullptr || camera->registration_ != registered->registration) {
    camera = std::make_shared<VirtualCamera>(*registered, *spec);
  }
  return camera;
}

VirtualCamera::VirtualCamera(const RegisteredCamera& registered, const BridgeSpec& spec)
    : instance_(registered.instance),
      registration_(registered.registration),
      unit_(spec.unit),
      poweredUp_ms_(GetTickCount64()),
      text_(registered.text),
      device_(spec.productId, spec.setup),
      extensionUnit_(device_.chip, variantOf(spec.unit)) {
  obey(spec);
}

bool VirtualCamera::set(const PropertySetId& set, std::uint32_t selector,
                        std::span<const std::uint8_t> data) {
  return run([&] { return extensionUnit_.set(set, selector, data); });
}

bool VirtualCamera::get(const PropertySetId& set, std::uint32_t selector,
                        std::span<std::uint8_t> data) {
  return run([&] { return extensionUnit_.get(set, selector, data); });
}

template <class Transfer>
bool VirtualCamera::run(Transfer transfer) {
  const auto registered = registeredCamera(instance_);
  if (!registered) return false;
  const std::lock_guard<std::mutex> lock(guard_);
  if (!follow(*registered)) return false;
  switch (device_.nextTransfer()) {
    case BridgeFault::refuse:
      return false;
    case BridgeFault::stall:
      Sleep(device_.stall_ms());
      break;
    case BridgeFault::none:
      break;
  }
  return transfer();
}

// Whether the camera is still plugged in; if so, it is brought up to date.
bool VirtualCamera::follow(const RegisteredCamera& registered) {
  if (registered.registration != registration_) return false;
  device_.advanceTo(GetTickCount64() - poweredUp_ms_);
  if (registered.text == text_) return true;
  text_ = registered.text;
  std::string problem;
  const auto spec = bridgeSpecFrom(text_, problem);
  if (spec) obey(*spec);
  return true;
}

void VirtualCamera::obey(const BridgeSpec& spec) {
  if (spec.zoom) device_.camera.setZoom(*spec.zoom);
  device_.setButtonPeriod(spec.buttonPeriod_ms);
  device_.setFault(spec.fault);
}

}  // namespace qvx::simulator
