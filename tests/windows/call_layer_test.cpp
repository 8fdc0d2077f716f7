// The call layer with real threads and COM. Linked with the library's parts, since the DLL does not
// export it.
#include "etlib2/etLib2.h"

#include <array>
#include <atomic>
#include <thread>
#include <vector>

#include "tests/windows/fixtures/simulated_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

std::uint32_t readStatus(std::uint32_t device) {
  std::uint32_t value = 0;
  return etLib2_RegRead_DevNum(device, 0x85, 1, &value);
}

TEST(CallLayer, EightThreadsEachGetTheirOwnAnswers) {
  SimulatedCameras cameras({"usb:0970", "usb:09c2"});
  ASSERT_EQ(etLib2_Init(), 1);
  constexpr std::uint8_t features[] = {0x56, 0xC7};  // of each camera
  std::atomic<int> late = 0, wrong = 0;
  const auto work = [&](std::uint32_t device) {
    for (std::uint32_t i = 0; i < 50; ++i) {
      std::uint8_t sub = 0x80, data = 0;
      std::array<std::uint8_t, 40> block = {0xF2};
      etLib2_SelectI2cBus_DevNum(device, 2, i & 1);
      const bool isLate = etLib2_I2cRead_DevNum(device, 0x62, 1, &sub, 1, &data) != 0;
      late += isLate;
      late += readStatus(device) != 0;
      late += etLib2_Custom_CMD_Read(device, 0xF0, 40, block.data()) != 0;
      wrong += !isLate && data != features[device];
      wrong += etLib2_GetDevTotalNum() != 2;
    }
  };
  {
    std::vector<std::jthread> threads;
    for (std::uint32_t i = 0; i < 8; ++i) threads.emplace_back(work, i & 1);
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_LE(late, 80) << "of 1200: a busy machine may hold up a few past their limit";
  EXPECT_EQ(cameras.violations(0) + cameras.violations(1), "");
  etLib2_Release();
}

TEST(CallLayer, LateAnswerCostsItsLimit) {
  SimulatedCameras cameras({"usb:0970"});
  ASSERT_EQ(etLib2_Init(), 1);
  cameras[0].setFault({.kind = simulator::Fault::stalls, .stall_ms = 900});
  const ULONGLONG start = GetTickCount64();
  EXPECT_EQ(readStatus(0), 0x80004005u);
  const ULONGLONG taken = GetTickCount64() - start;
  EXPECT_GE(taken, 480u);
  EXPECT_LT(taken, 850u);
  etLib2_Release();  // while the worker is still running
  Sleep(2500);
}

}  // namespace
}  // namespace qvx::tests
