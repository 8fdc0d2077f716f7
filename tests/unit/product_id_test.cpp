#include <climits>

#include "state/device_state.h"
#include "tests/support/library.h"

namespace qvx::tests {
namespace {

TEST(ProductId, IsTheFourHexadecimalDigitsAfterPid) {
  const struct {
    const char* path;
    int pid;
  } rows[] = {
      {"\\\\?\\usb#vid_3c7e&pid_0970&mi_00#7&1", 0x970},
      {"vid_3c7e&pid_9e0f0", 0x9E0F},    // four digits, not more
      {"pid_09b0 and pid_0870", 0x9B0},  // the first one counts
      {"pid_09g0", 0x9},                 // as far as the digits go
      {"pid_", 0},
      {"pid_9", 0x9},
      {"vid_3c7e", 0},
      {"", 0},
  };
  for (const auto& row : rows) EXPECT_EQ(productIdIn(row.path), row.pid) << row.path;
}

using DeviceTables = LibraryTest;

TEST_F(DeviceTables, ReadAsEmptyOutsideTheirEntries) {
  strOrvaDevice.fill("pid_0970");
  for (const int index : {0, 7}) EXPECT_EQ(productIdOf(index), 0x970) << index;
  for (const int index : {-1, -2, 8, 9, 90, 1234, INT_MIN, INT_MAX}) {
    EXPECT_EQ(productIdOf(index), 0) << index;
  }
}

}  // namespace
}  // namespace qvx::tests
