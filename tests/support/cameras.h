// Simulated cameras on every transport, plugged in for a test.
#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "etlib2/etLib2.h"
#include "simulator/platform/cameras.h"
#include "state/device_state.h"
#include "tests/support/traffic.h"
#include "transport/usb3.h"

namespace qvx::tests {

const std::string cameraUrl = "http://127.0.0.1:8080/";

inline std::string printedBy(const std::function<void()>& call) {
  testing::internal::CaptureStdout();
  call();
  return testing::internal::GetCapturedStdout();
}

// A device on any interface that takes everything but some selectors, and answers with these bytes,
// one answer after the other; the last one stays. An empty answer is none.
class ScriptedPort final : public simulator::CameraPort {
 public:
  std::deque<std::vector<std::uint8_t>> replies;
  std::vector<std::uint32_t> refused;

  bool supports(const simulator::PropertySetId&) override { return true; }
  bool setProperty(const simulator::PropertySetId&, std::uint32_t selector,
                   simulator::Bytes) override {
    return std::find(refused.begin(), refused.end(), selector) == refused.end();
  }
  bool setFeature(simulator::Bytes) override { return true; }
  bool getProperty(const simulator::PropertySetId&, std::uint32_t, simulator::Room data) override {
    return getFeature(data);
  }
  bool getFeature(simulator::Room data) override {
    if (replies.empty()) return false;
    const std::vector<std::uint8_t> reply = replies.front();
    if (replies.size() > 1) replies.pop_front();
    if (reply.empty()) return false;
    std::fill(data.begin(), data.end(), std::uint8_t{0xEE});
    std::copy_n(reply.begin(), std::min(reply.size(), data.size()), data.begin());
    return true;
  }
  std::optional<std::size_t> transfer(const simulator::UsbSetup& setup,
                                      simulator::Room buffer) override {
    if (setup.requestType >= 0x80 && !getFeature(buffer)) return std::nullopt;
    return buffer.size();
  }
};

// One camera at a time, at index 0 or over Wi-Fi; by the time it is unplugged it must not have seen
// any violation.
class CameraTest : public LibraryTest {
 protected:
  CameraTest() { s_mainhttp = cameraUrl; }
  ~CameraTest() override { take(); }

  static void name(int index, int pid) {
    strOrvaDevice[static_cast<std::size_t>(index)] =
        formatted("vid_3c7e&pid_%04x", static_cast<unsigned>(pid));
  }

  void plug(int pid, const simulator::BridgeSetup& setup = {}) {
    make(pid, setup);
    plugBridges({bridge.get()});
  }
  void plugHid(int pid, const simulator::BridgeSetup& setup = {}) {
    plug(pid, setup);
    machine().videoInputs.clear();
    machine().hidInterfaces = {{bridgeHidInterface(*bridge)}};
    openBridges();
  }
  void plugUsb3(int pid) {
    make(pid, {});
    plugUsb3(pid, bridge->port());
  }
  void plugWifi(int pid) {
    make(pid, {});
    machine().wifi = wifiFront(camera());
    nCurrPid = nPid = pid;
  }

  void plugBridges(std::initializer_list<simulator::VirtualBridge*> cameras) {
    machine().videoInputs.clear();
    int index = 0;
    for (simulator::VirtualBridge* camera : cameras) {
      name(index, camera->camera.productId());
      machine().videoInputs.push_back(bridgeInput(*camera, std::to_string(++index)));
    }
    openBridges();
  }
  void plugUsb3(int pid, const std::shared_ptr<simulator::CameraPort>& endpoint) {
    machine().usbDevices = {{cameraVendorId, pid, "A", "", "", {}, true, endpoint}};
    name(0, pid);
    nPid = pid;
    printedBy(U3Open);
    journal();
  }

  std::shared_ptr<ScriptedPort> plugScripted(std::deque<std::vector<std::uint8_t>> replies) {
    const auto node = std::make_shared<ScriptedPort>();
    machine().videoInputs = {{L"x", L"x", {node}}};
    openBridges();
    node->replies = std::move(replies);
    return node;
  }

  void take() {
    if (bridge == nullptr) return;
    EXPECT_EQ(complaintsOf(camera()), "");
    etLib2_Release();
    machine().videoInputs.clear();
    machine().wifi = nullptr;
    bridge.reset();
  }

  simulator::Camera& camera() { return bridge->camera; }
  void set(int reg, int value) {  // of the controller
    camera().controller.set(static_cast<std::uint8_t>(reg), static_cast<std::uint8_t>(value));
  }

  std::string traffic() { return trafficIn(journal()); }

  std::unique_ptr<simulator::VirtualBridge> bridge;

 private:
  void make(int pid, const simulator::BridgeSetup& setup) {
    take();
    bridge = std::make_unique<simulator::VirtualBridge>(static_cast<std::uint16_t>(pid), setup);
    nPid = 0;
  }
  // With the bus on the camera, as Init leaves it.
  void openBridges() {
    etLib2_Init();
    etLib2_SelectI2cBus_DevNum(0, 2, 0);
    journal();
  }
};

// The lights' traffic, with or without the reads and the bus switches between them.
enum class Reads { hidden, shown };

class LightsTest : public CameraTest {
 protected:
  std::string traffic(Reads reads = Reads::hidden) {
    std::string all;
    for (const std::string& line : journal()) {
      const std::string& part = shortenedLine(line, true);
      if (part.empty() || (reads == Reads::hidden && (part == "b" || part.ends_with('?'))))
        continue;
      all += (all.empty() ? "" : " ") + part;
    }
    return all;
  }
};

}  // namespace qvx::tests
