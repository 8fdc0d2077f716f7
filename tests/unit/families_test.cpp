// Product ids, and the families they make.
#include "models/families.h"

#include <climits>

#include "state/device_state.h"
#include "tests/support/library.h"
#include "tests/support/product_ids.h"
#include "tests/support/wifi_registers.h"
#include "transport/controller.h"

namespace qvx::tests {
namespace {

TEST(ProductId, IsTheFourHexadecimalDigitsAfterPid) {
  for (const auto& [path, pid] : {std::pair("\\\\?\\usb#vid_3c7e&pid_0970&mi_00#7&1", 0x970),
                                  {"vid_3c7e&pid_9e0f0", 0x9E0F},    // four digits, not more
                                  {"pid_09b0 and pid_0870", 0x9B0},  // the first one counts
                                  {"pid_09g0", 0x9},                 // as far as the digits go
                                  {"pid_", 0},
                                  {"pid_9", 0x9},
                                  {"vid_3c7e", 0},
                                  {"", 0}}) {
    EXPECT_EQ(productIdIn(path), pid) << path;
  }
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

const struct {
  const char* name;
  int (*isMember)(int);
  Ids members;
} families[] = {
    {FAMILY(isVR3xxxSeries), "9D0-9DF"},           {FAMILY(isVK73xxxSeries), "9B0-9BF"},
    {FAMILY(isVK3xxxR4Series), "9A0-9AF"},         {FAMILY(isVK4xxxSeries), "870-89F 910-91F"},
    {FAMILY(isVR4xxxSeries), "9C0-9CF"},           {FAMILY(isVK4xx7Series), "9E0-9EF"},
    {FAMILY(isVk4xx7Series), "9E0-9EF"},           {FAMILY(isVK7xxxR4Series), "920-92F"},
    {FAMILY(isVK7xxxSeries), "960-99F"},           {FAMILY(isEdof40), "910-91F 980-98F"},
    {FAMILY(isEdof50), "990-99F 9B0-9CF 9E0-9EF"}, {FAMILY(isVK3xxxR4_2Series), "9A0-9AD"},
    {FAMILY(isVK3xxxR4_3Series), "9AE"},           {FAMILY(isVK3xxxR4BasicSeries), "9A9-9AC"},
    {FAMILY(isVK4xxx_2Series), vk4xxx_2},          {FAMILY(isVK4xxx_3Series), vk4xxx_3},
    {FAMILY(isVK7xxxR4_2Series), vk7xxxR4_2},      {FAMILY(isVK7xxxR4_3Series), vk7xxxR4_3},
    {FAMILY(isVK7xxx_2Series), vk7xxx_2},          {FAMILY(isVK7xxx_3Series), vk7xxx_3},
    {FAMILY(isVK3xxx_SEG_Series), "9D0-9D6"},      {FAMILY(VK7x15_AXI_Series), "978"},
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
    for (int pid = -1; pid <= allProductIds; ++pid) {
      EXPECT_EQ(family.isMember(pid), family.members.contains(pid) ? 1 : 0)
          << family.name << " " << std::hex << pid;
    }
    for (const int pid : {0x10970, -0x970}) EXPECT_EQ(family.isMember(pid), 0) << family.name;
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
  const struct {
    const char* name;
    int (*isMember)(int);
    Ids members;
    int mask, value;  // of register 0x80
  } variants[] = {
      {FAMILY(isVR4xxx_2Series), "9C0-9C6", 0x04, 0x04},
      {FAMILY(isVR4xxx_3Series), "9C0-9C6", 0x06, 0x02},
      {FAMILY(isVR3xxx_2Series), "9D0-9D2 9D7-9D8", 0x06, 0x06},
      {FAMILY(isVR3xxx_3Series), "9D4", 0x06, 0x02},
      {FAMILY(isVk4xx7_2Series), "9E0-9E6", 0x06, 0x06},
      {FAMILY(isVk4xx7_3Series), "9E0-9E6", 0x06, 0x02},
  };
  for (const auto& variant : variants) {
    for (int pid = 0x9B0; pid <= 0x9FF; ++pid) {
      for (const int features : {0x00, 0x02, 0x04, 0x06, 0xFA, 0xFF}) {
        camera.values[0x80] = features;
        const bool fits = (features & variant.mask) == variant.value;
        EXPECT_EQ(variant.isMember(pid), variant.members.contains(pid) && fits ? 1 : 0)
            << variant.name << " " << std::hex << pid << " with " << features;
      }
    }
  }
}

}  // namespace
}  // namespace qvx::tests
