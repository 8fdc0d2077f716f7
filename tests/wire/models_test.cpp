// The models: what a product id and the registers behind it decide, and whatever an application may
// pass to a camera of any.
#include <climits>
#include <functional>
#include <map>

#include "controls/lighting.h"
#include "tests/support/cameras.h"
#include "tests/support/every_export.h"
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

using Registers = std::map<int, int>;
using Digests = std::map<int, std::uint32_t>;  // by block
constexpr int others = -1;                     // all blocks without cameras

// What product ids give and are told, with every register value that a rule looks at: a digest per
// block of 16 ids tells which ids a change is felt by. Workers run on the caller's
// thread: one of their own for each access would take minutes.
class Sweep : public CameraTest {
 protected:
  Sweep() {
    machine().wifi = wifi.server();
    machine().workersInline = true;
  }

  void program(int pid, const Registers& registers) {
    for (const auto& [reg, value] : registers) {
      usb3.camera.controller.set(static_cast<std::uint8_t>(reg), static_cast<std::uint8_t>(value));
      if (bridge != nullptr) set(reg, value);
    }
    wifi.values = registers;
    name(0, pid);
    nCurrPid = pid;
    ul80 = usb3.camera.controller.at(0x80);  // what an earlier call may have left
    ul84 = usb3.camera.controller.at(0x84);
    SEGCount.fill(0);
  }

  void add(std::uint32_t value) { digest = (digest ^ value) * 16777619; }

  // Blocks that are not listed have no camera: their first and their last id give all the same.
  // Older models look at no light register, so that two cameras of them do.
  void expect(const Digests& listed, const std::vector<Registers>& newer,
              const std::vector<Registers>& older, const std::function<void()>& call) {
    for (int block = 0; block < 256; ++block) {
      digest = 2166136261;  // FNV-1a
      const bool isListed = listed.count(block) != 0;
      for (int pid = 16 * block; pid < 16 * (block + 1); pid += isListed ? 1 : 15) {
        for (const Registers& registers : block >= 0x96 && block <= 0x9E ? newer : older) {
          prepare = [&] { program(pid, registers); };
          call();
        }
      }
      EXPECT_EQ(digest, listed.at(isListed ? block : others))
          << "product ids 0x" << std::hex << block << "0 on: {0x" << block << ", 0x" << digest
          << '}';
    }
  }

  void expectLeds(const Digests& listed, int device, const std::vector<Registers>& newer) {
    const std::vector<Registers> older = {{{0x80, 0xFF}, {0x83, 0}, {0x84, 0xFF}},
                                          {{0x80, 0x17}, {0x83, 4}, {0x84, 5}}};
    expect(listed, newer, older, [=, this] {
      for (const int state : {0, 1, 2, 3}) {
        if (device == 0) plug(0x970);  // one that is not in segment mode
        prepare();
        nTmpIdx = device;
        SetLEDState(device, state);
        for (const std::string& line : journal()) {
          for (const char character : line + '\n') add(static_cast<std::uint8_t>(character));
        }
      }
    });
  }

  void expectResults(const Digests& listed, const std::vector<Registers>& combinations,
                     std::vector<qvx_long> (*ask)()) {
    expect(listed, combinations, combinations, [=, this] {
      prepare();
      for (const qvx_long result : ask()) add(static_cast<std::uint32_t>(result));
      journal();
    });
  }

  WifiRegisters wifi;
  simulator::VirtualBridge usb3{0x9B0};
  std::function<void()> prepare;
  std::uint32_t digest = 0;
};

