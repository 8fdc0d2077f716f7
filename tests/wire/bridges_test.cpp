// Bridge cameras over both of their interfaces: every selector's and every report's bytes, on every
// tier of firmware, and which devices count as bridges.
#include <array>

#include "tests/support/cameras.h"

namespace qvx::tests {
namespace {

using simulator::BridgeFamily;
using simulator::BridgeFirmware;
using simulator::Fault;
using simulator::HidInterface;
using simulator::VirtualBridge;

constexpr std::uint32_t failed = 0x80004005;

class BridgeWire : public CameraTest {
 protected:
  std::uint32_t read(std::uint32_t address, std::uint32_t length, std::uint32_t expected = 0,
                     std::uint32_t device = 0) {
    std::uint32_t value = 0xEEEEEEEE;
    const std::uint32_t status = etLib2_RegRead_DevNum(device, address, length, &value);
    EXPECT_EQ(value, status == 0 ? expected : 0xEEEEEEEE);
    return status;
  }
  std::uint32_t write(std::uint32_t address, std::uint32_t length, std::uint32_t value) {
    return etLib2_RegWrite_DevNum(0, address, length, &value);
  }
  // Register 3 of a slave.
  std::uint32_t readI2c(std::uint32_t slave, std::uint8_t expected = 0) {
    std::uint8_t reg = 3, data = 0xEE;
    const std::uint32_t status = etLib2_I2cRead_DevNum(0, slave, 1, &reg, 1, &data);
    EXPECT_EQ(data, status == 0 ? expected : 0xEE);
    return status;
  }
  std::uint32_t writeI2c(std::uint32_t slave, std::uint8_t data) {
    std::uint8_t reg = 3;
    return etLib2_I2cWrite_DevNum(0, slave, 1, &reg, 1, &data);
  }
  std::string bytes() { return bytesIn(journal()); }
};

using ExtensionUnitWire = BridgeWire;

TEST_F(BridgeWire, RegistersAndI2cOnEveryFirmware) {
  const std::string status = "26[32] 05 00 01, 1[1] 03, 10[3] 05 00 01, get 10 1, 1[1] 01";
  const std::string hidRegisters = "87[4] 09, 93[40] 00 17 02 23 81, 87[4] 08 00 17 02, get 93 41";
  const std::string hidStatus = "87[4] 00 05 01, get 93 41";
  const struct {
    bool overHid;
    BridgeFirmware firmware;
    std::uint32_t fast;
    std::string registers, i2cWrite, i2cRead;  // legacy I2C reads send the sub-address first
  } rows[] = {
      {false, BridgeFirmware::oneShot, 0, "27[32] 00 17 02 23 81, 26[32] 00 17 02, get 26 32",
       "21[32] 00 62 00 01 03 01 4D", "20[32] 00 62 00 01 03 01, get 20 32"},
      {false, BridgeFirmware::wide, 0,
       "27[32] 00 17 02 23 81, 1[1] 05, 11[5] 00 17 02 23 81, 1[1] 01, "
       "26[32] 00 17 02, 1[1] 03, 10[3] 00 17 02, get 10 2, 1[1] 01",
       "21[32] 00 62 00 01 03 01 4D, 1[1] 05, 5[5] 62 02 01 03 4D, 1[1] 01, " + status,
       "20[32] 00 62 00 01 03 01, 21[32] 00 62 00 01 03, 1[1] 04, 5[4] 62 01 00 03, 1[1] 01, " +
           status + ", 1[1] 03, 4[3] 62 01 01, get 4 1, 1[1] 01, " + status},
      {true, BridgeFirmware::oneShot, 1, hidRegisters,
       "97[40] 0D 00 62 01 01 03 01 4D, 93[40] 0D 00 62 01 01 03 01 4D",
       "97[40] 0C 00 62 01 01 03 01, get 93 41"},
      {true, BridgeFirmware::wide, 0, hidRegisters,
       "97[40] 0D 00 62 00 01 03 01 4D, 87[4] 03, 93[40] 62 02 01 03 4D, " + hidStatus,
       "97[40] 0C 00 62 00 01 03 01, 97[40] 0D 00 62 00 01 03, 87[4] 03, 93[40] 62 01 00 03, " +
           hidStatus + ", 87[4] 02 62 01 01, get 93 41, " + hidStatus}};
  for (const auto& row : rows) {
    row.overHid ? plugHid(0x970, {.firmware = row.firmware})
                : plug(0x970, {.firmware = row.firmware});
    etLib2_SelectI2cBus_DevNum(0, 2, row.fast);
    journal();
    EXPECT_EQ(write(0x1700, 2, 0xAABB8123), 0u);
    EXPECT_EQ(read(0x1700, 2, 0x8123), 0u);
    EXPECT_EQ(bytes(), row.registers);
    EXPECT_EQ(writeI2c(0x62, 0x4D), 0u);
    EXPECT_EQ(bytes(), row.i2cWrite);
    EXPECT_EQ(readI2c(0x62, 0x4D), 0u);
    EXPECT_EQ(bytes(), row.i2cRead);
    if (row.firmware == BridgeFirmware::oneShot) continue;  // does not report a missing slave
    EXPECT_EQ(writeI2c(0x46, 0), failed);
    EXPECT_EQ(readI2c(0x46), failed);
  }
}

TEST_F(ExtensionUnitWire, NarrowLegacyFirmware) {
  plug(0x970, {.firmware = BridgeFirmware::narrow});
  EXPECT_EQ(write(0x80, 1, 0xF2), 0u);
  EXPECT_EQ(read(0x80, 1, 0xF2), 0u);
  EXPECT_EQ(bytes(),
            "27[32] 80 00 01 F2, 1[1] 04, 11[4] 80 00 01 F2, 1[1] 01, "
            "1[1] 03, 3[3] 80 01 F2, 1[1] 01, 26[32] 80 00 01, 1[1] 03, 10[3] 80 00 01, 1[1] 01, "
            "1[1] 02, 2[2] 80 01, get 2 1, 1[1] 01");
  EXPECT_EQ(writeI2c(0x62, 0x4D), 0u);
  etLib2_SelectI2cBus_DevNum(0, 2, 1);
  EXPECT_EQ(readI2c(0x62, 0x4D), 0u);
  EXPECT_NE(bytes().find(", 5[4] 62 01 01 03, "), std::string::npos) << "fast, without data";
}

class ScriptedCamera : public ExtensionUnitWire {
 protected:
  std::shared_ptr<ScriptedPort> node = plugScripted({{0}});
};

TEST_F(ScriptedCamera, ItsReplyCountHoldsWithinTheReply) {
  using Reply = std::array<std::uint8_t, 3>;
  for (const auto& [count, expected] : Rows<std::uint8_t, Reply>{
           {0, {0, 0, 0}}, {2, {11, 22, 0}}, {3, {11, 22, 33}}, {255, {11, 22, 33}}}) {
    node->replies = {{count, 11, 22, 33, 44}};
    Reply data = {1, 1, 1};
    EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 0, nullptr, 3, data.data()), 0u);
    EXPECT_EQ(data, expected) << int{count};
  }
}

