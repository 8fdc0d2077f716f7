#include "simulator/model/illumination.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace qvx::simulator {
namespace {

struct Write {
  std::uint8_t reg, value;
};

TEST(Illumination, FollowsTheRegisters) {
  const struct {
    const char* what;
    std::uint16_t productId;
    std::vector<Write> writes;
    double ring, axial, aim;
  } cases[] = {
      {"power-up", 0x9E0, {}, 0, 0, 0},
      {"half of the segments", 0x970, {{4, 5}, {3, 6}}, 0.5, 0, 0},
      {"the level before the switch", 0x970, {{3, 3}, {4, 15}}, 0.5, 0, 0},
      {"ring off, level kept", 0x970, {{3, 6}, {4, 15}, {4, 16}}, 0, 0, 0},
      {"axial beside the ring", 0x970, {{4, 15}, {3, 6}, {3, 13}}, 1, 1, 0},
      {"axial dark again", 0x970, {{3, 13}, {3, 7}}, 0, 0, 0},
      {"axial needs its switch", 0x9E0, {{3, 38}}, 0, 0, 0},
      {"axial with its switch", 0x9E0, {{4, 24}, {3, 35}}, 0, 0.5, 0},
      {"and without it again", 0x9E0, {{4, 24}, {3, 38}, {4, 32}}, 0, 0, 0},
      {"aim counts backwards", 0x9E0, {{4, 40}, {3, 70}}, 0, 0, 1},
      {"aim off", 0x9E0, {{4, 40}, {3, 70}, {4, 48}}, 0, 0, 0},
      {"finer levels with quadrants", 0x9E2, {{4, 15}, {3, 31}}, 1, 0, 0},
      {"a plain ring has none of them", 0x9E0, {{4, 15}, {3, 31}}, 0, 0, 0},
      {"a dark quadrant", 0x9E2, {{4, 15}, {3, 31}, {0x13, 0}}, 0.75, 0, 0},
      {"quadrants by themselves", 0x998, {{4, 15}, {3, 49}}, 1, 0, 0},
      {"no such switch", 0x970, {{4, 15}, {3, 6}, {4, 17}}, 1, 0, 0},
  };
  for (const auto& row : cases) {
    Illumination lights(row.productId);
    for (const Write& write : row.writes) lights.take(write.reg, write.value);
    const auto lit = lights.quadrants();
    EXPECT_DOUBLE_EQ(std::reduce(lit.begin(), lit.end()) / 4, row.ring) << row.what;
    EXPECT_DOUBLE_EQ(lights.axial(), row.axial) << row.what;
    EXPECT_DOUBLE_EQ(lights.aim(), row.aim) << row.what;
  }
}

}  // namespace
}  // namespace qvx::simulator
