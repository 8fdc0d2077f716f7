// A test with a simulated camera behind a bridge at device index 0.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "etlib2/etLib2.h"
#include "simulator/platform/cameras.h"
#include "state/device_state.h"
#include "tests/support/accesses.h"
#include "tests/support/library.h"

namespace qvx::tests {

class BridgeCameraTest : public LibraryTest {
 protected:
  // With the bus on the camera, as Init leaves it.
  void plug(int pid, const simulator::BridgeSetup& setup = {}) {
    bridge = std::make_unique<simulator::VirtualBridge>(static_cast<std::uint16_t>(pid), setup);
    machine().videoInputs = {bridgeInput(*bridge)};
    char path[32];
    std::snprintf(path, sizeof path, "vid_3c7e&pid_%04x", static_cast<unsigned>(pid));
    strOrvaDevice[0] = path;
    nPid = 0;
    etLib2_Init();
    etLib2_SelectI2cBus_DevNum(0, 2, 0);
    journal();
  }

  simulator::Sensor& sensor() { return bridge->camera.sensor(); }
  std::string accesses() { return Accesses::in(journal()); }

  // What a call did, on a camera that had nothing to complain of.
  std::string trafficOf(const auto& call) {
    journal();
    call();
    EXPECT_EQ(complaintsOf(bridge->camera), "");
    return accesses();
  }

  std::unique_ptr<simulator::VirtualBridge> bridge;
};

struct Setting {
  int pid;
  qvx_long value;
  std::string traffic;
};

struct Reading {
  int pid;
  qvx_long value;
  std::string traffic;
};

}  // namespace qvx::tests