TEST_F(ScriptedCamera, BytesBeyondARegisterAreZero) {
  node->replies = {{0x12, 0x34, 0x56, 0x78}};
  const std::uint32_t expected[] = {0, 0x12, 0x3412, 0x563412, 0x78563412};
  for (std::uint32_t length = 0; length <= 4; ++length) {
    EXPECT_EQ(read(0x10, length, expected[length]), 0u);
  }
}

TEST_F(ScriptedCamera, WhatItRefusesHasFailed) {
  node->refused = {26, 10, 2};
  EXPECT_EQ(read(0x85, 1), failed);
  EXPECT_EQ(bytes(),
            "26[32] 85 00 01, 1[1] 03, 10[3] 85 00 01, 1[1] 01, 1[1] 02, 2[2] 85 01, 1[1] 01")
      << "no get after a refused set";
  node->refused = {26, 27, 1};
  EXPECT_EQ(read(0x85, 1), failed);
  EXPECT_EQ(write(0x80, 1, 0), failed);
  EXPECT_EQ(bytes(), "26[32] 85 00 01, 1[1] 03, 27[32] 80 00 01, 1[1] 04") << "no access mode";
}

TEST_F(ScriptedCamera, OneShotReadWhoseAnswerIsLostGoesTheLegacyWay) {
  machine().set({Fault::fails, 2, 1});
  EXPECT_EQ(readI2c(0x62), 0u);
  EXPECT_EQ(bytes(),
            "20[32] 00 62 00 01 03 01, get 20 32, 21[32] 00 62 00 01 03, "
            "1[1] 03, 4[3] 62 01 01, get 4 1, 1[1] 01, 26[32] 05 00 01, get 26 32");
}

