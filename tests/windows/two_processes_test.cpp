// Two processes use the same bridges over the system's HID stack while they are killed during
// transfers and restarted. Linked with the library's parts, because only the call layer is
// thread-safe. QVX_SECONDS and QVX_SEED in the environment set the duration and the random
// sequence.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "etlib2/etLib2.h"
#include "tests/windows/fixtures/process.h"
#include "tests/windows/fixtures/simulated_cameras.h"

namespace qvx::tests {
namespace {

constexpr int processCount = 2, threadsPerProcess = 8;
constexpr int ownerCount = processCount * threadsPerProcess;
constexpr DWORD limit_ms = 15'000;  // a call takes at most 1.5 s

// The two kinds of transfer. The paths of the simulated devices sort in this order.
constexpr struct {
  const char* description;
  std::uint32_t identity;  // of the chip
  bool lowAddressFirst;    // the call layer swaps the bytes of the EEPROM's address
} bridges[] = {
    {"hid:0970,unit=absent,chip=2,firmware=wide", 0x000160B2, false},  // of several reports
    {"hid:0971,unit=absent", 0x00016028, true},                        // one-shot requests
};
constexpr std::uint32_t bridgeCount = std::size(bridges);

// A thread that has a block in every EEPROM to itself.
struct Owner {
  std::atomic<std::uint32_t> tried[bridgeCount], confirmed[bridgeCount];  // its last write
  std::atomic<unsigned> succeeded, failed;                                // numbers of calls

  unsigned calls() const { return succeeded + failed; }
};

// In memory that the processes share.
struct Shared {
  std::atomic<DWORD> parent;  // the test's process
  Owner owners[ownerCount];
  std::atomic<bool> ends;
  std::atomic<unsigned> mistakes;
};

Shared& shared() {
  static Shared* const memory = [] {
    const HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                              sizeof(Shared), L"qvx-test-two-processes");
    return static_cast<Shared*>(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0));
  }();
  return *memory;
}

void report(const char* what, int owner, std::uint32_t bridge, std::uint32_t number) {
  ++shared().mistakes;
  std::printf("%s: owner %d, bridge %u, %u\n", what, owner, bridge, number);
}

// An owner's data in each EEPROM. The first word identifies owner and write; the others are derived
// from it.
using Block = std::array<std::uint32_t, 6>;

Block blockOf(int owner, std::uint32_t write) {
  Block block{write * ownerCount + static_cast<std::uint32_t>(owner)};
  for (std::size_t i = 1; i < block.size(); ++i) block[i] = 31 * block[i - 1] + 0x9E3779B9;
  return block;
}

template <class Function>
bool transfer(Function function, int owner, std::uint32_t bridge, Block& block) {
  constexpr std::uint32_t eeprom = 0xA0;
  constexpr int distance = 64;
  std::uint8_t address[] = {static_cast<std::uint8_t>(owner * distance >> 8),
                            static_cast<std::uint8_t>(owner * distance)};
  if (bridges[bridge].lowAddressFirst) std::swap(address[0], address[1]);
  return function(bridge, eeprom, sizeof address, address, sizeof block,
                  reinterpret_cast<std::uint8_t*>(block.data())) == 0;
}

// Reads the block of an owner. A successful read must return one of the owner's writes, not older
// than the last one confirmed before and not newer than the last one tried so far.
bool readAndCheck(int owner, std::uint32_t bridge) {
  const Owner& record = shared().owners[owner];
  const std::uint32_t confirmed = record.confirmed[bridge];
  Block block{};
  if (!transfer(etLib2_I2cRead_DevNum, owner, bridge, block)) return false;
  const std::uint32_t write = block[0] / ownerCount;
  if (block != blockOf(owner, write)) {
    const bool erased = std::ranges::count(block, 0xFFFFFFFF) == std::ssize(block);
    if (!erased || confirmed != 0) report("torn bytes", owner, bridge, block[0]);
  } else if (write < confirmed || write > record.tried[bridge]) {
    report("another write", owner, bridge, write);
  }
  return true;
}

// Writes the owner's block and reads it back.
bool writeAndCheck(int owner, std::uint32_t bridge) {
  constexpr DWORD lateWorker_ms = 2000;  // a late access has ended by then
  Owner& record = shared().owners[owner];
  const std::uint32_t write = ++record.tried[bridge];
  Block block = blockOf(owner, write);
  if (!transfer(etLib2_I2cWrite_DevNum, owner, bridge, block)) {
    Sleep(lateWorker_ms);
    return false;
  }
  record.confirmed[bridge] = write;
  return readAndCheck(owner, bridge);
}

bool askIdentity(int owner, std::uint32_t bridge) {
  std::uint32_t identity = 0;
  if (etLib2_RegRead_DevNum(bridge, 0, 4, &identity) != 0) return false;
  if (identity != bridges[bridge].identity) report("identity", owner, bridge, identity);
  return true;
}

// The processes end with the test even if it is killed.
bool goesOn() {
  static const HANDLE parent = OpenProcess(SYNCHRONIZE, FALSE, shared().parent);
  return !shared().ends && WaitForSingleObject(parent, 0) == WAIT_TIMEOUT;
}

