// The cameras that are plugged in, for everything that reaches them: transports, page, log.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/model/bridge_chip_device.h"
#include "simulator/model/bridge_chip_extension_unit.h"
#include "simulator/model/bridge_chip_hid.h"
#include "simulator/model/camera_spec.h"
#include "simulator/model/usb3_function.h"
#include "simulator/model/wifi_server.h"
#include "simulator/program/live_picture.h"

namespace qvx::simulator {

// A camera with every decoder that a transport may need.
struct CameraDevice : BridgeDevice {
  CameraDevice(const CameraSpec& spec, Still still)
      : BridgeDevice(spec.productId, spec.setup),
        extensionUnit(chip, spec.unit == Unit::variant1 ? ExtensionUnit::Variant::variant1
                                                        : ExtensionUnit::Variant::usual),
        hid(chip, spec.reports),
        usb3(camera),
        wifi(camera, std::move(still)) {}

  ExtensionUnit extensionUnit;
  HidFunction hid;
  Usb3Function usb3;
  WifiServer wifi;
};

// What a client did to a camera, as a person reads it.
struct Access {
  std::uint64_t number, time_ms;  // from 1; since the camera was plugged in
  std::string text;
  std::vector<std::string> violations;  // of the camera's rules
};

// What comes back from a transfer.
struct Reply {
  bool done = false;
  std::string bytes;
  std::size_t announced = 0;  // bytes, when fewer come
  std::string text;           // for the log
  int status = 0;             // over HTTP, with the type of the content
  std::string contentType;
};

// Any thread may call.
class PluggedCamera {
 public:
  PluggedCamera(const CameraSpec& spec, std::string id, std::function<void()> onChange);
  PluggedCamera(const PluggedCamera&) = delete;
  PluggedCamera& operator=(const PluggedCamera&) = delete;

  const std::string& id() const { return id_; }  // for addresses: "wifi-0998", "wifi-0998-2"
  const CameraSpec& spec() const { return spec_; }

  // Runs a function on the camera as it is at this moment, with nobody else at it.
  template <class Action>
  auto with(Action action) {
    const std::lock_guard lock(guard_);
    device_.advanceTo(now_ms());
    return action(device_);
  }

  // One transfer of a client: it is counted, suffers the fault, and is noted. Transfers come one
  // after another.
  Reply carry(const std::function<Reply(CameraDevice&)>& transfer);

  void touchButton(bool touched);
  void setZoom(const ZoomMotion& motion);
  Fault fault() const;
  void setFault(const Fault& fault);

  // A camera that is gone refuses everything.
  bool isPluggedIn() const;
  void unplug();

  // Whether no connection to it comes about: it is gone, or its fault refuses the next access.
  bool isDeaf() const;

  // Those after that number, as far as they are kept.
  std::vector<Access> accessesAfter(std::uint64_t number) const;

  // Ends what waits, for good.
  void close();

  // Called with each access, on its thread and one at a time; and when the camera may have become
  // deaf or have recovered. To be set before any thread looks.
  std::function<void(const Access&)> onAccess;
  std::function<void()> onHearing = [] {};

  LivePicture live;

 private:
  std::uint64_t now_ms() const;
  Fault begin();
  Reply perform(const Fault& fault, const std::function<Reply(CameraDevice&)>& transfer);
  void spoil(const Fault& fault, Reply& reply);

  const CameraSpec spec_;
  const std::string id_;
  const std::function<void()> onChange_;
  const std::chrono::steady_clock::time_point poweredUp_ = std::chrono::steady_clock::now();

  std::mutex turn_;           // of one transfer, stalls included
  mutable std::mutex guard_;  // guards all below
  std::condition_variable closing_;
  bool closed_ = false, pluggedIn_ = true;
  FaultCounter faults_;
  std::mt19937 dice_;
  std::uint64_t accessCount_ = 0;
  std::deque<Access> accesses_;
  CameraDevice device_;
};

class Desk {
 public:
  ~Desk();

  // All of them come before any thread looks.
  PluggedCamera& plugIn(const CameraSpec& spec);

  const std::vector<std::unique_ptr<PluggedCamera>>& cameras() const { return cameras_; }
  PluggedCamera* find(std::string_view id) const;

  // Waits until something has changed on any camera since that count, at most so long; returns the
  // count of then. An access is a change, too; what moves by itself is none.
  std::uint64_t awaitChange(std::uint64_t seen, std::chrono::milliseconds limit);

  void close();

 private:
  void noteChange();

  std::mutex guard_;
  std::condition_variable changed_;
  std::uint64_t changes_ = 0;
  bool closed_ = false;
  std::vector<std::unique_ptr<PluggedCamera>> cameras_;
};

}  // namespace qvx::simulator
