#include "tests/torture/rig.h"

#include <cstdio>
#include <utility>
#include <vector>

#include "tests/support/reset_library.h"

namespace qvx::tests {

namespace {

using simulator::BridgeFamily;
using simulator::BridgeFirmware;

constexpr Path paths[] = {
    {Path::wifi, 0x998}, {Path::wifi, 0x9C4},
    {Path::usb3, 0x9B0}, {Path::unit, 0x998},
    {Path::unit, 0x9E2}, {Path::unit, 0x9D0, {BridgeFamily::generation0, BridgeFirmware::narrow}},
    {Path::hid, 0x9E2},  {Path::hid, 0x998, {BridgeFamily::generation2, BridgeFirmware::wide}},
};

// Standard output goes nowhere for as long as it lives.
class Silence {
 public:
  ~Silence() { stdout = shown_; }

 private:
  static inline std::FILE* const nowhere_ = std::fopen("/dev/null", "w");
  std::FILE* const shown_ = std::exchange(stdout, nowhere_);
};

constexpr std::uint64_t tick_ms = 250;

std::string tick(const Arguments& /*arguments*/) {
  simulator::world().pumpMessages(tick_ms);
  return "";
}

}  // namespace

std::string Path::name() const {
  constexpr const char* kinds[] = {"Wifi", "Usb3", "Unit", "Hid"};
  char text[16];
  std::snprintf(text, sizeof text, "%s%03X", kinds[kind], unsigned{pid});
  return text;
}

std::span<const Path> everyPath() {
  return paths;
}

std::span<const ExportedCall> everyCall() {
  static const auto calls = [] {
    std::vector<ExportedCall> all(everyExport().begin(), everyExport().end());
    all.push_back({"Tick", tick});
    return all;
  }();
  return calls;
}

Rig::Rig(const Path& path) : path_(&path) {
  plug();
  machine().keepsJournal = false;
  machine().workersInline = true;
}

Rig::~Rig() {
  resetLibrary();
  simulator::resetWorld();
}

void Rig::change(const Path& path) {
  path_ = &path;
  machine().unplug();
  machine().wifi = nullptr;
  machine().usbDevices.clear();
  machine().videoInputs.clear();
  machine().hidInterfaces->clear();
  camera_.reset();
  plug();
  machine().plugIn();
}

void Rig::plug() {
  camera_ = std::make_unique<simulator::VirtualBridge>(path_->pid, path_->bridge);
  if (path_->overBridge()) {
    simulator::VideoInput input = bridgeInput(*camera_);
    if (path_->kind == Path::hid) {
      input.nodes.clear();
      machine().hidInterfaces->push_back(bridgeHidInterface(*camera_));
    }
    machine().videoInputs = {input};
    return;
  }
  if (path_->kind == Path::wifi) {
    machine().wifi = wifiFront(camera_->camera);
    return;
  }
  machine().usbDevices = {{.vendorId = 0x3C7E,
                           .productId = path_->pid,
                           .instance = "1",
                           .description = "Microscope",
                           .maker = "Maker",
                           .pipes = {{0x81, 2, 0, 1024}},
                           .endpoint = camera_->port()}};
  machine().videoInputs = {{.path = simulator::videoInputPath(path_->pid, "1"),
                            .name = L"Microscope 1",
                            .nodes = {},
                            .picture = &camera_->camera.picture}};
}

void Rig::choose() {
  // Without a bridge camera, only the automatic choice finds a USB 3 camera.
  SetVideoDeviceIndex(path_->kind == Path::usb3 ? -1 : path_->index());
}

std::string Rig::init() {
  choose();
  std::string result = call(exportNamed("Init"));
  EnablePressKey(1);
  if (machine().timers.size() < 2) SetEventCallback([] { ++pressesTold; });
  return result;
}

std::string Rig::call(const ExportedCall& exported) {
  const Silence silence;
  return exported.call(busiestArguments(exported, path_->index()));
}

void Rig::setZoom(const simulator::ZoomMotion& motion) {
  camera_->camera.setZoom(motion);
}

void Rig::pressButton(bool pressed) {
  camera_->touchButton(pressed);
}

}  // namespace qvx::tests
