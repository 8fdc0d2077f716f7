#include "simulator/model/lens.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/model/camera.h"

namespace qvx::simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(FocusLens, TakesWhatItsDriversUnderstand) {
  const struct {
    std::uint16_t productId;
    std::uint8_t address, direction;
    Bytes reg, data;
    double offset;
    const char* violation;
  } cases[] = {
      {0x990, 0x46, 1, {}, {118 + 30}, 30, ""},
      {0x985, 0x46, 1, {0x40}, {110 - 5}, -5, ""},
      {0x990, 0x46, 1, {0x50}, {0}, -118, ""},
      {0x990, 0x46, 1, {0x41}, {1}, 0, "lens: unknown register 0x41"},
      {0x990, 0x46, 1, {0, 0}, {1}, 0, "lens: unknown register 0x00"},
      {0x990, 0x46, 1, {}, {1, 2}, 0, "lens: bytes of position: 0x02"},
      {0x9E0, 0x18, 1, {0x06}, {0x91}, 5, ""},
      {0x9E0, 0x18, 2, {0x06}, {0x91}, -5, ""},
      {0x9E0, 0x18, 1, {0xC6}, {0x91}, 5, ""},
      {0x9E0, 0x18, 1, {0x06}, {0x90}, 0, "lens: coil word without its mark: 0x90"},
      {0x9E0, 0x18, 1, {}, {0x06, 0x91}, 0, "lens: bytes of coil word: 0x02"},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(std::string(expected.violation) + " " + std::to_string(expected.offset));
    Camera camera(expected.productId);
    camera.controller().set(0x08, expected.direction);
    I2cDevice* const driver = camera.deviceAt(expected.address);
    ASSERT_NE(driver, nullptr);
    EXPECT_EQ(driver->write(expected.reg, expected.data), *expected.violation == 0);
    EXPECT_EQ(camera.lens().offset(), expected.offset);
    EXPECT_EQ(camera.violations()[0], expected.violation);
  }
}

TEST(FocusLens, StandsOnlyWhereItIsBuiltIn) {
  EXPECT_EQ(Camera(0x970).deviceAt(0x46), nullptr);
  EXPECT_EQ(Camera(0x990).deviceAt(0x18), nullptr);
  Camera camera(0x990);
  std::uint8_t data = 0;
  EXPECT_FALSE(camera.deviceAt(0x46)->read({}, {&data, 1})) << "drivers tell nothing";
}

}  // namespace
}  // namespace qvx::simulator
