// Simulated cameras on every transport, plugged in for a test.
#pragma once

#include <functional>
#include <memory>
#include <string>

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

class CameraTest : public LibraryTest {
 protected:
  CameraTest() { s_mainhttp = cameraUrl; }

  static void name(int index, int pid) {
    strOrvaDevice[static_cast<std::size_t>(index)] =
        formatted("vid_3c7e&pid_%04x", static_cast<unsigned>(pid));
  }

  void plugWifi(simulator::Camera& camera) {
    machine().wifi = wifiFront(camera);
    nCurrPid = nPid = camera.productId();
  }

  // With the bus on the camera, as Init leaves it.
  void plugBridges(std::initializer_list<simulator::VirtualBridge*> cameras) {
    machine().videoInputs.clear();
    int index = 0;
    for (simulator::VirtualBridge* camera : cameras) {
      name(index, camera->camera.productId());
      machine().videoInputs.push_back(bridgeInput(*camera, std::to_string(++index)));
    }
    etLib2_Init();
    etLib2_SelectI2cBus_DevNum(0, 2, 0);
    journal();
  }

  // A new bridge of the test's own, at index 0.
  void plug(int pid, const simulator::BridgeSetup& setup = {}) {
    bridge = std::make_unique<simulator::VirtualBridge>(static_cast<std::uint16_t>(pid), setup);
    nPid = 0;
    plugBridges({bridge.get()});
  }
  void plugHid(int pid, const simulator::BridgeSetup& setup = {}) {
    plug(pid, setup);
    machine().videoInputs.clear();
    machine().hidInterfaces = {{bridgeHidInterface(*bridge)}};
    etLib2_Init();
    etLib2_SelectI2cBus_DevNum(0, 2, 0);
    journal();
  }

  void plugUsb3(int pid, const std::shared_ptr<simulator::ControlEndpoint>& endpoint) {
    machine().usbDevices = {{cameraVendorId, pid, "A", "", "", {}, true, endpoint}};
    name(0, pid);
    nPid = pid;
    printedBy(U3Open);
    journal();
  }
  void plugUsb3(simulator::Camera& camera) { plugUsb3(camera.productId(), usb3Front(camera)); }

  simulator::Sensor& sensor() { return bridge->camera.sensor(); }

  std::string traffic() { return trafficIn(journal()); }

  std::unique_ptr<simulator::VirtualBridge> bridge;
};

// The lights' traffic; with the reads, and the switch between them, or without.
enum class Reads { hidden, shown };

class LightsTest : public CameraTest {
 protected:
  std::string traffic(Reads reads = Reads::hidden) {
    std::string all;
    for (const std::string& line : journal()) {
      const std::string part = trafficIn({line}, true);
      if (part.empty() || (reads == Reads::hidden && (part == "b" || part.ends_with('?'))))
        continue;
      all += (all.empty() ? "" : " ") + part;
    }
    return all;
  }
};

}  // namespace qvx::tests
