// The DLL and bridge cameras through the system's own HID stack: simulated devices of a minidriver.
#include <windows.h>
// mingw-w64's HID headers depend on windows.h and lack extern "C".
extern "C" {
#include <hidsdi.h>
}

#include <optional>

#include "tests/windows/fixtures/imports.h"
#include "tests/windows/fixtures/simulated_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

TEST(HidCamera, IsFoundAmongForeignDevicesReadAndHeard) {
  SimulatedCameras cameras({"hid:0970,zoom=40,button=2s", "hid:1234:0001,unit=absent,reports=none",
                            "hid:0970,unit=absent,reports=extra"});
  openCamera(0);
  static int presses = 0;
  SetEventCallback([] { ++presses; });
  EnablePressKey(1);
  EXPECT_TRUE(measures(0, 40)) << GetMAG(0);
  EXPECT_TRUE(eventually(9000, [] { return presses >= 1; }));
  EnablePressKey(0);
  cameras[0].with([](auto& device) { device.camera.setZoom({20, 20, 0}); });
  EXPECT_TRUE(measures(0, 20)) << GetMAG(0);
  EXPECT_EQ(cameras.violations(0), "");
}

// Devices claim capabilities of every kind; one chosen query for them fails.
using Query = std::pair<HIDP_REPORT_TYPE, bool>;  // of buttons or of values
std::optional<Query> refused;

NTSTATUS answerTo(const Query& query) {
  return refused == query ? HIDP_STATUS_INVALID_PREPARSED_DATA : HIDP_STATUS_SUCCESS;
}

NTSTATUS NTAPI claimEveryKind(PHIDP_PREPARSED_DATA data, PHIDP_CAPS caps) {
  const NTSTATUS status = HidP_GetCaps(data, caps);
  caps->NumberInputButtonCaps = caps->NumberInputValueCaps = 1;
  caps->NumberOutputButtonCaps = caps->NumberOutputValueCaps = 1;
  caps->NumberFeatureButtonCaps = 1;
  return status;
}

NTSTATUS NTAPI giveButtons(HIDP_REPORT_TYPE type, PHIDP_BUTTON_CAPS, PUSHORT,
                           PHIDP_PREPARSED_DATA) {
  return answerTo({type, true});
}

NTSTATUS NTAPI giveValues(HIDP_REPORT_TYPE type, PHIDP_VALUE_CAPS caps, PUSHORT count,
                          PHIDP_PREPARSED_DATA data) {
  const bool isGenuine = type == HidP_Feature && refused != Query{type, false};
  return isGenuine ? HidP_GetValueCaps(type, caps, count, data) : answerTo({type, false});
}

TEST(HidCamera, IsSkippedWhenOneOfItsCapabilitiesCannotBeHad) {
  const SimulatedCameras cameras({"hid:0870,firmware=wide"});
  const ReplacedImport caps("HidP_GetCaps", &claimEveryKind),
      buttons("HidP_GetButtonCaps", &giveButtons), values("HidP_GetValueCaps", &giveValues);
  refused.reset();
  openCamera(0);
  for (const HIDP_REPORT_TYPE type : {HidP_Input, HidP_Output, HidP_Feature}) {
    for (const bool button : {true, false}) {
      refused = {type, button};
      EXPECT_EQ(Init(), 0) << type << (button ? " buttons" : " values");
    }
  }
}

}  // namespace
}  // namespace qvx::tests
