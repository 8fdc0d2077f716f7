// One camera on one path to it, ready for calls: what every torture starts from.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "simulator/platform/cameras.h"
#include "tests/support/every_export.h"

namespace qvx::tests {

struct Path {
  enum Kind { wifi, usb3, unit, hid } kind;
  std::uint16_t pid;
  simulator::BridgeSetup bridge{};

  bool overBridge() const { return kind == unit || kind == hid; }
  int index() const { return kind == wifi ? 90 : 0; }  // of the device, in calls
  std::string name() const;
};

std::span<const Path> everyPath();

// A new machine with the library as just loaded and a camera plugged in, for as long as it lives.
// What the library prints is discarded.
class Rig {
 public:
  explicit Rig(const Path& path);
  ~Rig();

  simulator::World& machine() { return simulator::world(); }

  // Chooses the camera, calls Init, and starts polling the button.
  void choose();
  std::string init();

  // Takes the camera away and plugs in another one, elsewhere.
  void change(const Path& path);

  // One call, with its busiest arguments.
  std::string call(const ExportedCall& exported);

  void setZoom(const simulator::ZoomMotion& motion);
  void pressButton(bool pressed);
  static inline int pressesTold = 0;  // to the application, by all rigs

 private:
  void plug();
  const Path* path_;
  std::unique_ptr<simulator::VirtualBridge> camera_;
};

// The exports, and a tick of the timers.
std::span<const ExportedCall> everyCall();

}  // namespace qvx::tests
