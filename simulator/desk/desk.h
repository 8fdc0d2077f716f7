// The plugged-in cameras, shared by transports, page and log.
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

// An access of a client to a camera, for the log.
struct Access {
  std::uint64_t number, time_ms;  // number: from 1; time: since power-up
  std::string text;
  std::vector<std::string> violations;  // of the camera's rules
};

// The result of a transfer.
struct Reply {
  bool done = false;
  std::string bytes;
  std::string text = {};      // for the log
  std::size_t announced = 0;  // the announced length, if fewer bytes follow
};

// Thread-safe.
class PluggedCamera {
 public:
  using Transfer = std::function<Reply(CameraDevice&)>;

  PluggedCamera(const CameraDescription& description, std::string id);

  const std::string& id() const { return id_; }  // for URLs: "wifi-0998", "wifi-0998-2"
  const CameraDescription& description() const { return description_; }

  // Brings the camera up to date and calls the function with exclusive access to it.
  template <class Action>
  auto with(Action action) {
    const std::lock_guard lock(guard_);
    device_.advanceTo(now_ms());
    return action(device_);
  }

  // Executes one transfer of a client: counts it, applies the fault, and logs it. Transfers are
  // serialised.
  Reply carry(const Transfer& transfer);

  Fault fault() const;
  void setFault(const Fault& fault);

  // An unplugged camera refuses everything.
  bool isPluggedIn() const { return pluggedIn_; }

  // Whether connections to it fail: it is unplugged, or its fault refuses the next access.
  bool isDeaf() const;

  // The accesses after that number, as far as they are kept.
  std::vector<Access> accessesAfter(std::uint64_t number) const;

  // Ends all stalls, for good.
  void close() { closed_ = true; }

  // onAccess is called for each access, on its thread, one at a time; onHearing when isDeaf() may
  // have changed. To be set before other threads use the camera.
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

  std::mutex turn_;           // held during a transfer, stalls included
  mutable std::mutex guard_;  // guards everything below
  FaultCounter faults_;
  std::mt19937 dice_;
  std::uint64_t accessCount_ = 0;
  std::deque<Access> accesses_;
  CameraDevice device_;
};

class Desk {
 public:
  ~Desk() { close(); }

  // To be called before other threads use the desk.
  PluggedCamera& plugIn(const CameraDescription& description);

  const std::vector<std::unique_ptr<PluggedCamera>>& cameras() const { return cameras_; }
  PluggedCamera* find(std::string_view id) const;

  void close();

 private:
  std::vector<std::unique_ptr<PluggedCamera>> cameras_;
};

}  // namespace qvx::simulator
