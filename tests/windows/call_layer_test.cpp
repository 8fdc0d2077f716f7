// The call layer over real threads, COM and the system's mutex. Linked with the library's parts:
// the DLL does not export it.
#include "etlib2/etLib2.h"

#include <array>
#include <atomic>
#include <thread>
#include <vector>

#include "tests/windows/fixtures/resources.h"
#include "tests/windows/fixtures/virtual_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

constexpr char mutexName[] = "Empia VideoClass HidClass Library";
constexpr wchar_t holdArgument[] = L"--hold-mutex";

std::uint32_t readStatus(std::uint32_t device) {
  std::uint32_t value = 0;
  return etLib2_RegRead_DevNum(device, 0x85, 1, &value);
}

TEST(CallLayer, EightThreadsLeaveNoThreadAndNoHandle) {
  VirtualCameras cameras({"0970", "09c2"});
  ASSERT_EQ(etLib2_Init(), 1);
  std::atomic<int> wrong = 0, late = 0;
  const auto work = [&](std::uint32_t device, int rounds) {
    for (int i = 0; i < rounds; ++i) {
      std::uint8_t sub = 0x80, data = 0;
      std::array<std::uint8_t, 40> block = {0xF2};
      etLib2_SelectI2cBus_DevNum(device, 2, static_cast<std::uint32_t>(i & 1));
      wrong += etLib2_GetDevTotalNum() != 2;
      late += readStatus(device) != 0;
      const bool answered = etLib2_I2cRead_DevNum(device, 0x62, 1, &sub, 1, &data) == 0;
      answered ? wrong += data == 0 : ++late;
      late += etLib2_Custom_CMD_Read(device, 0xF0, 40, block.data()) != 0;
    }
  };
  work(0, 1);  // whatever is set up once
  const Resources before = resources();
  std::vector<std::thread> threads;
  for (std::uint32_t i = 0; i < 8; ++i) threads.emplace_back(work, i & 1, 50);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_LE(late, 80) << "of 1200: a busy machine may hold up a few past their limit";
  Resources left = resources() - before;
  for (int i = 0; i < 50 && left.threads > 0; ++i) {
    Sleep(100);  // late workers run to their end
    left = resources() - before;
  }
  EXPECT_LE(left.handles, 2);
  EXPECT_LE(left.threads, 0);
  EXPECT_EQ(cameras.violations(0) + cameras.violations(1), "");
  etLib2_Release();
}

TEST(CallLayer, OpeningAndClosingLeavesNoHandle) {
  VirtualCameras cameras({"0970"});
  etLib2_Init();
  etLib2_Release();
  const Resources before = resources();
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(etLib2_Init(), 1);
    EXPECT_EQ(readStatus(0), 0u);
    if (i % 2 == 0) etLib2_Release();
  }
  etLib2_Release();
  EXPECT_LE((resources() - before).handles, 2);
}

TEST(CallLayer, LateAnswerCostsItsLimit) {
  VirtualCameras cameras({"0970"});
  ASSERT_EQ(etLib2_Init(), 1);
  cameras.set(0, "fault=stall:900ms:1");
  const ULONGLONG start = GetTickCount64();
  EXPECT_EQ(readStatus(0), 0x80004005u);
  const ULONGLONG taken = GetTickCount64() - start;
  EXPECT_GE(taken, 480u);
  EXPECT_LT(taken, 850u);
  etLib2_Release();  // while the worker is still at it
  Sleep(2500);
}

// Another process of this program that holds the library's mutex until it is killed.
class Holder {
 public:
  Holder() {
    const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, L"qvx-test-mutex-held");
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring line = L"\"" + std::wstring(program) + L"\" " + holdArgument;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    started_ = CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                              &startup, &process_) != FALSE &&
               WaitForSingleObject(ready, 10000) == WAIT_OBJECT_0;
    CloseHandle(ready);
  }
  ~Holder() { kill(); }

  bool started() const { return started_; }
  void kill() {
    if (process_.hProcess == nullptr) return;
    TerminateProcess(process_.hProcess, 9);
    WaitForSingleObject(process_.hProcess, 5000);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
    process_ = {};
  }

  static int run() {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, mutexName);
    WaitForSingleObject(mutex, 5000);
    SetEvent(OpenEventW(EVENT_MODIFY_STATE, FALSE, L"qvx-test-mutex-held"));
    Sleep(INFINITE);
    return 0;
  }

 private:
  PROCESS_INFORMATION process_{};
  bool started_ = false;
};

TEST(CallLayer, AnotherProcessExcludesItAndItsDeathDoesNot) {
  VirtualCameras cameras({"0970"});
  ASSERT_EQ(etLib2_Init(), 1);
  EXPECT_EQ(readStatus(0), 0u);
  Holder other;
  ASSERT_TRUE(other.started());
  EXPECT_EQ(readStatus(0), 0x80004005u);
  std::array<std::uint8_t, 40> block{};
  EXPECT_EQ(etLib2_Custom_CMD_Read(0, 0xF0, 40, block.data()), 0x80004005u);
  other.kill();
  Sleep(1100);  // for the worker that still waits
  EXPECT_EQ(readStatus(0), 0u) << "an abandoned mutex counts as obtained";
  etLib2_Release();
}

}  // namespace
}  // namespace qvx::tests

int main(int argc, char** argv) {
  if (argc == 2 && std::string(argv[1]) == "--hold-mutex") return qvx::tests::Holder::run();
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
