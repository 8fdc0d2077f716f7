// Cameras whose lights are driven, one on each transport.
#pragma once

#include "etlib2/etLib2.h"
#include "simulator/platform/cameras.h"
#include "state/device_state.h"
#include "tests/support/light_traffic.h"
#include "transport/usb3.h"

namespace qvx::tests {

class LightsTest : public LibraryTest {
 protected:
  LightsTest() { s_mainhttp = "http://127.0.0.1:8080/"; }

  static void name(int index, int pid) {
    char path[32];
    std::snprintf(path, sizeof path, "vid_3c7e&pid_%04x", static_cast<unsigned>(pid));
    strOrvaDevice[static_cast<std::size_t>(index)] = path;
  }

  void plugWifi(simulator::Camera& camera) {
    machine().wifi = wifiFront(camera);
    nCurrPid = camera.productId();
  }

  void plugBridges(std::initializer_list<simulator::VirtualBridge*> cameras) {
    machine().videoInputs.clear();
    int index = 0;
    for (simulator::VirtualBridge* camera : cameras) {
      name(index, camera->camera.productId());
      machine().videoInputs.push_back(bridgeInput(*camera, std::to_string(++index)));
    }
    etLib2_Init();
    journal();
  }

  void plugUsb3(simulator::Camera& camera) {
    const int pid = camera.productId();
    machine().usbDevices = {
        {cameraVendorId, pid, "A", "", "", {}, true, simulator::usb3Front(camera)}};
    name(0, pid);
    nPid = pid;
    testing::internal::CaptureStdout();
    U3Open();
    testing::internal::GetCapturedStdout();
    journal();
  }

  std::string traffic(Reads reads = Reads::hidden) { return LightTraffic::in(journal(), reads); }
};

}  // namespace qvx::tests
