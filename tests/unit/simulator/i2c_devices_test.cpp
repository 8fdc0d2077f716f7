// What stands on a camera's I2C bus: its controller and the drivers of its lens.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "simulator/model/camera.h"
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
    EXPECT_EQ(Camera(productId).controller.at(reg) & mask, value)
        << std::hex << productId << ' ' << int{reg};
  }
}

TEST(Controller, FeatureRegisterAgreesWithWhatIsBuiltIn) {
  for (std::uint16_t productId = 0x600; productId < 0xA00; ++productId) {
    const Product& product = productFor(productId);
    const Camera camera(productId);
    const Controller& controller = camera.controller;
    const bool hasZoom = product.magnification != CalibrationForm::none;
    const bool zeroAt40 = product.lens == Lens::zeroAt40 || product.lens == Lens::zeroAt40Wide;
    EXPECT_FALSE(hasZoom && zeroAt40) << std::hex << productId;
    if (controller.at(0x80) == erased) continue;
    EXPECT_EQ((controller.at(0x80) & 0x40) != 0, hasZoom) << std::hex << productId;
    EXPECT_EQ((controller.at(0x80) & 0x80) != 0, controller.at(0xCA) != erased)
        << std::hex << productId;
  }
}

TEST(I2cDevices, AcknowledgeWhatTheyHaveAndReportTheRest) {
  enum Kind { read, write };
  const struct {
    std::uint16_t productId;
    std::uint8_t address;
    Kind kind;
    Bytes reg, data;        // what is written, or what is read
    const char* violation;  // none: acknowledged
    double offset = 0;      // of the lens
    std::uint8_t direction = 1;
  } cases[] = {
      {0x970, 0x62, read, {0x80}, {0x56}, ""},
      {0x970, 0x62, read, {0x68}, {0x32, 0x00, 0x90, 0x01}, ""},
      {0x970, 0x62, read, {0xCA}, {0, 0}, "controller: read of unknown register 0xCB"},
      {0x970, 0x62, read, {0x37}, {0}, "controller: read of unknown register 0x37"},
      {0x970, 0x62, read, {0x12}, {0}, "controller: read of unknown register 0x12"},
      {0x9E4, 0x62, read, {0x12}, {31}, ""},  // has quadrants
      {0x970, 0x62, read, {}, {0}, "controller: bytes of register address: 0x00"},
      {0x970, 0x62, read, {0x00, 0x80}, {0}, "controller: bytes of register address: 0x02"},
      {0x970, 0x62, read, {0x80}, {}, "controller: no data for register 0x80"},
      {0x970, 0x62, write, {0x04}, {0x0F}, ""},
      {0x890, 0x62, write, {0x04}, {0x0F}, "controller: write of unknown register 0x04"},
      {0x970, 0x62, write, {0x60}, {0}, "controller: write of read-only register 0x60"},
      {0x970, 0x62, write, {3}, {1, 2}, "controller: write of several bytes from register 0x03"},
      {0x9E0, 0x62, write, {0x08}, {2}, ""},
      {0x9E0, 0x62, write, {0x08}, {3}, "controller: unknown lens direction 0x03"},
      {0x9C0, 0x62, write, {0x08}, {1}, "controller: write of unknown register 0x08"},
      {0x990, 0x46, write, {}, {118 + 30}, "", 30},
      {0x985, 0x46, write, {0x40}, {110 - 5}, "", -5},
      {0x990, 0x46, write, {0x50}, {0}, "", -118},
      {0x990, 0x46, write, {0x41}, {1}, "lens: unknown register 0x41"},
      {0x990, 0x46, write, {0, 0}, {1}, "lens: unknown register 0x00"},
      {0x990, 0x46, write, {}, {1, 2}, "lens: bytes of position: 0x02"},
      {0x990, 0x46, read, {}, {0}, "lens: read of bytes: 0x01"},
      {0x9E0, 0x18, write, {0x06}, {0x91}, "", 5},
      {0x9E0, 0x18, write, {0x06}, {0x91}, "", -5, 2},
      {0x9E0, 0x18, write, {0xC6}, {0x91}, "", 5},
      {0x9E0, 0x18, write, {0x06}, {0x90}, "lens: coil word without its mark: 0x90"},
      {0x9E0, 0x18, write, {}, {0x06, 0x91}, "lens: bytes of coil word: 0x02"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(testing::Message() << std::hex << row.productId << " row " << &row - cases);
    Camera camera(row.productId);
    camera.controller.set(0x08, row.direction);
    I2cDevice& device = *camera.placeAt(row.address)->device;
    const bool isFine = *row.violation == 0;
    Bytes found(row.data.size());
    EXPECT_EQ(row.kind == write ? device.write(row.reg, row.data) : device.read(row.reg, found),
              isFine);
    EXPECT_EQ(camera.violations, isFine ? Violations{} : Violations{row.violation});
    EXPECT_EQ(camera.lens.offset, row.offset);
    if (!isFine || row.address != controllerAddress) continue;
    if (row.kind == write) device.read(row.reg, found);
    EXPECT_EQ(found, row.data);
  }
  EXPECT_FALSE(Camera(0x970).placeAt(0x46)) << "has no lens";
  EXPECT_FALSE(Camera(0x990).placeAt(0x18)) << "has no voice coil";
}

TEST(Controller, FractionBelongsToThePositionReadBefore) {
  Violations violations;
  Controller controller(0x970, violations);
  const auto turnTo = [&](std::uint8_t position, std::uint8_t fraction) {
    controller.set(0x01, position);
    controller.set(0x02, fraction);
  };
  const auto read = [&](std::uint8_t reg) {
    std::uint8_t value = 0;
    controller.read({&reg, 1}, {&value, 1});
    return int{value};
  };
  turnTo(10, 0xC0);
  EXPECT_EQ(read(0x01), 10);
  turnTo(11, 0x00);
  EXPECT_EQ(read(0x02), 0xC0);
  EXPECT_EQ(read(0x02), 0x00);
}

}  // namespace
}  // namespace qvx::simulator
