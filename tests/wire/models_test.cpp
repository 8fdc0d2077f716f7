// The models: the feature word of every product id, and arbitrary arguments for each family.
#include <algorithm>
#include <climits>

#include "tests/support/cameras.h"
#include "tests/support/every_export.h"
#include "tests/support/product_ids.h"
#include "tests/support/wifi_registers.h"

namespace qvx::tests {
namespace {

// Bits of the feature word: 0x80 and 0x01 as register 0x80 has them, 0x40 reads its magnification,
// 0x20 quadrants (register 0x83 reads 4), 0x10 aiming light, 0x08 or 0x04 kind of lights, 0x02
// newer model.
const struct Model {
  Ids ids;
  int word;  // without register 0x80, which then reads 0xFF
  // With it: the bits that are always set, and those that are as in the register. Bit 0x04 of the
  // latter stands for 0x04 where it is set and for 0x08 where it is clear. Models without any have
  // no quadrants either.
  int always = word, bits = 0;
} models[] = {
    {"610 611 613-615 710 715-717 810 811 820 821 840 841 843 845 846 848 870 871 873 875 876 878 "
     "87A-87C 880 881 883 885 886 888 88B 88D 88F 891 895 896 898 89B 89D 89F 920 921 923-925 "
     "9A0-9A8 9AD",
     0x04},
    {"617 712 812 825 842 849 860 863 872 874 879 87D-87F 882 884 889 88A 88C 88E 894 897 899 89A "
     "89C 89E 922 926-928 9AE",
     0x08},
    {"890 893", 0x44},
    {"892", 0x48},
    {"910 911 913 915-918 91B 91D 91F", 0x84, 0x84, 0x10},
    {"912 914 919 91A 91C 91E", 0x88, 0x88, 0x10},
    {"960-967", 0x06, 0x06, 0x10},
    {"968", 0x00, 0x02, 0x55},
    {"969-96D", 0x0A, 0x0A, 0x14},
    {"96E-96F", 0x00, 0x00, 0x10},
    {"970-977", 0x46, 0x46, 0x10},
    {"978", 0x0A, 0x0A, 0x55},
    {"979-97F", 0x4A, 0x4A, 0x14},
    {"980", 0x86, 0x86, 0x10},
    {"981-987", 0x82, 0x82, 0x14},
    {"988-98F", 0x8A, 0x8A, 0x14},
    {"990-994", 0xC6, 0xC6, 0x10},
    {"995-997", 0xC2, 0xC2, 0x14},
    {"998", 0xCA, 0xCA, 0x15},
    {"999-99F", 0xCA, 0xCA, 0x14},
    {"9B0 9C0-9C6 9E0-9E6", 0x00, 0x02, 0xD5},
    {"9C7-9CF 9D5 9D9-9DF 9E7-9EF", 0x00, 0x02, 0x91},
    {"9D0-9D4 9D6-9D8", 0x00, 0x02, 0x95},
    {"000-FFF", 0x00},
};

int expectedWord(const Model& model, int reg80, int reg83) {
  if (reg80 == 0xFF) return model.word;
  const int kind = (model.bits & 0x04) == 0 ? 0 : (reg80 & 0x04) != 0 ? 0x04 : 0x08;
  const int quadrants = model.bits != 0 && reg83 == 4 ? 0x20 : 0;
  return model.always | (reg80 & model.bits & ~0x04) | kind | quadrants;
}

class FeatureWord : public CameraTest {
 protected:
  FeatureWord() { machine().wifi = camera.server(); }

  WifiRegisters camera;
};

TEST_F(FeatureWord, FollowsTheModelAndItsRegisters) {
  for (int pid = 0; pid < allProductIds; ++pid) {
    const Model& model =
        *std::ranges::find_if(models, [&](auto& m) { return m.ids.contains(pid); });
    nCurrPid = pid;
    for (const int reg80 : {0x00, 0xD7, 0xFF, 0x01, 0x02, 0x04, 0x10, 0x40, 0x80, -1}) {
      if (model.bits == 0 && reg80 == 0x01) break;  // all bits off and all on are enough
      for (const int reg83 : {4, 5}) {
        camera.values = {{0x80, reg80}, {0x83, reg83}};
        const bool asksForQuadrants = model.bits != 0 && reg80 != 0xFF;
        EXPECT_EQ(GetConfig(90), expectedWord(model, reg80, reg83))
            << std::hex << pid << " reads " << reg80 << " and " << reg83;
        EXPECT_EQ(traffic(), asksForQuadrants ? "r62.80 p5 r62.83 p5" : "r62.80 p5")
            << std::hex << pid << " reads " << reg80;
      }
    }
  }
}

TEST_F(FeatureWord, ListsTheCamerasWhileTheIndexHasNone) {
  simulator::VirtualBridge first(0x998), second(0x9C7);
  machine().videoInputs = {bridgeInput(first, "1"), bridgeInput(second, "2")};
  etLib2_Init();
  const auto listings = [this] { return machine().open.comInitializations; };
  const int before = listings();
  journal();
  EXPECT_EQ(GetConfig(0), 0xEB);
  EXPECT_TRUE(traffic().ends_with("b r62.80f b r62.83f"));
  EXPECT_EQ(nPid, 0x998);
  EXPECT_EQ(listings(), before + 1);
  EXPECT_EQ(GetConfig(1), 0x83);
  EXPECT_EQ(listings(), before + 1) << "the table is filled";
  for (const int index : {2, 8, 91, -2, INT_MIN, INT_MAX}) EXPECT_EQ(GetConfig(index), 0) << index;
  EXPECT_EQ(listings(), before + 7);
  nCurrPid = 0x891;
  for (const int index : {-1, 90}) {
    EXPECT_EQ(GetConfig(index), 0x04);
    EXPECT_EQ(nPid, 0x891);
  }
  EXPECT_EQ(listings(), before + 7) << "the Wi-Fi camera is no video input";
  EXPECT_EQ(complaintsOf(first.camera) + complaintsOf(second.camera), "");
}

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
