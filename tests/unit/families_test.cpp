// Product ids, and the families they make.
#include "models/families.h"

#include <climits>
#include <map>

#include "state/device_state.h"
#include "tests/support/library.h"
#include "tests/support/wifi_registers.h"
#include "transport/controller.h"

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

// The predicate and its name.
#define FAMILY(predicate) #predicate, predicate

// Members by block of sixteen ids: bit n of a mask stands for the block's n-th id.
const struct {
  const char* name;
  int (*isMember)(int);
  std::map<int, unsigned> blocks;
} families[] = {
    {FAMILY(isVR3xxxSeries), {{0x9D, 0xFFFF}}},
    {FAMILY(isVK73xxxSeries), {{0x9B, 0xFFFF}}},
    {FAMILY(isVK3xxxR4Series), {{0x9A, 0xFFFF}}},
    {FAMILY(isVK4xxxSeries), {{0x87, 0xFFFF}, {0x88, 0xFFFF}, {0x89, 0xFFFF}, {0x91, 0xFFFF}}},
    {FAMILY(isVR4xxxSeries), {{0x9C, 0xFFFF}}},
    {FAMILY(isVK4xx7Series), {{0x9E, 0xFFFF}}},
    {FAMILY(isVk4xx7Series), {{0x9E, 0xFFFF}}},
    {FAMILY(isVK7xxxR4Series), {{0x92, 0xFFFF}}},
    {FAMILY(isVK7xxxSeries), {{0x96, 0xFFFF}, {0x97, 0xFFFF}, {0x98, 0xFFFF}, {0x99, 0xFFFF}}},
    {FAMILY(isEdof40), {{0x91, 0xFFFF}, {0x98, 0xFFFF}}},
    {FAMILY(isEdof50), {{0x99, 0xFFFF}, {0x9B, 0xFFFF}, {0x9C, 0xFFFF}, {0x9E, 0xFFFF}}},
    {FAMILY(isVK3xxxR4_2Series), {{0x9A, 0x3FFF}}},
    {FAMILY(isVK3xxxR4_3Series), {{0x9A, 0x4000}}},
    {FAMILY(isVK3xxxR4BasicSeries), {{0x9A, 0x1E00}}},
    {FAMILY(isVK4xxx_2Series), {{0x87, 0x1D6B}, {0x88, 0xA96B}, {0x89, 0xA96B}, {0x91, 0xA9EB}}},
    {FAMILY(isVK4xxx_3Series), {{0x87, 0xE214}, {0x88, 0x5614}, {0x89, 0x5694}, {0x91, 0x5614}}},
    {FAMILY(isVK7xxxR4_2Series), {{0x92, 0x003B}}},
    {FAMILY(isVK7xxxR4_3Series), {{0x92, 0x01C4}}},
    {FAMILY(isVK7xxx_2Series), {{0x96, 0x00FF}, {0x97, 0x00FF}, {0x98, 0x0001}, {0x99, 0x001F}}},
    {FAMILY(isVK7xxx_3Series), {{0x96, 0x3F00}, {0x97, 0xFF00}, {0x99, 0x01E0}}},
    {FAMILY(isVK3xxx_SEG_Series), {{0x9D, 0x007F}}},
    {FAMILY(VK7x15_AXI_Series), {{0x97, 0x0100}}},
};

class Families : public LibraryTest {
 protected:
  Families() {
    nTmpIdx = wifiDeviceIndex;
    machine().wifi = camera.server();
  }

  WifiRegisters camera;
};

TEST_F(Families, HaveExactlyTheirMembers) {
  for (const auto& family : families) {
    for (int pid = 0; pid <= 0xFFF; ++pid) {
      const auto block = family.blocks.find(pid >> 4);
      const bool member = block != family.blocks.end() && (block->second >> (pid & 15) & 1) != 0;
      EXPECT_EQ(family.isMember(pid), member ? 1 : 0) << family.name << " " << std::hex << pid;
    }
    for (const int pid : {-1, 0x10970, -0x970}) EXPECT_EQ(family.isMember(pid), 0) << family.name;
  }
}

std::string readOf(int reg) {
  return "GET http://127.0.0.1:8080/?action=commandcontrol&dest=0plugin=0&id=1378&group=5&value=" +
         std::to_string(reg << 16);
}

TEST_F(Families, RefreshTheFeatureRegisterWhateverTheProductId) {
  camera.values = {{0x80, 0xFA}, {0x84, 0x05}};
  for (int (*const isMember)(int) : {isVK4xx7Series, isVR4xxxSeries}) {
    EXPECT_EQ(isMember(0x100), 0);
    EXPECT_EQ(ul80, 0xFAu);
    EXPECT_EQ(ul84, 0u);
    EXPECT_EQ(journal(), (Journal{readOf(0x80), "pause 5"}));
  }
  EXPECT_EQ(isVR3xxx_2Series(0x100), 0);
  EXPECT_EQ(ul84, 0x05u);
  EXPECT_EQ(journal(), (Journal{readOf(0x80), "pause 5", readOf(0x84), "pause 5"}));
  isVk4xx7Series(0x9E0);
  EXPECT_EQ(journal(), Journal{});
}

TEST_F(Families, TellHardwareVariantsApartByTheFeatureRegister) {
  // Bit n of the answers is the result with register 0x80 reading each of these.
  const int registerValues[] = {0x00, 0x02, 0x04, 0x06, 0xFA, 0xFF};
  constexpr unsigned bit2 = 0b101100, bits2only = 0b010010, bits2and4 = 0b101000;
  const struct {
    const char* name;
    int (*isMember)(int);
    int block;
    unsigned ids, answers;
  } variants[] = {
      {FAMILY(isVR4xxx_2Series), 0x9C, 0x007F, bit2},
      {FAMILY(isVR4xxx_3Series), 0x9C, 0x007F, bits2only},
      {FAMILY(isVR3xxx_2Series), 0x9D, 0x0187, bits2and4},
      {FAMILY(isVR3xxx_3Series), 0x9D, 0x0010, bits2only},
      {FAMILY(isVk4xx7_2Series), 0x9E, 0x007F, bits2and4},
      {FAMILY(isVk4xx7_3Series), 0x9E, 0x007F, bits2only},
  };
  for (const auto& variant : variants) {
    for (int pid = 0x9B0; pid <= 0x9FF; ++pid) {
      const bool listed = pid >> 4 == variant.block && (variant.ids >> (pid & 15) & 1) != 0;
      for (unsigned i = 0; i < 6; ++i) {
        camera.values[0x80] = registerValues[i];
        const int expected = listed && (variant.answers >> i & 1) != 0 ? 1 : 0;
        EXPECT_EQ(variant.isMember(pid), expected)
            << variant.name << " " << std::hex << pid << " with " << registerValues[i];
      }
    }
  }
}

}  // namespace
}  // namespace qvx::tests
