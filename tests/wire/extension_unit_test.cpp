// Bridge cameras over the extension unit: every selector's bytes, on every tier of firmware.
#include <array>

#include "etlib2/etLib2.h"
#include "simulator/platform/cameras.h"
#include "tests/support/bytes.h"
#include "tests/support/library.h"

namespace qvx::tests {
namespace {

using simulator::BridgeFirmware;
using simulator::bridgeInput;
using simulator::ExtensionUnit;
using simulator::Fault;
using simulator::VirtualBridge;

class ExtensionUnitWire : public LibraryTest {
 protected:
  void open(VirtualBridge& camera) {
    machine().videoInputs = {bridgeInput(camera)};
    ASSERT_EQ(etLib2_Init(), 1);
    journal();
  }

  std::uint32_t read(std::uint32_t address, std::uint32_t length, std::uint32_t& value) {
    return etLib2_RegRead_DevNum(0, address, length, &value);
  }
  std::uint32_t write(std::uint32_t address, std::uint32_t length, std::uint32_t value) {
    return etLib2_RegWrite_DevNum(0, address, length, &value);
  }
  // Controller registers, after the bus was selected.
  std::uint32_t readController(std::uint8_t reg, std::uint8_t& data) {
    etLib2_SelectI2cBus_DevNum(0, 2, 0);
    journal();
    return etLib2_I2cRead_DevNum(0, 0x62, 1, &reg, 1, &data);
  }
  std::uint32_t writeController(std::uint8_t reg, std::uint8_t data) {
    etLib2_SelectI2cBus_DevNum(0, 2, 0);
    journal();
    return etLib2_I2cWrite_DevNum(0, 0x62, 1, &reg, 1, &data);
  }
};

Journal requests(std::initializer_list<std::string> lines) {
  Journal full;
  for (const std::string& line : lines) {
    const auto space = line.find(' ') + 1;
    full.push_back(line.substr(0, space) + "5A215226/" + line.substr(space));
  }
  return full;
}

TEST_F(ExtensionUnitWire, OneShotFirmware) {
  VirtualBridge camera(0x970);
  open(camera);
  std::uint32_t value = 0;
  EXPECT_EQ(write(0x1700, 2, 0xAABB8123), 0u);
  EXPECT_EQ(read(0x1700, 2, value), 0u);
  EXPECT_EQ(value, 0x8123u);
  EXPECT_EQ(journal(), requests({"set 27: 00 17 02 23 81" + zeros(27),
                                 "set 26: 00 17 02" + zeros(29), "get 26 32"}));
  std::uint8_t data = 0;
  EXPECT_EQ(writeController(0x03, 0x4D), 0u);
  EXPECT_EQ(journal(), requests({"set 21: 00 62 00 01 03 01 4D" + zeros(25)}));
  EXPECT_EQ(readController(0x03, data), 0u);
  EXPECT_EQ(data, 0x4D);
  EXPECT_EQ(journal(), requests({"set 20: 00 62 00 01 03 01" + zeros(26), "get 20 32"}));
  EXPECT_EQ(complaintsOf(camera.camera), "");
}

TEST_F(ExtensionUnitWire, WideLegacyFirmware) {
  VirtualBridge camera(0x970, {.firmware = BridgeFirmware::wide});
  open(camera);
  std::uint32_t value = 0;
  EXPECT_EQ(write(0x1700, 2, 0x8123), 0u);
  EXPECT_EQ(read(0x1700, 2, value), 0u);
  EXPECT_EQ(value, 0x8123u);
  EXPECT_EQ(journal(),
            requests({"set 27: 00 17 02 23 81" + zeros(27), "set 1: 05", "set 11: 00 17 02 23 81",
                      "set 1: 01", "set 26: 00 17 02" + zeros(29), "set 1: 03", "set 10: 00 17 02",
                      "get 10 2", "set 1: 01"}));
  const auto statusCheck = requests(
      {"set 26: 05 00 01" + zeros(29), "set 1: 03", "set 10: 05 00 01", "get 10 1", "set 1: 01"});
  std::uint8_t data = 0;
  EXPECT_EQ(writeController(0x03, 0x4D), 0u);
  EXPECT_EQ(journal(), requests({"set 21: 00 62 00 01 03 01 4D" + zeros(25), "set 1: 05",
                                 "set 5: 62 02 01 03 4D", "set 1: 01"}) +
                           statusCheck);
  EXPECT_EQ(readController(0x03, data), 0u);
  EXPECT_EQ(data, 0x4D);
  EXPECT_EQ(journal(), requests({"set 20: 00 62 00 01 03 01" + zeros(26),
                                 // the sub-address alone, first
                                 "set 21: 00 62 00 01 03 00" + zeros(26), "set 1: 04",
                                 "set 5: 62 01 00 03", "set 1: 01"}) +
                           statusCheck +
                           requests({"set 1: 03", "set 4: 62 01 01", "get 4 1", "set 1: 01"}) +
                           statusCheck);
  EXPECT_EQ(complaintsOf(camera.camera), "");
}

TEST_F(ExtensionUnitWire, NarrowLegacyFirmware) {
  VirtualBridge camera(0x970, {.firmware = BridgeFirmware::narrow});
  open(camera);
  std::uint32_t value = 0;
  EXPECT_EQ(write(0x80, 1, 0xF2), 0u);
  EXPECT_EQ(read(0x80, 1, value), 0u);
  EXPECT_EQ(value, 0xF2u);
  EXPECT_EQ(journal(),
            requests({"set 27: 80 00 01 F2" + zeros(28), "set 1: 04", "set 11: 80 00 01 F2",
                      "set 1: 01", "set 1: 03", "set 3: 80 01 F2", "set 1: 01",
                      "set 26: 80 00 01" + zeros(29), "set 1: 03", "set 10: 80 00 01", "set 1: 01",
                      "set 1: 02", "set 2: 80 01", "get 2 1", "set 1: 01"}));
  std::uint8_t data = 0;
  EXPECT_EQ(readController(0x80, data), 0u);
  EXPECT_EQ(data, camera.camera.controller().at(0x80));
  EXPECT_EQ(complaintsOf(camera.camera), "");
}

TEST_F(ExtensionUnitWire, FastTransfersSayTheirSpeed) {
  VirtualBridge camera(0x970, {.firmware = BridgeFirmware::wide});
  open(camera);
  etLib2_SelectI2cBus_DevNum(0, 2, 1);
  journal();
  std::uint8_t reg = 0x03, data = 0;
  etLib2_I2cRead_DevNum(0, 0x62, 1, &reg, 1, &data);
  const Journal lines = journal();
  EXPECT_EQ(lines[0], "set 5A215226/20: 00 62 01 01 03 01" + zeros(26));
  EXPECT_EQ(lines[3], "set 5A215226/5: 62 01 01 03") << "the speed, when no data follow";
}

TEST_F(ExtensionUnitWire, TransferThatTheSlaveRefusedFails) {
  VirtualBridge camera(0x970, {.firmware = BridgeFirmware::wide});
  open(camera);
  etLib2_SelectI2cBus_DevNum(0, 2, 0);
  std::uint8_t reg = 0, data = 9;
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x46, 0, nullptr, 1, &data), 0x80004005u);
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x46, 1, &reg, 1, &data), 0x80004005u);
  EXPECT_EQ(data, 9);
}

