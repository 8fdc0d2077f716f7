// The feature word, and what of a product id and the registers behind it decides how a camera is
// taken.
#include <climits>
#include <map>

#include "qvx64/api.h"
#include "tests/support/cameras.h"
#include "tests/support/wifi_registers.h"

namespace qvx::tests {
namespace {

class FeatureWord : public CameraTest {
 protected:
  FeatureWord() { machine().wifi = camera.server(); }

  WifiRegisters camera;
};

// Every rule with a quirk, and the ids beside it.
TEST_F(FeatureWord, FollowsTheModelAndItsRegisters) {
  const struct {
    int pid, reg80, reg83, word;
  } rows[] = {
      {0x000, 0x55, 4, 0x00}, {0x610, 0xFF, 0, 0x04}, {0x616, 0xFF, 0, 0x00},
      {0x617, 0xFF, 0, 0x08}, {0x712, 0xFF, 0, 0x08}, {0x713, 0xFF, 0, 0x00},
      {0x825, 0xD7, 4, 0x08}, {0x841, 0xFF, 0, 0x04}, {0x842, 0xFF, 0, 0x08},
      {0x847, 0xFF, 0, 0x00}, {0x877, 0xFF, 0, 0x00}, {0x890, 0xFF, 0, 0x44},
      {0x891, 0xD7, 4, 0x04}, {0x892, 0xFF, 0, 0x48}, {0x893, 0xFF, 0, 0x44},
      {0x894, 0xFF, 0, 0x08}, {0x910, 0xFF, 4, 0x84}, {0x910, 0x55, 3, 0x94},
      {0x912, 0x10, 4, 0xB8}, {0x920, 0x10, 4, 0x04}, {0x922, 0xFF, 0, 0x08},
      {0x929, 0xFF, 0, 0x00}, {0x960, 0xFF, 4, 0x06}, {0x960, 0x50, 4, 0x36},
      {0x968, 0xFF, 4, 0x00}, {0x968, 0x85, 0, 0x07}, {0x968, 0x40, 4, 0x6A},
      {0x969, 0xFF, 0, 0x0A}, {0x969, 0x04, 0, 0x0E}, {0x96E, 0x14, 4, 0x30},
      {0x970, 0xFF, 0, 0x46}, {0x978, 0xFF, 0, 0x0A}, {0x978, 0x44, 0, 0x4E},
      {0x978, 0x41, 0, 0x4B}, {0x979, 0xFF, 0, 0x4A}, {0x97F, 0x81, 0, 0x4A},
      {0x980, 0xFF, 0, 0x86}, {0x981, 0xFF, 0, 0x82}, {0x981, 0x04, 0, 0x86},
      {0x987, 0x00, 0, 0x8A}, {0x988, 0x04, 0, 0x8E}, {0x990, 0xFF, 0, 0xC6},
      {0x994, 0x10, 4, 0xF6}, {0x995, 0xFF, 0, 0xC2}, {0x995, 0x04, 0, 0xC6},
      {0x997, 0x00, 0, 0xCA}, {0x998, 0xFF, 0, 0xCA}, {0x998, 0x05, 0, 0xCF},
      {0x999, 0x01, 0, 0xCA}, {0x9A8, 0xD7, 4, 0x04}, {0x9A9, 0xFF, 0, 0x00},
      {0x9AD, 0xFF, 0, 0x04}, {0x9AE, 0xFF, 0, 0x08}, {0x9AF, 0xFF, 0, 0x00},
      {0x9B0, 0xFF, 4, 0x00}, {0x9B0, 0xD5, 4, 0xF7}, {0x9B0, 0x00, 0, 0x0A},
      {0x9B1, 0xD5, 4, 0x00}, {0x9C0, 0xD1, 4, 0xFB}, {0x9C7, 0xD5, 4, 0xB3},
      {0x9D4, 0x04, 0, 0x06}, {0x9D5, 0x40, 0, 0x02}, {0x9D8, 0x00, 0, 0x0A},
      {0x9D9, 0x04, 0, 0x02}, {0x9E6, 0x40, 0, 0x4A}, {0x9E7, 0x44, 0, 0x02},
      {0x9EF, 0x80, 4, 0xA2}, {0x9F0, 0xD5, 4, 0x00}, {0x9C0, -1, 4, 0xF7},
  };
  for (const auto& row : rows) {
    nCurrPid = row.pid;
    camera.values = {{0x80, row.reg80}, {0x83, row.reg83}};
    EXPECT_EQ(GetConfig(90), row.word) << std::hex << row.pid << " reads " << row.reg80;
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

// A digest of what all 4096 product ids give, a block of 16 at a time: after a change it tells
// which ids give something else.
using Digests = std::map<int, std::uint32_t>;

class Sweep : public FeatureWord {
 protected:
  using Registers = std::map<int, int>;
  using Results = std::vector<qvx_long> (*)();

  std::uint32_t digestOf(int block, const std::vector<Registers>& combinations, Results ask) {
    std::uint32_t digest = 2166136261;  // FNV-1a
    for (int pid = 16 * block; pid < 16 * (block + 1); ++pid) {
      for (const Registers& registers : combinations) {
        nCurrPid = pid;
        camera.values = registers;
        for (const qvx_long result : ask()) {
          digest = (digest ^ static_cast<std::uint32_t>(result)) * 16777619;
        }
      }
    }
    journal();
    return digest;
  }

  // Blocks that are not listed give the same as block 0.
  void expect(const Digests& listed, const std::vector<Registers>& combinations, Results ask) {
    for (int block = 0; block < 256; ++block) {
      const std::uint32_t digest = digestOf(block, combinations, ask);
      EXPECT_EQ(digest, listed.at(listed.count(block) != 0 ? block : 0))
          << "product ids 0x" << std::hex << block << "0 on: {0x" << block << ", 0x" << digest
          << '}';
    }
  }
};

TEST_F(Sweep, FeatureWords) {
  std::vector<Registers> combinations;
  for (const int reg80 : {0x00, 0x01, 0x02, 0x04, 0x10, 0x40, 0x80, 0xD7, 0xFF}) {
    combinations.push_back({{0x80, reg80}, {0x83, 4}});
  }
  combinations.push_back({{0x80, 0xD7}, {0x83, 5}});
  const Digests listed = {{0x00, 0x02187E45}, {0x61, 0xA338E08D}, {0x71, 0xDA9D4705},
                          {0x81, 0x04331BF5}, {0x82, 0x4F8D9F35}, {0x84, 0xA2D800B5},
                          {0x86, 0xC6972345}, {0x87, 0xDA29850D}, {0x88, 0xBA053D8D},
                          {0x89, 0x6D2020ED}, {0x91, 0x28FC9735}, {0x92, 0x4E7D75AD},
                          {0x96, 0x44831684}, {0x97, 0x826B026A}, {0x98, 0xAF391961},
                          {0x99, 0x4A5EC046}, {0x9A, 0xECC6FC35}, {0x9B, 0x9E9F2B5C},
                          {0x9C, 0x93D78E39}, {0x9D, 0x952C2AED}, {0x9E, 0x93D78E39}};
  expect(listed, combinations, [] { return std::vector<qvx_long>{GetConfig(90)}; });
}

TEST_F(Sweep, LensLimits) {
  const std::vector<Registers> combinations = {
      {{0xCA, 1}, {0xC2, 0}, {0x5F, 255}, {0x5E, 255}},
      {{0xCA, 1}, {0xC2, 1}, {0x5F, 255}, {0x5E, 9}},
      {{0xCA, 2}, {0xC2, 0}, {0x5F, 12}, {0x5E, 255}},
      {{0xCA, 2}, {0xC2, 1}, {0x5F, 255}, {0x5E, 9}},
      {{0xCA, 255}, {0xC2, 0}, {0x5F, 12}, {0x5E, 255}},
      {{0xCA, 255}, {0xC2, 1}, {0x5F, 0}, {0x5E, 9}},
  };
  const Digests listed = {{0x00, 0x411C9485}, {0x91, 0x8749FC45}, {0x98, 0x8FF28905},
                          {0x99, 0x0D4C13C5}, {0x9B, 0xE46321F3}, {0x9C, 0x0D4C13C5},
                          {0x9E, 0x26674605}};
  expect(listed, combinations, [] {
    std::vector<qvx_long> limits(4);
    GetLensPosLimits(90, &limits[0], &limits[1]);
    GetLensFinePosLimits(90, &limits[2], &limits[3]);
    return limits;
  });
}

}  // namespace
}  // namespace qvx::tests
