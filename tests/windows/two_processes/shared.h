// What the processes of the test have in common: the bridges, who owns which bytes of their
// EEPROMs, and a record of every owner's writes in shared memory.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>

namespace qvx::tests {

constexpr int processCount = 2, threadsPerProcess = 8;
constexpr int ownerCount = processCount * threadsPerProcess;

// The two ways in which bridges take transfers. The paths of the virtual devices stand in the same
// order.
struct SharedBridge {
  const char* text;
  std::uint32_t identity;  // of the chip
  bool lowAddressFirst;    // the call layer swaps the bytes of the EEPROM's address
  bool takesCustomCommands;
};
constexpr SharedBridge bridges[] = {
    {"hid:0970,unit=absent,chip=2,firmware=wide", 0x000160B2, false,
     false},                                           // several reports in a row
    {"hid:0971,unit=absent", 0x00016028, true, true},  // one-shot requests, and a bus switch
};
constexpr std::size_t bridgeCount = std::size(bridges);

struct Owner {
  std::atomic<std::uint32_t> tried[bridgeCount], confirmed[bridgeCount];  // the last write
  std::atomic<std::uint64_t> seen_ms;                                     // 0: not at work
  std::atomic<std::uint32_t> succeeded, failed;                           // calls
};

struct Shared {
  std::atomic<std::uint32_t> parent;  // the test's process
  Owner owners[ownerCount];
  std::atomic<bool> atWork[processCount];  // has opened the bridges
  std::atomic<bool> ends;
  std::atomic<std::uint32_t> mistakes;
  char mistake[200];  // the first one
};

// The test's process makes it before all others.
Shared& shared();

void report(const char* what, int owner, std::size_t bridge, std::uint32_t number);

// Reads the bytes of an owner. A read that succeeds gives a write of his, neither older than the
// last one confirmed before nor newer than the last one tried until then.
bool readAndCheck(int owner, std::size_t bridge);

// A new write of the owner, and what is to be read back at once.
bool writeAndCheck(int owner, std::size_t bridge);

// What the processes do: threads that own bytes and read those of all, until the end.
int work(int process, unsigned seed);

}  // namespace qvx::tests
