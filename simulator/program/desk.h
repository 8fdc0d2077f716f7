// The cameras that are plugged in, for everything that reaches them: transports, page, log.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/model/camera_device.h"

namespace qvx::simulator {

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
  std::string text = {};      // for the log
  std::size_t announced = 0;  // bytes, when fewer come
};

// Any thread may call.
class PluggedCamera {
 public:
  using Transfer = std::function<Reply(CameraDevice&)>;

  PluggedCamera(const CameraDescription& description, std::string id);

  const std::string& id() const { return id_; }  // for addresses: "wifi-0998", "wifi-0998-2"
  const CameraDescription& description() const { return description_; }

  // Runs a function on the camera as it is at this moment, with nobody else at it.
  template <class Action>
  auto with(Action action) {
    const std::lock_guard lock(guard_);
    device_.advanceTo(now_ms());
    return action(device_);
  }

  // One transfer of a client: it is counted, suffers the fault, and is noted. Transfers come one
  // after another.
  Reply carry(const Transfer& transfer);

  Fault fault() const;
  void setFault(const Fault& fault);

  // A camera that is gone refuses everything.
  bool isPluggedIn() const { return pluggedIn_; }

  // Whether no connection to it comes about: it is gone, or its fault refuses the next access.
  bool isDeaf() const;

  // Those after that number, as far as they are kept.
  std::vector<Access> accessesAfter(std::uint64_t number) const;

  // Ends what waits, for good.
  void close() { closed_ = true; }

  // Called with each access, on its thread and one at a time; and when the camera may have become
  // deaf or have recovered. To be set before any thread looks.
  std::function<void(const Access&)> onAccess = [](const Access&) {};
  std::function<void()> onHearing = [] {};

 private:
  std::uint64_t now_ms() const;
  Reply suffer(const Fault& fault, const Transfer& transfer);
  void spoil(const Fault& fault, Reply& reply);

  const CameraDescription description_;
  const std::string id_;
  const std::chrono::steady_clock::time_point poweredUp_ = std::chrono::steady_clock::now();
  std::atomic<bool> closed_ = false, pluggedIn_ = true;

  std::mutex turn_;           // of one transfer, stalls included
  mutable std::mutex guard_;  // guards all below
  FaultCounter faults_;
  std::mt19937 dice_;
  std::uint64_t accessCount_ = 0;
  std::deque<Access> accesses_;
  CameraDevice device_;
};

class Desk {
 public:
  ~Desk() { close(); }

  // All of them come before any thread looks.
  PluggedCamera& plugIn(const CameraDescription& description);

  const std::vector<std::unique_ptr<PluggedCamera>>& cameras() const { return cameras_; }
  PluggedCamera* find(std::string_view id) const;

  void close();

 private:
  std::vector<std::unique_ptr<PluggedCamera>> cameras_;
};

}  // namespace qvx::simulator
