// Bridge cameras over the extension unit: every selector's bytes, on every tier of firmware.
#include <array>

#include "tests/support/cameras.h"

namespace qvx::tests {
namespace {

using simulator::BridgeFirmware;
using simulator::bridgeInput;
using simulator::Fault;
using simulator::VirtualBridge;

constexpr std::uint32_t failed = 0x80004005;

class ExtensionUnitWire : public CameraTest {
 protected:
  std::uint32_t read(std::uint32_t address, std::uint32_t length, std::uint32_t expected = 0) {
    std::uint32_t value = 0xEEEEEEEE;
    const std::uint32_t status = etLib2_RegRead_DevNum(0, address, length, &value);
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

TEST_F(ExtensionUnitWire, OneShotFirmware) {
  plug(0x970);
  EXPECT_EQ(write(0x1700, 2, 0xAABB8123), 0u);
  EXPECT_EQ(read(0x1700, 2, 0x8123), 0u);
  EXPECT_EQ(bytes(), "27[32] 00 17 02 23 81, 26[32] 00 17 02, get 26 32");
  EXPECT_EQ(writeI2c(0x62, 0x4D), 0u);
  EXPECT_EQ(readI2c(0x62, 0x4D), 0u);
  EXPECT_EQ(bytes(), "21[32] 00 62 00 01 03 01 4D, 20[32] 00 62 00 01 03 01, get 20 32");
}

TEST_F(ExtensionUnitWire, WideLegacyFirmware) {
  plug(0x970, {.firmware = BridgeFirmware::wide});
  EXPECT_EQ(write(0x1700, 2, 0x8123), 0u);
  EXPECT_EQ(read(0x1700, 2, 0x8123), 0u);
  EXPECT_EQ(bytes(),
            "27[32] 00 17 02 23 81, 1[1] 05, 11[5] 00 17 02 23 81, 1[1] 01, "
            "26[32] 00 17 02, 1[1] 03, 10[3] 00 17 02, get 10 2, 1[1] 01");
  const std::string statusCheck = ", 26[32] 05 00 01, 1[1] 03, 10[3] 05 00 01, get 10 1, 1[1] 01";
  EXPECT_EQ(writeI2c(0x62, 0x4D), 0u);
  EXPECT_EQ(bytes(),
            "21[32] 00 62 00 01 03 01 4D, 1[1] 05, 5[5] 62 02 01 03 4D, 1[1] 01" + statusCheck);
  EXPECT_EQ(readI2c(0x62, 0x4D), 0u);
  EXPECT_EQ(bytes(),
            "20[32] 00 62 00 01 03 01, "
            // the sub-address alone, first
            "21[32] 00 62 00 01 03, 1[1] 04, 5[4] 62 01 00 03, 1[1] 01" +
                statusCheck + ", 1[1] 03, 4[3] 62 01 01, get 4 1, 1[1] 01" + statusCheck);
  etLib2_SelectI2cBus_DevNum(0, 2, 1);
  journal();
  EXPECT_EQ(readI2c(0x62, 0x4D), 0u);
  EXPECT_TRUE(
      bytes().starts_with("20[32] 00 62 01 01 03 01, 21[32] 00 62 01 01 03, "
                          "1[1] 04, 5[4] 62 01 01 03, "))
      << "the speed, when no data follow";
  EXPECT_EQ(writeI2c(0x46, 0), failed) << "no such slave";
  EXPECT_EQ(readI2c(0x46), failed);
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
  EXPECT_EQ(readI2c(0x62, 0x4D), 0u);
}

TEST_F(ExtensionUnitWire, RefusedAccessModeEndsTheAccess) {
  plug(0x970, {.firmware = BridgeFirmware::wide});
  machine().set({Fault::fails, 2, 1});  // the access mode, after the one-shot request
  EXPECT_EQ(read(0x85, 1), failed);
  EXPECT_EQ(bytes(), "26[32] 85 00 01, 1[1] 03");
  machine().set({Fault::fails, 2, 1});
  EXPECT_EQ(write(0x80, 1, 0), failed);
  EXPECT_EQ(bytes(), "27[32] 80 00 01, 1[1] 04");
}

class ScriptedCamera : public ExtensionUnitWire {
 protected:
  ScriptedCamera() {
    machine().videoInputs = {{L"x", L"x", {node}}};
    node->replies = {{0}};
    etLib2_Init();
    journal();
  }

  std::shared_ptr<ScriptedNode> node = std::make_shared<ScriptedNode>();
};

TEST_F(ScriptedCamera, ItsReplyCountHoldsWithinTheReply) {
  const struct {
    std::uint8_t count;
    std::array<std::uint8_t, 3> data;  // for a read of three bytes
  } rows[] = {
      {0, {0, 0, 0}}, {2, {11, 22, 0}}, {3, {11, 22, 33}}, {31, {11, 22, 33}}, {255, {11, 22, 33}}};
  for (const auto& row : rows) {
    node->replies = {{row.count, 11, 22, 33, 44}};
    std::array<std::uint8_t, 3> data = {1, 1, 1};
    EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 0, nullptr, 3, data.data()), 0u);
    EXPECT_EQ(data, row.data) << int{row.count};
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
  node->refusesGets = true;
  EXPECT_EQ(readI2c(0x62), failed);
  EXPECT_EQ(bytes(), "20[32] 00 62 00 01 03 01, get 20 32");
}

TEST_F(ScriptedCamera, RequestsTooLongForOneShotGoTheLegacyWay) {
  const struct {
    bool reads;
    std::uint32_t subAddress, data;
    const char* begins;
  } rows[] = {{false, 27, 0, "21[32] 00 62 00 1B, "},
              {false, 27, 1, "1[1] 1F, "},
              {false, 64, 64, "1[1] 83, 5[131] 62 80 01, "},
              {true, 28, 1, "1[1] 1F, "}};  // the sub-address alone
  std::array<std::uint8_t, 64> sub{}, data{};
  for (const auto& row : rows) {
    const std::uint32_t status =
        row.reads
            ? etLib2_I2cRead_DevNum(0, 0x62, row.subAddress, sub.data(), row.data, data.data())
            : etLib2_I2cWrite_DevNum(0, 0x62, row.subAddress, sub.data(), row.data, data.data());
    EXPECT_EQ(status, 0u);
    EXPECT_TRUE((bytes() + ", ").starts_with(row.begins)) << row.subAddress << ' ' << row.data;
  }
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
  VirtualBridge good(0x970), silent(0x971, {}, simulator::ExtensionUnit::Variant::variant1);
  auto foreign = bridgeInput(good);
  foreign.nodes = {nullptr, nullptr};
  machine().videoInputs = {
      {L"no topology", L"x", {}}, foreign, bridgeInput(silent, "1"), bridgeInput(good, "2")};
  EXPECT_EQ(etLib2_Init(), 1);
  EXPECT_EQ(etLib2_GetDevTotalNum(), 2);
  journal();
  EXPECT_EQ(read(0x85, 1), failed) << "its layouts are not known: nothing is sent";
  EXPECT_EQ(bytes(), "");
  std::uint32_t value = 0;
  EXPECT_EQ(etLib2_RegRead_DevNum(1, 0x85, 1, &value), 0u);
  machine().videoInputs.assign(9, bridgeInput(good));
  etLib2_Init();
  EXPECT_EQ(etLib2_GetDevTotalNum(), 8);
}

}  // namespace
}  // namespace qvx::tests
