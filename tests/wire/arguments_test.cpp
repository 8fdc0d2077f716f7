// Whatever an application passes: every export, on every kind of model.
#include <climits>

#include "tests/support/cameras.h"
#include "tests/support/every_export.h"
#include "tests/support/wifi_registers.h"

namespace qvx::tests {
namespace {

using Arguments = CameraTest;

TEST_F(Arguments, OfAnyValueAreHarmless) {
  WifiRegisters odd;
  for (const int reg : {0x00, 0x40, 0x50, 0x5E, 0xC0, 0xC2}) odd.values[reg] = INT_MIN;
  odd.values[0x5F] = INT_MAX;
  for (const int pid : {0, 0x870, 0x910, 0x930, 0x970, 0x990, 0x9A0, 0x9B0, 0x9BE, 0x9C0, 0x9E0}) {
    plug(pid);
    machine().workersInline = true;
    machine().wifi = odd.server();
    printedBy([&] {
      for (const int index : {INT_MIN, -2, -1, 0, 7, 8, 15, 90, 91, 100, INT_MAX}) {
        odd.values[0xCA] = index == 90 ? 2 : INT_MIN;
        for (const qvx_long value : {INT_MIN, -1, 0x7FFFFFF0, INT_MAX}) {
          for (const ExportedCall& exported : everyExport()) {
            nCurrPid = pid;
            exported.call({.index = index, .value = value, .second = value});
          }
        }
        EXPECT_TRUE(pid != 0 || GetAETarget(index) == 16) << index;
      }
    });
    EXPECT_EQ(GetLensPosLimits(0, nullptr, nullptr), 1);
    EXPECT_EQ(GetLensFinePosLimits(0, nullptr, nullptr), 1);
  }
}

}  // namespace
}  // namespace qvx::tests
