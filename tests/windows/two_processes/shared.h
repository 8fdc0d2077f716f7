// Shared by the processes of the test: the bridges, and in shared memory a record of the writes of
// each owner. An owner is a thread that has a block in every EEPROM to itself.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>

namespace qvx::tests {

constexpr int processCount = 2, threadsPerProcess = 8;
constexpr int ownerCount = processCount * threadsPerProcess;

// The two kinds of transfer. The paths of the simulated devices sort in this order.
struct SharedBridge {
  const char* text;
  std::uint32_t identity;  // chip identity
  bool lowAddressFirst;    // the call layer swaps the bytes of the EEPROM's address
  bool takesCustomCommands;
};
constexpr SharedBridge bridges[] = {
    {"hid:0970,unit=absent,chip=2,firmware=wide", 0x000160B2, false,
     false},                                           // transfers of several reports
    {"hid:0971,unit=absent", 0x00016028, true, true},  // one-shot requests; bus switch
};
constexpr std::size_t bridgeCount = std::size(bridges);

struct Owner {
  std::atomic<std::uint32_t> tried[bridgeCount], confirmed[bridgeCount];  // the last write
  std::atomic<std::uint64_t> seen_ms;            // of its last call; 0: not working
  std::atomic<std::uint32_t> succeeded, failed;  // numbers of calls
};

struct Shared {
  std::atomic<std::uint32_t> parent;  // the test's process
  Owner owners[ownerCount];
  std::atomic<bool> atWork[processCount];  // the bridges are open
  std::atomic<bool> ends;
  std::atomic<std::uint32_t> mistakes;
  char mistake[200];  // the first one
};

// Created by the test's process before it starts the others.
Shared& shared();

void report(const char* what, int owner, std::size_t bridge, std::uint32_t number);

// Reads the block of an owner. A successful read must return one of the owner's writes, not older
// than the last one confirmed before and not newer than the last one tried so far.
bool readAndCheck(int owner, std::size_t bridge);

// Writes the owner's block and reads it back.
bool writeAndCheck(int owner, std::size_t bridge);

// The body of a process: its threads write their own blocks and read those of all, until the end.
int work(int process, unsigned seed);

}  // namespace qvx::tests