TEST_F(ExtensionUnitWire, RefusedAccessModeEndsTheAccess) {
  VirtualBridge camera(0x970, {.firmware = BridgeFirmware::wide});
  open(camera);
  std::uint32_t value = 0;
  machine().set({Fault::fails, 2, 1});  // the access mode, after the one-shot request
  EXPECT_EQ(read(0x85, 1, value), 0x80004005u);
  EXPECT_EQ(journal(), requests({"set 26: 85 00 01" + zeros(29), "set 1: 03"}));
  machine().set({Fault::fails, 2, 1});
  EXPECT_EQ(write(0x80, 1, 0), 0x80004005u);
  EXPECT_EQ(journal(), requests({"set 27: 80 00 01 00" + zeros(28), "set 1: 04"}));
}

// A camera of its own making: it answers every get with these bytes, and may refuse some selectors.
class ScriptedNode final : public simulator::PropertyNode {
 public:
  explicit ScriptedNode(std::vector<std::uint8_t> reply) : reply_(std::move(reply)) {}

  std::vector<std::uint32_t> refused;
  bool refusesGets = false;

  bool supports(const simulator::PropertySetId&) override { return true; }
  bool set(const simulator::PropertySetId&, std::uint32_t selector,
           std::span<const std::uint8_t>) override {
    return std::find(refused.begin(), refused.end(), selector) == refused.end();
  }
  bool get(const simulator::PropertySetId&, std::uint32_t, std::span<std::uint8_t> data) override {
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = i < reply_.size() ? reply_[i] : 0xEE;
    return !refusesGets;
  }

 private:
  std::vector<std::uint8_t> reply_;
};

class ScriptedCamera : public ExtensionUnitWire {
 protected:
  std::shared_ptr<ScriptedNode> plug(std::vector<std::uint8_t> reply) {
    auto node = std::make_shared<ScriptedNode>(std::move(reply));
    machine().videoInputs = {{L"x", L"x", {node}}};
    etLib2_Init();
    journal();
    return node;
  }
};

TEST_F(ScriptedCamera, ItsReplyCountHoldsWithinTheReply) {
  const struct {
    std::uint8_t count;
    std::array<std::uint8_t, 3> data;  // for a read of three bytes
  } rows[] = {
      {0, {0, 0, 0}}, {2, {11, 22, 0}}, {3, {11, 22, 33}}, {31, {11, 22, 33}}, {255, {11, 22, 33}}};
  for (const auto& row : rows) {
    plug({row.count, 11, 22, 33, 44});
    std::array<std::uint8_t, 3> data = {1, 1, 1};
    EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 0, nullptr, 3, data.data()), 0u);
    EXPECT_EQ(data, row.data) << int{row.count};
  }
}