TEST_F(Sweep, LedsOfUsbCameras) {
  plugUsb3(0x9B0, usb3.port());
  std::vector<Registers> combinations;
  for (const int features : {0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x0A, 0x0B, 0x10, 0xFF}) {
    for (const int kind : {0, 4}) {
      for (const int board : {4, 5, 255}) {
        combinations.push_back({{0x80, features}, {0x83, kind}, {0x84, board}});
      }
    }
  }
  const Digests listed = {{others, 0x94DA0815}, {0x87, 0xB2A7C5C5}, {0x88, 0x8BEA3325},
                          {0x89, 0xB08BAEF1},   {0x91, 0x91DE9FA9}, {0x92, 0x3647CD19},
                          {0x96, 0x8633CDED},   {0x97, 0x87725B95}, {0x98, 0x2BAF25A3},
                          {0x99, 0x9B4F9913},   {0x9A, 0x723743C5}, {0x9B, 0x6E745120},
                          {0x9C, 0x74714535},   {0x9D, 0x8767A4B5}, {0x9E, 0x57D5A745}};
  expectLeds(listed, 0, combinations);
}

TEST_F(Sweep, LedsOfWifiCameras) {
  std::vector<Registers> combinations;
  for (const int features : {0x00, 0x01, 0xFF}) {
    for (const int kind : {0, 4}) {
      combinations.push_back({{0x80, features}, {0x83, kind}, {0x84, 0}});
    }
  }
  const Digests listed = {{others, 0xE774BB45}, {0x87, 0x9DC041E5}, {0x88, 0x3A623FE5},
                          {0x89, 0x7A17E925},   {0x91, 0x91313C0D}, {0x92, 0xC9F91D45},
                          {0x96, 0xADBA6066},   {0x97, 0xDF26214E}, {0x98, 0xB20B2545},
                          {0x99, 0x6BF43556},   {0x9A, 0xFBFAB845}, {0x9B, 0x42A31CBA},
                          {0x9C, 0x4C564FC5},   {0x9D, 0xC618A745}, {0x9E, 0xCC988445}};
  expectLeds(listed, 90, combinations);
}

TEST_F(Sweep, FeatureWords) {
  std::vector<Registers> combinations;
  for (const int reg80 : {0x00, 0x01, 0x02, 0x04, 0x10, 0x40, 0x80, 0xD7, 0xFF}) {
    combinations.push_back({{0x80, reg80}, {0x83, 4}});
  }
  combinations.push_back({{0x80, 0xD7}, {0x83, 5}});
  const Digests listed = {{others, 0xB9FEE455}, {0x61, 0xA338E08D}, {0x71, 0xDA9D4705},
                          {0x81, 0x04331BF5},   {0x82, 0x4F8D9F35}, {0x84, 0xA2D800B5},
                          {0x86, 0xC6972345},   {0x87, 0xDA29850D}, {0x88, 0xBA053D8D},
                          {0x89, 0x6D2020ED},   {0x91, 0x28FC9735}, {0x92, 0x4E7D75AD},
                          {0x96, 0x44831684},   {0x97, 0x826B026A}, {0x98, 0xAF391961},
                          {0x99, 0x4A5EC046},   {0x9A, 0xECC6FC35}, {0x9B, 0x9E9F2B5C},
                          {0x9C, 0x93D78E39},   {0x9D, 0x952C2AED}, {0x9E, 0x93D78E39}};
  expectResults(listed, combinations, [] { return std::vector<qvx_long>{GetConfig(90)}; });
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
  const Digests listed = {{others, 0x3411BC5D}, {0x87, 0x411C9485}, {0x88, 0x411C9485},
                          {0x89, 0x411C9485},   {0x91, 0x8749FC45}, {0x92, 0x411C9485},
                          {0x96, 0x411C9485},   {0x97, 0x411C9485}, {0x98, 0x8FF28905},
                          {0x99, 0x0D4C13C5},   {0x9A, 0x411C9485}, {0x9B, 0xE46321F3},
                          {0x9C, 0x0D4C13C5},   {0x9D, 0x411C9485}, {0x9E, 0x26674605}};
  expectResults(listed, combinations, [] {
    std::vector<qvx_long> limits(4);
    GetLensPosLimits(90, &limits[0], &limits[1]);
    GetLensFinePosLimits(90, &limits[2], &limits[3]);
    return limits;
  });
}

}  // namespace
}  // namespace qvx::tests
