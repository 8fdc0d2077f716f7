// Bridge cameras over HID: every report's bytes, and which devices count as bridges.
#include <array>

#include "etlib2/etLib2.h"
#include "simulator/platform/cameras.h"
#include "tests/support/bytes.h"
#include "tests/support/library.h"

namespace qvx::tests {
namespace {

using simulator::BridgeFamily;
using simulator::BridgeFirmware;
using simulator::bridgeHidInterface;
using simulator::Fault;
using simulator::HidInterface;
using simulator::VirtualBridge;

class HidWire : public LibraryTest {
 protected:
  void open(VirtualBridge& camera) {
    machine().hidInterfaces = {{bridgeHidInterface(camera)}};
    ASSERT_EQ(etLib2_Init(), 1);
    journal();
  }

  // What happened, with "set feature" and "get feature" as "set" and "get".
  Journal reports() {
    Journal lines = journal();
    for (std::string& line : lines) line.erase(3, std::string(" feature").size());
    return lines;
  }

  std::uint32_t value = 0;
  std::uint8_t data = 0;
};

const std::string fetch = "get 93 41";

TEST_F(HidWire, RegistersInTheNarrowAndTheWideForm) {
  VirtualBridge camera(0x970);
  machine().hidInterfaces = {{bridgeHidInterface(camera)}};
  etLib2_Init();
  EXPECT_EQ(reports(), (Journal{"set 87 08 00 00 04", fetch})) << "the chip's identity";
  std::uint32_t word = 0xF0;
  EXPECT_EQ(etLib2_RegWrite_DevNum(0, 0x80, 1, &word), 0u);
  EXPECT_EQ(etLib2_RegRead_DevNum(0, 0x80, 1, &value), 0u);
  EXPECT_EQ(value, 0xF0u);
  word = 0x8123;
  EXPECT_EQ(etLib2_RegWrite_DevNum(0, 0x1700, 2, &word), 0u);
  EXPECT_EQ(etLib2_RegRead_DevNum(0, 0x1700, 2, &value), 0u);
  EXPECT_EQ(value, 0x8123u);
  EXPECT_EQ(reports(), (Journal{"set 87 01 00 00 00", "set 93 80 01 F0" + zeros(37),
                                "set 87 00 80 01 00", fetch,  //
                                "set 87 09 00 00 00", "set 93 00 17 02 23 81" + zeros(35),
                                "set 87 08 00 17 02", fetch}));
  EXPECT_EQ(complaintsOf(camera.camera), "");
}

TEST_F(HidWire, GenerationTwoAlwaysTakesTheWideForm) {
  for (const auto family : {BridgeFamily::generation2, BridgeFamily::generation2HidOnly}) {
    VirtualBridge camera(0x970, {.family = static_cast<std::uint8_t>(family)});
    open(camera);
    EXPECT_EQ(etLib2_RegRead_DevNum(0, 0x85, 1, &value), 0u);
    EXPECT_EQ(reports(), (Journal{"set 87 08 85 00 01", fetch}));
    EXPECT_EQ(complaintsOf(camera.camera), "");
  }
}

TEST_F(HidWire, OneShotI2c) {
  VirtualBridge camera(0x970);
  open(camera);
  etLib2_SelectI2cBus_DevNum(0, 2, 1);
  journal();
  std::uint8_t reg = 0x03;
  data = 0x4D;
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x62, 1, &reg, 1, &data), 0u);
  data = 0;
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 1, &reg, 1, &data), 0u);
  EXPECT_EQ(data, 0x4D);
  EXPECT_EQ(reports(), (Journal{"set 97 0D 00 62 01 01 03 01 4D" + zeros(32),
                                "set 93 0D 00 62 01 01 03 01 4D" + zeros(32),
                                "set 97 0C 00 62 01 01 03 01" + zeros(33), fetch}));
  EXPECT_EQ(complaintsOf(camera.camera), "");
}