TEST_F(ScriptedCamera, BytesBeyondARegisterAreZero) {
  plug({0x12, 0x34, 0x56, 0x78});
  const std::uint32_t expected[] = {0, 0x12, 0x3412, 0x563412, 0x78563412};
  for (std::uint32_t length = 0; length <= 4; ++length) {
    std::uint32_t value = ~0u;
    EXPECT_EQ(read(0x10, length, value), 0u);
    EXPECT_EQ(value, expected[length]);
  }
}

TEST_F(ScriptedCamera, OneShotReadWhoseFetchFailsHasFailed) {
  const auto node = plug({1, 2, 3});
  node->refusesGets = true;
  std::uint8_t data = 9;
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 0, nullptr, 1, &data), 0x80004005u);
  EXPECT_EQ(journal().size(), 2u);
  EXPECT_EQ(data, 9);
}

TEST_F(ScriptedCamera, NoGetAfterARefusedSet) {
  const auto node = plug({0, 0});
  node->refused = {26, 10, 2};
  std::uint32_t value = 7;
  EXPECT_EQ(read(0x85, 1, value), 0x80004005u);
  EXPECT_EQ(journal(), requests({"set 26: 85 00 01" + zeros(29), "set 1: 03", "set 10: 85 00 01",
                                 "set 1: 01", "set 1: 02", "set 2: 85 01", "set 1: 01"}));
}

TEST_F(ScriptedCamera, RequestsTooLongForOneShotGoTheLegacyWay) {
  plug({0});
  std::array<std::uint8_t, 64> sub{}, data{};
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x62, 27, sub.data(), 0, data.data()), 0u);
  EXPECT_TRUE(journal()[0].starts_with("set 5A215226/21: 00 62 00 1B"));
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x62, 27, sub.data(), 1, data.data()), 0u);
  EXPECT_EQ(journal()[0], "set 5A215226/1: 1F");
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x62, 64, sub.data(), 64, data.data()), 0u);
  EXPECT_EQ(journal()[1], "set 5A215226/5: 62 80 01" + zeros(128));
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 28, sub.data(), 1, data.data()), 0u);
  EXPECT_EQ(journal()[0], "set 5A215226/1: 1F") << "the sub-address alone";
}

TEST_F(ExtensionUnitWire, CustomCommandsGoToTheCommandSet) {
  VirtualBridge camera(0x970);
  open(camera);
  std::array<std::uint8_t, 40> buffer = {0xF2, 0x01};
  EXPECT_EQ(etLib2_Custom_CMD_Write(0, 0xF0, 40, buffer.data()), 0u);
  EXPECT_EQ(journal(), Journal{"set C66D125B/2: F0 F2 01" + zeros(253)});
  buffer.fill(0xEE);
  buffer[0] = 0xF2;
  EXPECT_EQ(etLib2_Custom_CMD_Read(0, 0xF0, 1, buffer.data()), 0u);
  EXPECT_EQ(journal(), (Journal{"set C66D125B/2: F0 F2" + zeros(254), "get C66D125B/2 256"}));
  EXPECT_EQ(buffer[31], 0) << "all 32 bytes come back";
  EXPECT_EQ(buffer[32], 0xEE);
  machine().set({Fault::fails});
  buffer.fill(0xEE);
  EXPECT_EQ(etLib2_Custom_CMD_Read(0, 0xF0, 2, buffer.data()), 0x80004005u);
  EXPECT_EQ(buffer[2], 0) << "even of a command that failed";
  EXPECT_EQ(etLib2_Custom_CMD_Write(0, 0xF0, 40, buffer.data()), 0x80004005u);
}

TEST_F(ExtensionUnitWire, FindsTheBridgesAmongAllInputs) {
  VirtualBridge camera(0x970), silent(0x971, {}, ExtensionUnit::Variant::variant1);
  auto foreign = bridgeInput(camera);
  foreign.nodes = {nullptr, nullptr};
  machine().videoInputs = {
      {L"no topology", L"x", {}}, foreign, bridgeInput(silent, "1"), bridgeInput(camera, "2")};
  EXPECT_EQ(etLib2_Init(), 1);
  EXPECT_EQ(etLib2_GetDevTotalNum(), 2);
  std::uint32_t value = 0;
  journal();
  EXPECT_EQ(read(0x85, 1, value), 0x80004005u) << "its layouts are not known: nothing is sent";
  EXPECT_EQ(journal(), Journal{});
  EXPECT_EQ(etLib2_RegRead_DevNum(1, 0x85, 1, &value), 0u);
  machine().videoInputs.assign(9, bridgeInput(camera));
  etLib2_Init();
  EXPECT_EQ(etLib2_GetDevTotalNum(), 8);
}

}  // namespace
}  // namespace qvx::tests