TEST_F(ScriptedCamera, RequestsTooLongForOneShotGoTheLegacyWay) {
  std::array<std::uint8_t, 64> sub{}, data{};
  const auto written = [&](std::uint32_t subAddress, std::uint32_t length) {
    EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x62, subAddress, sub.data(), length, data.data()), 0u);
    return bytes();
  };
  EXPECT_TRUE(written(27, 0).starts_with("21[32] 00 62 00 1B"));
  EXPECT_TRUE(written(27, 1).starts_with("1[1] 1F, "));
  EXPECT_TRUE(written(64, 64).starts_with("1[1] 83, 5[131] 62 80 01, "));
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 28, sub.data(), 1, data.data()), 0u);
  EXPECT_TRUE(bytes().starts_with("1[1] 1F, ")) << "the sub-address alone";
}

TEST_F(ExtensionUnitWire, CustomCommandsGoToTheCommandSet) {
  plug(0x970);
  std::array<std::uint8_t, 40> buffer = {0xF2, 0x01};
  EXPECT_EQ(etLib2_Custom_CMD_Write(0, 0xF0, 40, buffer.data()), 0u);
  EXPECT_EQ(bytes(), "C66D125B/2[256] F0 F2 01");
  buffer.fill(0xEE);
  buffer[0] = 0xF2;
  EXPECT_EQ(etLib2_Custom_CMD_Read(0, 0xF0, 1, buffer.data()), 0u);
  EXPECT_EQ(bytes(), "C66D125B/2[256] F0 F2, get C66D125B/2 256");
  EXPECT_EQ(buffer[31], 0) << "all 32 bytes come back";
  EXPECT_EQ(buffer[32], 0xEE);
  machine().set({Fault::fails});
  buffer.fill(0xEE);
  EXPECT_EQ(etLib2_Custom_CMD_Read(0, 0xF0, 2, buffer.data()), failed);
  EXPECT_EQ(buffer[2], 0) << "even of a command that failed";
  EXPECT_EQ(etLib2_Custom_CMD_Write(0, 0xF0, 40, buffer.data()), failed);
}

TEST_F(ExtensionUnitWire, FindsTheBridgesAmongAllInputs) {
  VirtualBridge good(0x970), silent(0x971, {}, simulator::Unit::variant1);
  auto foreign = bridgeInput(good);
  foreign.nodes = {nullptr, nullptr};
  machine().videoInputs = {
      {L"no topology", L"x", {}}, foreign, bridgeInput(silent, "1"), bridgeInput(good, "2")};
  EXPECT_EQ(etLib2_Init(), 1);
  EXPECT_EQ(etLib2_GetDevTotalNum(), 2);
  journal();
  EXPECT_EQ(read(0x85, 1), failed) << "its layouts are not known: nothing is sent";
  EXPECT_EQ(bytes(), "");
  EXPECT_EQ(read(0x85, 1, 0, 1), 0u);
  machine().videoInputs.assign(9, bridgeInput(good));
  etLib2_Init();
  EXPECT_EQ(etLib2_GetDevTotalNum(), 8);
}

using HidWire = BridgeWire;

TEST_F(HidWire, LowRegistersInTheNarrowForm) {
  plugHid(0x970);
  etLib2_Init();
  EXPECT_EQ(bytes(), "87[4] 08 00 00 04, get 93 41") << "the chip's identity";
  EXPECT_EQ(write(0x80, 1, 0xF0), 0u);
  EXPECT_EQ(read(0x80, 1, 0xF0), 0u);
  EXPECT_EQ(bytes(), "87[4] 01, 93[40] 80 01 F0, 87[4] 00 80 01, get 93 41");
}

TEST_F(HidWire, GenerationTwoAlwaysTakesTheWideForm) {
  for (const auto family : {BridgeFamily::generation2, BridgeFamily::generation2HidOnly}) {
    plugHid(0x970, {.family = static_cast<std::uint8_t>(family)});
    EXPECT_EQ(read(0x85, 1, 0), 0u);
    EXPECT_EQ(bytes(), "87[4] 08 85 00 01, get 93 41");
  }
}

