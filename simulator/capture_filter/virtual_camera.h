// A virtual camera in this process: what all filter objects on one registered camera share.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>

#include "simulator/capture_filter/camera_registry.h"
#include "simulator/capture_filter/picture_controls.h"
#include "simulator/model/bridge_chip_extension_unit.h"
#include "simulator/model/bridge_chip_spec.h"

namespace qvx::simulator {

class VirtualCamera {
 public:
  // The camera of a registered instance, the same for all callers. Null when there is none.
  static std::shared_ptr<VirtualCamera> at(const std::wstring& instance);

  VirtualCamera(const RegisteredCamera& registered, const BridgeSpec& spec);

  BridgeSpec::Unit unit() const { return unit_; }

  // One property request to the extension unit, on any thread. False when the camera refuses it or
  // is no longer registered.
  bool set(const PropertySetId& set, std::uint32_t selector, std::span<const std::uint8_t> data);
  bool get(const PropertySetId& set, std::uint32_t selector, std::span<std::uint8_t> data);

  PictureControlValues& pictureValues() { return pictureValues_; }

  // Whatever is to be done to the camera beneath its clients.
  template <class Action>
  auto withDevice(Action action) {
    const std::lock_guard<std::mutex> lock(guard_);
    return action(device_);
  }

 private:
  template <class Transfer>
  bool run(Transfer transfer);
  bool follow(const RegisteredCamera& registered);
  void obey(const BridgeSpec& spec);

  std::mutex guard_;
  const std::wstring instance_;
  const std::uint64_t registration_;
  const BridgeSpec::Unit unit_;
  const std::uint64_t poweredUp_ms_;
  std::string text_;
  BridgeDevice device_;
  ExtensionUnit extensionUnit_;
  PictureControlValues pictureValues_;
};

}  // namespace qvx::simulator
