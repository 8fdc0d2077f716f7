// The simulated bridge's strictness: tests of the library trust it to notice what a client must not
// do.
#include <gtest/gtest.h>

#include <span>
#include <vector>

#include "simulator/model/camera_device.h"

namespace qvx::simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Step {
  enum Kind { set, get, command } kind;
  std::uint32_t selector;  // or report id
  std::size_t size;
  Bytes start;  // the rest is 0
};

const struct Misuse {
  const char* complaint;
  std::vector<Step> steps;
} ofTheExtensionUnit[] =
    {{"get without its set", {{Step::get, 26, 32, {}}}},
     {"get without its set", {{Step::set, 26, 32, {6, 0, 1}}, {Step::get, 20, 32, {}}}},
     {"get without its set",
      {{Step::set, 26, 32, {6, 0, 1}}, {Step::get, 26, 32, {}}, {Step::get, 26, 32, {}}}},
     {"wrong length", {{Step::set, 26, 31, {6, 0, 1}}}},
     {"wrong length", {{Step::set, 26, 32, {6, 0, 1}}, {Step::get, 26, 31, {}}}},
     {"wrong length", {{Step::set, 26, 32, {6, 0, 5}}}},
     {"wrong length", {{Step::set, 1, 1, {5}}, {Step::set, 5, 5, {0x62, 3, 1, 4, 15}}}},
     {"unused bytes", {{Step::set, 26, 32, {6, 0, 1, 9}}}},
     {"unused bytes", {{Step::set, 27, 32, {6, 0, 1, 0, 9}}}},
     {"access mode missing", {{Step::set, 10, 3, {6, 0, 1}}}},
     {"access mode missing", {{Step::set, 1, 1, {3}}, {Step::set, 2, 2, {6, 1}}}},
     {"not restored", {{Step::set, 1, 1, {3}}, {Step::set, 26, 32, {6, 0, 1}}}},
     {"not restored", {{Step::set, 1, 1, {3}}, {Step::set, 1, 1, {2}}}},
     {"never set", {{Step::set, 1, 1, {1}}}},
     {"unknown selector", {{Step::set, 6, 1, {}}}},
     {"unknown register 0x0037", {{Step::set, 26, 32, {0x37, 0, 1}}}},
     {"wrong length at register 0x1700", {{Step::set, 26, 32, {0x00, 0x17, 1}}}},
     {"read-only register 0x0085", {{Step::set, 27, 32, {0x85, 0, 1, 0x80}}}},
     {"unknown command selector", {{Step::command, 1, 256, {}}}},
     {"wrong length", {{Step::command, 2, 255, {0xF0, 0xF2}}}},
     {"unknown custom command", {{Step::command, 2, 256, {0xEF, 0xF2}}}},
     {"unknown custom command", {{Step::command, 2, 256, {0x1D, 0xF2}}}},
     {"unknown parameter", {{Step::command, 2, 256, {0x1D, 0, 0, 3, 1}}}},
     {"unknown state of the lights 0xEF", {{Step::set, 27, 32, {0x80, 0, 1, 0xEF}}}}},
  ofTheHidInterface[] = {
      {"get without its set", {{Step::get, 0x93, 40, {}}}},
      {"get without its set", {{Step::set, 0x87, 4, {0x01}}, {Step::get, 0x93, 40, {}}}},
      {"not finished", {{Step::set, 0x93, 40, {}}}},
      {"not finished", {{Step::set, 0x87, 4, {0, 6, 1}}, {Step::set, 0x87, 4, {0, 6, 1}}}},
      {"wrong length", {{Step::set, 0x87, 5, {0, 6, 1}}}},
      {"wrong length", {{Step::set, 0x87, 4, {0, 6, 1}}, {Step::get, 0x93, 39, {}}}},
      {"wrong length", {{Step::set, 0x87, 4, {2, 0x62, 1, 0}}}},
      {"unknown request", {{Step::set, 0x87, 4, {5}}}},
      {"unknown request", {{Step::get, 0x97, 40, {}}}},
      {"unused bytes", {{Step::set, 0x87, 4, {1, 9}}}},
      {"unused bytes", {{Step::set, 0x87, 4, {1}}, {Step::set, 0x93, 40, {6, 1, 0, 9}}}},
      {"does not repeat",
       {{Step::set, 0x97, 40, {0x1E, 0xF2, 1}}, {Step::set, 0x93, 40, {0x1E, 0xF3, 1}}}}};

// `take` makes the camera take one step, given the bytes of its start filled up with 0.
template <class Take>
void expectOneComplaintEach(std::span<const Misuse> misuses, Take take) {
  for (const Misuse& misuse : misuses) {
    CameraDevice device({.productId = 0x970});
    for (const Step& step : misuse.steps) {
      Bytes bytes = step.start;
      bytes.resize(step.size);
      take(device, step, bytes);
    }
    const Violations& violations = device.camera.violations;
    ASSERT_EQ(violations.size(), 1u) << misuse.complaint;
    EXPECT_NE(violations[0].find(misuse.complaint), std::string::npos)
        << violations[0] << " is not " << misuse.complaint;
  }
}

TEST(BridgeChip, ComplainsOfMisuseOfItsExtensionUnit) {
  expectOneComplaintEach(
      ofTheExtensionUnit, [](CameraDevice& device, const Step& step, Bytes& bytes) {
        const auto& set = step.kind == Step::command ? bridgeCommandSet : bridgeRegisterSet;
        step.kind == Step::get ? device.extensionUnit.get(set, step.selector, bytes)
                               : device.extensionUnit.set(set, step.selector, bytes);
      });
}

TEST(BridgeChip, ComplainsOfMisuseOfItsHidInterface) {
  expectOneComplaintEach(
      ofTheHidInterface, [](CameraDevice& device, const Step& step, Bytes& report) {
        report.insert(report.begin(), static_cast<std::uint8_t>(step.selector));
        step.kind == Step::get ? device.hid.getFeature(report) : device.hid.setFeature(report);
      });
}

TEST(BridgeChip, TellsWhatOthersHaveChanged) {
  CameraDevice device({.productId = 0x9E0});
  device.camera.gpio.setLights(5);
  device.camera.firmwareExposure.automatic = false;
  Bytes lights(1), exposureMode(2, 0xFF);
  device.chip.readRegister(0x0080, lights);
  device.chip.readRegister(0x1700, exposureMode);
  EXPECT_EQ(lights, (Bytes{0xF5}));
  EXPECT_EQ(exposureMode, (Bytes{0, 0}));
}

}  // namespace
}  // namespace qvx::simulator
