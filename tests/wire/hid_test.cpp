// Bridge cameras over HID: every report's bytes, and which devices count as bridges.
#include <array>

#include "tests/support/cameras.h"

namespace qvx::tests {
namespace {

using simulator::BridgeFamily;
using simulator::BridgeFirmware;
using simulator::bridgeHidInterface;
using simulator::Fault;
using simulator::HidInterface;
using simulator::VirtualBridge;

constexpr std::uint32_t failed = 0x80004005;

class HidWire : public CameraTest {
 protected:
  std::string reports() { return bytesIn(journal()); }

  void expectRegister(std::uint32_t address, std::uint32_t length, std::uint32_t written) {
    EXPECT_EQ(etLib2_RegWrite_DevNum(0, address, length, &written), 0u);
    EXPECT_EQ(etLib2_RegRead_DevNum(0, address, length, &value), 0u);
    EXPECT_EQ(value, written);
  }
  void expectController() {
    std::uint8_t reg = 0x03;
    data = 0x4D;
    EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x62, 1, &reg, 1, &data), 0u);
    data = 0;
    EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 1, &reg, 1, &data), 0u);
    EXPECT_EQ(data, 0x4D);
  }

  std::uint32_t value = 0;
  std::uint8_t data = 0;
};

TEST_F(HidWire, RegistersInTheNarrowAndTheWideForm) {
  plugHid(0x970);
  etLib2_Init();
  EXPECT_EQ(reports(), "87[4] 08 00 00 04, get 93 41") << "the chip's identity";
  expectRegister(0x80, 1, 0xF0);
  EXPECT_EQ(reports(), "87[4] 01, 93[40] 80 01 F0, 87[4] 00 80 01, get 93 41");
  expectRegister(0x1700, 2, 0x8123);
  EXPECT_EQ(reports(), "87[4] 09, 93[40] 00 17 02 23 81, 87[4] 08 00 17 02, get 93 41");
}

TEST_F(HidWire, GenerationTwoAlwaysTakesTheWideForm) {
  for (const auto family : {BridgeFamily::generation2, BridgeFamily::generation2HidOnly}) {
    plugHid(0x970, {.family = static_cast<std::uint8_t>(family)});
    EXPECT_EQ(etLib2_RegRead_DevNum(0, 0x85, 1, &value), 0u);
    EXPECT_EQ(reports(), "87[4] 08 85 00 01, get 93 41");
  }
}

TEST_F(HidWire, OneShotI2c) {
  plugHid(0x970);
  etLib2_SelectI2cBus_DevNum(0, 2, 1);
  journal();
  expectController();
  EXPECT_EQ(reports(),
            "97[40] 0D 00 62 01 01 03 01 4D, 93[40] 0D 00 62 01 01 03 01 4D, "
            "97[40] 0C 00 62 01 01 03 01, get 93 41");
}

TEST_F(HidWire, OlderFirmwareTakesHeaderAndBlock) {
  plugHid(0x970, {.firmware = BridgeFirmware::wide});
  expectController();
  EXPECT_EQ(reports(),
            "97[40] 0D 00 62 00 01 03 01 4D, 87[4] 03, 93[40] 62 02 01 03 4D, "
            "87[4] 00 05 01, get 93 41, "
            "97[40] 0C 00 62 00 01 03 01, "
            "97[40] 0D 00 62 00 01 03, 87[4] 03, 93[40] 62 01 00 03, 87[4] 00 05 01, get 93 41, "
            "87[4] 02 62 01 01, get 93 41, 87[4] 00 05 01, get 93 41");
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x46, 0, nullptr, 1, &data), failed) << "no such slave";
}

TEST_F(HidWire, CustomCommandsCarryNoCode) {
  plugHid(0x970);
  std::array<std::uint8_t, 40> buffer = {0xF2, 0x01};
  for (const std::uint8_t command : std::array<std::uint8_t, 2>{29, 5}) {
    buffer = {0xF2, 0x01};
    EXPECT_EQ(etLib2_Custom_CMD_Write(0, command, 40, buffer.data()), 0u);
    EXPECT_EQ(etLib2_Custom_CMD_Read(0, command, 40, buffer.data()), 0u);
    EXPECT_EQ(reports(), "97[40] 1E F2 01, 93[40] 1E F2 01, 97[40] 1D F2 01, get 93 41");
  }
  machine().set({Fault::fails, 2, 1});
  EXPECT_EQ(etLib2_Custom_CMD_Write(0, 5, 40, buffer.data()), failed)
      << "both reports must be taken";
}

// A device that takes every report and answers these bytes.
class ScriptedDevice final : public simulator::FeatureDevice {
 public:
  std::array<std::uint8_t, 41> reply{};

  bool set(std::span<const std::uint8_t>) override { return true; }
  bool get(std::span<std::uint8_t> report) override {
    std::copy(reply.begin(), reply.end(), report.begin());
    return true;
  }
};

TEST_F(HidWire, OneShotReadNeedsABelievableCount) {
  const auto device = std::make_shared<ScriptedDevice>();
  machine().hidInterfaces = {{HidInterface{"p", 3, {0x97, 0x93, 0x87}, device}}};
  etLib2_Init();
  const struct {
    std::uint8_t count;
    std::uint32_t status;
  } rows[] = {{0, failed}, {1, 0}, {38, 0}, {39, failed}, {255, failed}};
  for (const auto& row : rows) {
    device->reply = {row.count, 0x11, 0x22};
    data = 9;
    EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 0, nullptr, 1, &data), row.status) << int{row.count};
    EXPECT_EQ(data, row.status == 0 ? 0x11 : 9);
  }
  device->reply = {38, 0x11, 0x22};
  std::array<std::uint8_t, 64> bytes;
  bytes.fill(0xEE);
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 0, nullptr, 64, bytes.data()), 0u);
  EXPECT_EQ(bytes[1], 0x22);
  EXPECT_EQ(bytes[39], 0) << "what the reply cannot hold is 0";
}

TEST_F(HidWire, WhatFitsNoReportFails) {
  plugHid(0x970, {.firmware = BridgeFirmware::wide});
  std::array<std::uint8_t, 64> sub{}, bytes{};
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x62, 1, sub.data(), 37, bytes.data()), failed);
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 64, sub.data(), 1, bytes.data()), failed);
  EXPECT_EQ(reports(), "");
}

TEST_F(HidWire, KnowsBridgesByTheirReports) {
  const struct {
    std::optional<std::size_t> items;
    std::vector<std::uint8_t> ids;
    bool isBridge;
  } rows[] = {
      {2, {0x87, 0x93}, true},
      {3, {0x93, 0x97, 0x87}, true},
      {1, {0x87, 0x93}, false},              // only as many entries count as there are items
      {4, {0x87, 0x93, 0x97, 0x98}, false},  // too many
      {3, {0x87, 0x97, 0x98}, false},
      {3, {0x87}, false},
      {0, {}, false},
      {std::nullopt, {0x87, 0x93}, false},  // cannot be described
  };
  for (const auto& row : rows) {
    machine().hidInterfaces = {{HidInterface{"p", row.items, row.ids, nullptr}}};
    EXPECT_EQ(etLib2_Init(), row.isBridge ? 1 : 0) << row.ids.size();
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
  EXPECT_EQ(etLib2_RegRead_DevNum(0, 0x85, 1, &value), failed);
  EXPECT_EQ(etLib2_RegRead_DevNum(1, 0x85, 1, &value), 0u);
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
