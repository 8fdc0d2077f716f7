#include "simulator/model/controller.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "simulator/model/product.h"

namespace qvx::simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;

// What the variants of a family are told apart by, and which set-up a client chooses from.
TEST(Controller, ProductIdDecidesWhatAClientFinds) {
  const struct {
    std::uint16_t productId;
    std::uint8_t reg, mask, value;
  } cases[] = {
      {0x870, 0x80, 0xFF, 0xFF}, {0x870, 0xC5, 0xFF, 0xFF}, {0x870, 0xCA, 0xFF, 0xFF},
      {0x892, 0xC3, 0xFF, 0x01}, {0x912, 0x40, 0xFF, 110},  {0x970, 0x80, 0x46, 0x46},
      {0x978, 0x80, 0x47, 0x43}, {0x978, 0x84, 0xFF, 5},    {0x980, 0x50, 0xFF, 0xFF},
      {0x987, 0xC2, 0xFF, 0},    {0x988, 0xC2, 0xFF, 1},    {0x990, 0x50, 0xFF, 118},
      {0x998, 0x83, 0xFF, 4},    {0x9B0, 0x80, 0x47, 0x43}, {0x9B0, 0xCA, 0xFF, 2},
      {0x9B0, 0x5F, 0xFF, 12},   {0x9C0, 0x80, 0x04, 0x04}, {0x9C4, 0x80, 0x06, 0x02},
      {0x9C7, 0x80, 0x40, 0x00}, {0x9D0, 0x80, 0x06, 0x06}, {0x9D4, 0x80, 0x06, 0x02},
      {0x9D7, 0x80, 0x06, 0x06}, {0x9E0, 0x80, 0x06, 0x06}, {0x9E4, 0x80, 0x0F, 0x0A},
      {0x9E4, 0x84, 0x0F, 0x04}, {0x9E0, 0xC0, 0xFF, 8},    {0x9E7, 0x80, 0x40, 0x00},
  };
  for (const auto& [productId, reg, mask, value] : cases) {
    EXPECT_EQ(controllerFor(productId).values[reg] & mask, value)
        << std::hex << productId << ' ' << int{reg};
  }
}

TEST(Controller, FeatureRegisterAgreesWithWhatIsBuiltIn) {
  for (std::uint16_t productId = 0x600; productId < 0xA00; ++productId) {
    const Product& product = productFor(productId);
    const ControllerContents contents = controllerFor(productId);
    const bool hasZoom = product.magnification != CalibrationForm::none;
    const bool zeroAt40 = product.lens == Lens::zeroAt40 || product.lens == Lens::zeroAt40Wide;
    EXPECT_FALSE(hasZoom && zeroAt40) << std::hex << productId;
    if (contents.values[0x80] == erased) continue;
    EXPECT_EQ((contents.values[0x80] & 0x40) != 0, hasZoom) << std::hex << productId;
    EXPECT_EQ((contents.values[0x80] & 0x80) != 0, contents.values[0xCA] != erased)
        << std::hex << productId;
  }
}

struct Access {
  const char* what;
  std::uint16_t productId;
  bool isWrite;
  Bytes subAddress, data;  // what is written, or what is read
  const char* violation;   // null: acknowledged
};

TEST(Controller, AcknowledgesWhatItHasAndReportsTheRest) {
  const Access cases[] = {
      {"one register", 0x970, false, {0x80}, {0x56}, nullptr},
      {"a row of registers", 0x970, false, {0x68}, {0x32, 0x00, 0x90, 0x01}, nullptr},
      {"a row past the end", 0x970, false, {0xCA}, {0, 0}, "read of unknown register 0xCB"},
      {"no such register", 0x970, false, {0x37}, {0}, "read of unknown register 0x37"},
      {"no quadrants", 0x970, false, {0x12}, {0}, "read of unknown register 0x12"},
      {"quadrants", 0x9E4, false, {0x12}, {31}, nullptr},
      {"no address", 0x970, false, {}, {0}, "bytes of register address: 0x00"},
      {"wide address", 0x970, false, {0x00, 0x80}, {0}, "bytes of register address: 0x02"},
      {"no data", 0x970, false, {0x80}, {}, "no data for register 0x80"},
      {"light switch", 0x970, true, {0x04}, {0x0F}, nullptr},
      {"lights on pins", 0x890, true, {0x04}, {0x0F}, "write of unknown register 0x04"},
      {"calibration", 0x970, true, {0x60}, {0}, "write of read-only register 0x60"},
      {"two bytes", 0x970, true, {0x03}, {1, 2}, "write of several bytes from register 0x03"},
      {"lens direction", 0x9E0, true, {0x08}, {2}, nullptr},
      {"third direction", 0x9E0, true, {0x08}, {3}, "unknown lens direction 0x03"},
      {"no voice coil", 0x9C0, true, {0x08}, {1}, "write of unknown register 0x08"},
  };
  for (const Access& access : cases) {
    SCOPED_TRACE(access.what);
    Violations violations;
    Controller controller(access.productId, violations);
    Bytes data(access.data.size());
    const bool acknowledged = access.isWrite ? controller.write(access.subAddress, access.data)
                                             : controller.read(access.subAddress, data);
    EXPECT_EQ(acknowledged, access.violation == nullptr);
    if (acknowledged && access.isWrite) controller.read(access.subAddress, data);
    EXPECT_EQ(data, acknowledged ? access.data : data);
    const std::string expected =
        access.violation == nullptr ? "" : std::string("controller: ") + access.violation;
    EXPECT_EQ(violations[0], expected);
  }
}

TEST(Controller, FractionBelongsToThePositionReadBefore) {
  Violations violations;
  Controller controller(0x970, violations);
  const auto read = [&](std::uint8_t reg) {
    std::uint8_t value = 0;
    controller.read({&reg, 1}, {&value, 1});
    return int{value};
  };
  controller.set(0x01, 10);
  controller.set(0x02, 0xC0);
  EXPECT_EQ(read(0x01), 10);
  controller.set(0x01, 11);
  controller.set(0x02, 0x00);
  EXPECT_EQ(read(0x02), 0xC0);
  EXPECT_EQ(read(0x02), 0x00);
}

TEST(Violations, AreAllCountedWhenTheListIsFull) {
  Violations violations;
  for (std::uint32_t i = 0; i < 40; ++i) violations.add({"number ", hex(i, 2)});
  EXPECT_EQ(violations.count(), 40U);
  EXPECT_EQ(violations[31], "number 0x1F");
  EXPECT_EQ(violations[32], "");
  violations.clear();
  EXPECT_EQ(violations[0], "");
}

}  // namespace
}  // namespace qvx::simulator