// Writes its own blocks and reads those of all, until the end.
void workAs(int owner, unsigned seed) {
  std::minstd_rand random(seed);
  Owner& record = shared().owners[owner];
  while (goesOn()) {
    const std::uint32_t bridge = random() % bridgeCount;
    const unsigned choice = random() % 16;
    const bool done = choice < 7    ? writeAndCheck(owner, bridge)
                      : choice < 13 ? readAndCheck(static_cast<int>(random() % ownerCount), bridge)
                                    : askIdentity(owner, bridge);
    ++(done ? record.succeeded : record.failed);
    Sleep(random() % 3);
  }
}

// The body of a process.
int work(int firstOwner, unsigned seed) {
  while (goesOn() && (etLib2_Init() == 0 || etLib2_GetDevTotalNum() != int{bridgeCount})) Sleep(1);
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < threadsPerProcess; ++i) {
      threads.emplace_back(workAs, firstOwner + i, seed + static_cast<unsigned>(i));
    }
  }
  etLib2_Release();
  return 0;
}

unsigned numberFrom(const char* variable, unsigned otherwise) {
  const char* const text = std::getenv(variable);
  return text == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

class TwoProcesses : public testing::Test {
 protected:
  TwoProcesses() {
    shared().parent = GetCurrentProcessId();
    std::printf("seed %u\n", seed_);
  }

  void start(int process) {
    workers_[process].emplace(Process::again(L"--work " +
                                             std::to_wstring(process * threadsPerProcess) + L" " +
                                             std::to_wstring(random_())));
  }

  // Every owner of the process makes another call: none hangs.
  static void awaitCalls(int process) {
    for (int i = 0; i < threadsPerProcess && !HasFailure(); ++i) {
      const Owner& owner = shared().owners[process * threadsPerProcess + i];
      const unsigned before = owner.calls();
      for (DWORD ms = 0; ms < limit_ms && owner.calls() == before; ++ms) Sleep(1);
      EXPECT_NE(owner.calls(), before) << "thread " << i << " of process " << process << " hangs";
    }
  }

  // Kills and restarts processes, mostly at work and sometimes during their start. Goes on until a
  // transfer was cut off and every owner has succeeded.
  void disturb(unsigned seconds) {
    constexpr unsigned maxPause_ms = 500, oneInSo = 5;
    constexpr ULONGLONG maxTime_ms = 60'000;
    const ULONGLONG start_ms = GetTickCount64();
    const auto isEnough = [&](ULONGLONG time_ms) {
      const bool all =
          std::ranges::all_of(shared().owners, [](auto& owner) { return owner.succeeded != 0; });
      return time_ms > seconds * 1000 && ((all && !violations().empty()) || time_ms > maxTime_ms);
    };
    while (!isEnough(GetTickCount64() - start_ms) && shared().mistakes == 0 && !HasFailure()) {
      const int victim = static_cast<int>(random_() % processCount);
      if (random_() % oneInSo != 0) awaitCalls(victim);
      Sleep(random_() % maxPause_ms);
      workers_[victim].reset();
      ++kills_;
      start(victim);
    }
  }

  void expectAllEnd() {
    shared().ends = true;
    for (const auto& worker : workers_) EXPECT_EQ(worker->exitCode(limit_ms), 0u);
  }

  // A transfer that was cut off is dropped when the next one starts. A chip that reports its
  // generation too late is taken for generation 0, which has a bus switch in register 6. No other
  // violations are allowed.
  void expectMuchWasDoneAndNothingWrong() {
    unsigned succeeded = 0, late = 0, cut = 0;
    for (const Owner& owner : shared().owners) {
      EXPECT_GT(owner.succeeded, 0u);
      succeeded += owner.succeeded;
      late += owner.failed;
    }
    std::istringstream lines(violations());
    for (std::string line; std::getline(lines, line);) {
      if (late != 0 && line == "bridge: unknown register 0x0006") continue;
      EXPECT_TRUE(line.starts_with("HID: exchange not finished before report 0x")) << line;
      ++cut;
    }
    std::printf("%u kills; %u calls succeeded, %u came too late; %u transfers cut off\n", kills_,
                succeeded, late, cut);
    EXPECT_GT(succeeded, 3 * late);
    EXPECT_GT(cut, 0u) << "nobody was killed in the middle";
    EXPECT_LE(cut, kills_);
    EXPECT_EQ(shared().mistakes, 0u);
  }

 private:
  std::string violations() { return cameras_.violations(0) + cameras_.violations(1); }

  SimulatedCameras cameras_{{bridges[0].description, bridges[1].description}};
  const unsigned seed_ = numberFrom("QVX_SEED", static_cast<unsigned>(GetTickCount64()));
  std::minstd_rand random_{seed_};
  std::optional<Process> workers_[processCount];
  unsigned kills_ = 0;
};

TEST_F(TwoProcesses, KilledAtAnyMomentNeitherHangNorMixTheirBytes) {
  for (int i = 0; i < processCount; ++i) start(i);
  disturb(numberFrom("QVX_SECONDS", 10));
  expectAllEnd();
  ASSERT_EQ(etLib2_Init(), 1);
  for (int owner = 0; owner < ownerCount; ++owner) {
    for (std::uint32_t bridge = 0; bridge < bridgeCount; ++bridge) {
      EXPECT_TRUE(readAndCheck(owner, bridge));
      EXPECT_TRUE(writeAndCheck(owner, bridge));
    }
  }
  etLib2_Release();
  expectMuchWasDoneAndNothingWrong();
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