TEST_F(HidWire, CustomCommandsCarryNoCode) {
  plugHid(0x970);
  std::array<std::uint8_t, 40> buffer{};
  for (const std::uint8_t command : std::array<std::uint8_t, 2>{29, 5}) {
    buffer = {0xF2, 0x01};
    EXPECT_EQ(etLib2_Custom_CMD_Write(0, command, 40, buffer.data()), 0u);
    EXPECT_EQ(etLib2_Custom_CMD_Read(0, command, 40, buffer.data()), 0u);
    EXPECT_EQ(bytes(), "97[40] 1E F2 01, 93[40] 1E F2 01, 97[40] 1D F2 01, get 93 41");
  }
  machine().set({Fault::fails, 2, 1});
  EXPECT_EQ(etLib2_Custom_CMD_Write(0, 5, 40, buffer.data()), failed)
      << "both reports must be taken";
}

TEST_F(HidWire, OneShotReadNeedsABelievableCount) {
  const auto device = std::make_shared<ScriptedPort>();
  machine().hidInterfaces = {{HidInterface{"p", 3, {0x97, 0x93, 0x87}, device}}};
  etLib2_Init();
  for (const auto& [count, status] : Rows<std::uint8_t, std::uint32_t>{
           {0, failed}, {1, 0}, {38, 0}, {39, failed}, {255, failed}}) {
    device->replies = {{count, 0x11, 0x22}};
    std::uint8_t data = 9;
    EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 0, nullptr, 1, &data), status) << int{count};
    EXPECT_EQ(data, status == 0 ? 0x11 : 9);
  }
  device->replies = {{38, 0x11, 0x22}};
  std::array<std::uint8_t, 64> bytes;
  bytes.fill(0xEE);
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 0, nullptr, 64, bytes.data()), 0u);
  EXPECT_EQ(bytes[1], 0x22);
  EXPECT_EQ(bytes[39], 0) << "what the reply cannot hold is 0";
  EXPECT_EQ(read(0x10, 2, 0x1126), 0u) << "bytes beyond a register are 0";
}

TEST_F(HidWire, WhatFitsNoReportFails) {
  plugHid(0x970, {.firmware = BridgeFirmware::wide});
  std::array<std::uint8_t, 64> sub{}, data{};
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x62, 1, sub.data(), 37, data.data()), failed);
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 64, sub.data(), 1, data.data()), failed);
  EXPECT_EQ(bytes(), "");
}

TEST_F(HidWire, KnowsBridgesByTheirReports) {
  using Ids = std::vector<std::uint8_t>;
  for (const auto& [items, ids, isBridge] : Rows<std::optional<std::size_t>, Ids, bool>{
           {2, {0x87, 0x93}, true},
           {3, {0x93, 0x97, 0x87}, true},
           {1, {0x87, 0x93}, false},              // only as many entries count as there are items
           {4, {0x87, 0x93, 0x97, 0x98}, false},  // too many
           {3, {0x87, 0x97, 0x98}, false},
           {3, {0x87}, false},
           {0, {}, false},
           {std::nullopt, {0x87, 0x93}, false}}) {  // cannot be described
    machine().hidInterfaces = {{HidInterface{"p", items, ids, nullptr}}};
    EXPECT_EQ(etLib2_Init(), isBridge ? 1 : 0) << ids.size();
  }
}

TEST_F(HidWire, CountsUpTo24IncludingThoseThatCannotBeOpened) {
  VirtualBridge found(0x970);
  const HidInterface mouse{"mouse", 0, {}, nullptr};
  HidInterface broken = bridgeHidInterface(found, "broken");
  broken.device = nullptr;
  machine().hidInterfaces = {{mouse, broken, mouse, bridgeHidInterface(found, "good")}};
  EXPECT_EQ(etLib2_Init(), 1);
  EXPECT_EQ(etLib2_GetDevTotalNum(), 2);
  EXPECT_EQ(read(0x85, 1), failed);
  EXPECT_EQ(read(0x85, 1, 0, 1), 0u);
  machine().hidInterfaces->assign(30, bridgeHidInterface(found));
  EXPECT_EQ(etLib2_Init(), 1);
  EXPECT_EQ(etLib2_GetDevTotalNum(), 24);
  etLib2_Release();
  EXPECT_EQ(machine().open.hidDevices, 0);
  machine().hidInterfaces.reset();
  EXPECT_EQ(etLib2_Init(), 0);
}

}  // namespace
}  // namespace qvx::tests