TEST_F(HidWire, OlderFirmwareTakesHeaderAndBlock) {
  VirtualBridge camera(0x970, {.firmware = BridgeFirmware::wide});
  open(camera);
  etLib2_SelectI2cBus_DevNum(0, 2, 0);
  journal();
  std::uint8_t reg = 0x03;
  data = 0x4D;
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x62, 1, &reg, 1, &data), 0u);
  const Journal check = {"set 87 00 05 01 00", fetch};
  EXPECT_EQ(reports(), (Journal{"set 97 0D 00 62 00 01 03 01 4D" + zeros(32), "set 87 03 00 00 00",
                                "set 93 62 02 01 03 4D" + zeros(35), check[0], check[1]}));
  data = 0;
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 1, &reg, 1, &data), 0u);
  EXPECT_EQ(data, 0x4D);
  EXPECT_EQ(reports(), (Journal{"set 97 0C 00 62 00 01 03 01" + zeros(33),
                                "set 97 0D 00 62 00 01 03 00" + zeros(33), "set 87 03 00 00 00",
                                "set 93 62 01 00 03" + zeros(36), check[0], check[1],  //
                                "set 87 02 62 01 01", fetch, check[0], check[1]}));
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x46, 0, nullptr, 1, &data), 0x80004005u) << "no such slave";
  EXPECT_EQ(complaintsOf(camera.camera), "");
}

TEST_F(HidWire, CustomCommandsCarryNoCode) {
  VirtualBridge camera(0x970);
  open(camera);
  std::array<std::uint8_t, 40> buffer = {0xF2, 0x01};
  for (const std::uint8_t command : std::array<std::uint8_t, 2>{29, 5}) {
    buffer = {0xF2, 0x01};
    EXPECT_EQ(etLib2_Custom_CMD_Write(0, command, 40, buffer.data()), 0u);
    EXPECT_EQ(etLib2_Custom_CMD_Read(0, command, 40, buffer.data()), 0u);
    EXPECT_EQ(reports(), (Journal{"set 97 1E F2 01" + zeros(37), "set 93 1E F2 01" + zeros(37),
                                  "set 97 1D F2 01" + zeros(37), fetch}));
  }
  machine().set({Fault::fails, 2, 1});
  EXPECT_EQ(etLib2_Custom_CMD_Write(0, 5, 40, buffer.data()), 0x80004005u)
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
  } rows[] = {{0, 0x80004005}, {1, 0}, {38, 0}, {39, 0x80004005}, {255, 0x80004005}};
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
  VirtualBridge camera(0x970, {.firmware = BridgeFirmware::wide});
  open(camera);
  std::array<std::uint8_t, 64> sub{}, bytes{};
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0x62, 1, sub.data(), 37, bytes.data()), 0x80004005u);
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0x62, 64, sub.data(), 1, bytes.data()), 0x80004005u);
  EXPECT_EQ(journal(), Journal{});
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
  VirtualBridge camera(0x970);
  const HidInterface mouse{"mouse", 0, {}, nullptr};
  HidInterface broken = bridgeHidInterface(camera, "broken");
  broken.device = nullptr;
  machine().hidInterfaces = {{mouse, broken, mouse, bridgeHidInterface(camera, "good")}};
  EXPECT_EQ(etLib2_Init(), 1);
  EXPECT_EQ(etLib2_GetDevTotalNum(), 2);
  EXPECT_EQ(etLib2_RegRead_DevNum(0, 0x85, 1, &value), 0x80004005u);
  EXPECT_EQ(etLib2_RegRead_DevNum(1, 0x85, 1, &value), 0u);
  machine().hidInterfaces->assign(30, bridgeHidInterface(camera));
  EXPECT_EQ(etLib2_Init(), 1);
  EXPECT_EQ(etLib2_GetDevTotalNum(), 24);
  etLib2_Release();
  EXPECT_EQ(machine().open.hidDevices, 0);
  machine().hidInterfaces.reset();
  EXPECT_EQ(etLib2_Init(), 0);
}

}  // namespace
}  // namespace qvx::tests
