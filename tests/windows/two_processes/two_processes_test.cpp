// Two processes use the same bridges over the system's HID stack while they are killed during
// transfers and restarted. Linked with the library's parts, because only the call layer is
// thread-safe. QVX_SECONDS and QVX_SEED in the environment set the duration and the random
// sequence.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "etlib2/etLib2.h"
#include "tests/windows/fixtures/process.h"
#include "tests/windows/fixtures/simulated_cameras.h"
#include "tests/windows/support.h"
#include "tests/windows/two_processes/shared.h"

namespace qvx::tests {
namespace {

unsigned numberFrom(const char* variable, unsigned otherwise) {
  const char* const text = std::getenv(variable);
  return text == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

class TwoProcesses : public testing::Test {
 protected:
  static constexpr ULONGLONG maxTime_ms = 60'000;

  void startWorker(int number) {
    for (int i = 0; i < threadsPerProcess; ++i) {
      shared().owners[number * threadsPerProcess + i].seen_ms = GetTickCount64();
    }
    shared().atWork[number] = false;
    workers_[number].emplace(
        Process::again(L"--work " + std::to_wstring(number) + L" " + std::to_wstring(random_())));
  }

  // Kills and restarts processes, mostly at work and sometimes during their start. Goes on until a
  // transfer was cut off and every owner has succeeded.
  void disturb(SimulatedCameras& cameras, unsigned seconds) {
    constexpr unsigned maxPause_ms = 500, oneInSo = 5;
    const ULONGLONG start = GetTickCount64();
    const auto isEnough = [&](ULONGLONG time_ms) {
      const bool all = std::ranges::all_of(shared().owners,
                                           [](auto&owner) { return owner.succeeded != 0; }),
                 cut = !(cameras.violations(0) + cameras.violations(1)).empty();
      return time_ms > seconds * 1000 && ((all && cut) || time_ms > maxTime_ms);
    };
    while (!isEnough(GetTickCount64() - start) && shared().mistakes == 0 && !HasFailure()) {
      const int victim = static_cast<int>(random_() % processCount);
      if (random_() % oneInSo != 0) awaitWork(victim);
      Sleep(random_() % maxPause_ms);
      workers_[victim].reset();
      ++kills_;
      startWorker(victim);
    }
  }

  void awaitWork(int number) {
    while (!shared().atWork[number] && !HasFailure()) {
      expectNobodyHangs();
      Sleep(1);
    }
  }

  // A call takes at most 1.5 s, and a starting process opens the bridges soon.
  static void expectNobodyHangs() {
    constexpr ULONGLONG limit_ms = 15000;
    for (int owner = 0; owner < ownerCount; ++owner) {
      const ULONGLONG seen_ms = shared().owners[owner].seen_ms, now_ms = GetTickCount64();
      EXPECT_TRUE(seen_ms == 0 || now_ms < seen_ms + limit_ms) << "owner " << owner << " hangs";
    }
  }

  void expectAllEnd() {
    shared().ends = true;
    for (const auto& worker : workers_) EXPECT_EQ(worker->exitCode(15'000), 0u);
  }

  void expectMuchWasDone() {
    unsigned succeeded = 0;
    for (const Owner& owner : shared().owners) {
      EXPECT_GT(owner.succeeded, 0u);
      succeeded += owner.succeeded;
      late_ += owner.failed;
    }
    EXPECT_GT(succeeded, 3 * late_);
    std::printf("%u kills; %u calls succeeded, %u came too late\n", kills_, succeeded, late_);
  }

  // A transfer that was cut off is dropped when the next one starts. A chip that reports its
  // generation too late is taken for generation 0, which has a bus switch in register 6. No other
  // violations are allowed.
  void expectOnlyCutTransfers(SimulatedCameras& cameras) const {
    unsigned cut = 0;
    for (std::size_t bridge = 0; bridge < bridgeCount; ++bridge) {
      std::istringstream lines(cameras.violations(bridge));
      for (std::string line; std::getline(lines, line);) {
        if (late_ != 0 && line == "bridge: unknown register 0x0006") continue;
        EXPECT_TRUE(line == "HID: exchange not finished before report 0x87" ||
                    line == "HID: exchange not finished before report 0x97")
            << line;
        ++cut;
      }
    }
    std::printf("%u transfers cut off\n", cut);
    EXPECT_GT(cut, 0u) << "nobody was killed in the middle";
    EXPECT_LE(cut, kills_);
  }

  const unsigned seed_ = numberFrom("QVX_SEED", static_cast<unsigned>(GetTickCount64()));
  std::minstd_rand random_{seed_};
  std::optional<Process> workers_[processCount];
  unsigned kills_ = 0, late_ = 0;
};

TEST_F(TwoProcesses, KilledAtAnyMomentNeitherHangNorMixTheirBytes) {
  std::printf("seed %u\n", seed_);
  std::vector<std::string> texts;
  for (const SharedBridge& bridge : bridges) texts.emplace_back(bridge.text);
  SimulatedCameras cameras(texts);
  shared().parent = GetCurrentProcessId();
  for (int i = 0; i < processCount; ++i) startWorker(i);
  disturb(cameras, numberFrom("QVX_SECONDS", 10));
  expectAllEnd();
  EXPECT_EQ(shared().mistakes, 0u) << shared().mistake;
  expectMuchWasDone();
  expectOnlyCutTransfers(cameras);

  ASSERT_EQ(etLib2_Init(), 1);
  for (int owner = 0; owner < ownerCount; ++owner) {
    for (std::size_t bridge = 0; bridge < bridgeCount; ++bridge) {
      EXPECT_TRUE(readAndCheck(owner, bridge));
      EXPECT_TRUE(writeAndCheck(owner, bridge));
    }
  }
  EXPECT_EQ(shared().mistakes, 0u) << shared().mistake;
  etLib2_Release();
}

}  // namespace
}  // namespace qvx::tests

int main(int argc, char** argv) {
  if (argc == 4 && std::string(argv[1]) == "--work") {
    return qvx::tests::work(std::atoi(argv[2]), static_cast<unsigned>(std::atoll(argv[3])));
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
