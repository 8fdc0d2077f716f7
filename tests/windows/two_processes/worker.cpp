#include <algorithm>
#include <array>
#include <cstdio>
#include <random>
#include <thread>
#include <vector>

#include "etlib2/etLib2.h"
#include "tests/windows/two_processes/shared.h"

namespace qvx::tests {

namespace {

constexpr std::uint32_t eeprom = 0xA0;
constexpr DWORD lateWorker_ms = 2000;  // a late access has ended by then

// An owner's data in each EEPROM. The first word identifies owner and write; the others are derived
// from it.
using Block = std::array<std::uint32_t, 6>;

Block blockOf(int owner, std::uint32_t write) {
  Block block{write * ownerCount + static_cast<std::uint32_t>(owner)};
  for (std::size_t i = 1; i < block.size(); ++i) block[i] = 31 * block[i - 1] + 0x9E3779B9;
  return block;
}

std::uint8_t* bytesOf(Block& block) {
  return reinterpret_cast<std::uint8_t*>(block.data());
}

std::array<std::uint8_t, 2> subAddressOf(int owner, const SharedBridge& bridge) {
  constexpr int distance = 64;
  const int address = owner * distance;
  const auto low = static_cast<std::uint8_t>(address),
             high = static_cast<std::uint8_t>(address >> 8);
  if (bridge.lowAddressFirst) return {low, high};
  return {high, low};
}

}  // namespace

Shared& shared() {
  static Shared* const memory = [] {
    const HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                              sizeof(Shared), L"qvx-test-two-processes");
    return static_cast<Shared*>(MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0));
  }();
  return *memory;
}

void report(const char* what, int owner, std::size_t bridge, std::uint32_t number) {
  if (shared().mistakes++ != 0) return;
  std::snprintf(shared().mistake, sizeof shared().mistake, "%s: owner %d, bridge %u, %u", what,
                owner, static_cast<unsigned>(bridge), number);
}

bool readAndCheck(int owner, std::size_t bridge) {
  Owner& record = shared().owners[owner];
  const std::uint32_t confirmed = record.confirmed[bridge];
  auto subAddress = subAddressOf(owner, bridges[bridge]);
  Block block{};
  if (etLib2_I2cRead_DevNum(static_cast<std::uint32_t>(bridge), eeprom, 2, subAddress.data(),
                            sizeof block, bytesOf(block)) != 0) {
    return false;
  }
  const std::uint32_t write = block[0] / ownerCount;
  if (block != blockOf(owner, write)) {
    const bool erased = std::ranges::count(block, 0xFFFFFFFF) == std::ssize(block);
    if (!erased || confirmed != 0) report("torn bytes", owner, bridge, block[0]);
  } else if (write < confirmed) {
    report("an older write", owner, bridge, write);
  } else if (write > record.tried[bridge]) {
    report("a write from nowhere", owner, bridge, write);
  }
  return true;
}

bool writeAndCheck(int owner, std::size_t bridge) {
  Owner& record = shared().owners[owner];
  const std::uint32_t write = ++record.tried[bridge];
  auto subAddress = subAddressOf(owner, bridges[bridge]);
  Block block = blockOf(owner, write);
  if (etLib2_I2cWrite_DevNum(static_cast<std::uint32_t>(bridge), eeprom, 2, subAddress.data(),
                             sizeof block, bytesOf(block)) != 0) {
    Sleep(lateWorker_ms);
    return false;
  }
  record.confirmed[bridge] = write;
  return readAndCheck(owner, bridge);
}

namespace {

bool askIdentity(int owner, std::size_t bridge) {
  std::uint32_t identity = 0;
  if (etLib2_RegRead_DevNum(static_cast<std::uint32_t>(bridge), 0, 4, &identity) != 0) return false;
  if (identity != bridges[bridge].identity) report("identity", owner, bridge, identity);
  return true;
}

// The reply repeats the requested function.
bool askCommand(int owner, std::size_t bridge) {
  if (!bridges[bridge].takesCustomCommands) return askIdentity(owner, bridge);
  const auto function = static_cast<std::uint8_t>(owner % 2 == 0 ? 0xF2 : 0xF3);
  std::array<std::uint8_t, 32> block{function};
  if (etLib2_Custom_CMD_Read(static_cast<std::uint32_t>(bridge), 0xF0, 40, block.data()) != 0) {
    return false;
  }
  if (block[0] != function) report("command", owner, bridge, block[0]);
  return true;
}

// All owners select the same bus.
bool chooseBus(int owner, std::size_t bridge) {
  etLib2_SelectI2cBus_DevNum(static_cast<std::uint32_t>(bridge), 1, 0);
  return askIdentity(owner, bridge);
}

// The processes end with the test even if it is killed.
bool goesOn() {
  static const HANDLE parent = OpenProcess(SYNCHRONIZE, FALSE, shared().parent);
  return !shared().ends && WaitForSingleObject(parent, 0) == WAIT_TIMEOUT;
}

void workAs(int owner, unsigned seed) {
  std::minstd_rand random(seed);
  Owner& record = shared().owners[owner];
  while (goesOn()) {
    const std::size_t bridge = random() % bridgeCount;
    const unsigned choice = random() % 16;
    record.seen_ms = GetTickCount64();
    const bool done = choice < 7    ? writeAndCheck(owner, bridge)
                      : choice < 13 ? readAndCheck(static_cast<int>(random() % ownerCount), bridge)
                      : choice < 14 ? askIdentity(owner, bridge)
                      : choice < 15 ? askCommand(owner, bridge)
                                    : chooseBus(owner, bridge);
    ++(done ? record.succeeded : record.failed);
    Sleep(random() % 3);
  }
  record.seen_ms = 0;
}

}  // namespace

int work(int process, unsigned seed) {
  while (goesOn() &&
         (etLib2_Init() == 0 || etLib2_GetDevTotalNum() != static_cast<int>(bridgeCount))) {
    Sleep(1);
  }
  shared().atWork[process] = true;
  std::vector<std::thread> threads;
  for (int i = 0; i < threadsPerProcess; ++i) {
    const int owner = process * threadsPerProcess + i;
    threads.emplace_back(workAs, owner, seed + static_cast<unsigned>(i));
  }
  for (std::thread& thread : threads) thread.join();
  etLib2_Release();
  return 0;
}

}  // namespace qvx::tests
