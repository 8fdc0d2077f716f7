// Every call on every path, with every operation of device and system going wrong.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "state/device_state.h"
#include "tests/support/effort.h"
#include "tests/torture/memory.h"
#include "tests/torture/outcomes.h"
#include "tests/torture/rig.h"

// A late worker must not write into what its caller has left behind.
extern "C" const char* __asan_default_options() {
  return "detect_stack_use_after_return=1:malloc_context_size=5";
}

namespace qvx::tests {
namespace {

using simulator::Clock;
using simulator::Fault;
using simulator::Operation;
using Traffic = std::vector<std::string>;
using Counts = std::array<int, sizeof(simulator::OpenCounts) / sizeof(int)>;  // as numbers

constexpr std::uint64_t stall_ms = 5000;  // past every limit

// What an access to a camera may take at most, by the kind of path.
constexpr struct Cost {
  std::uint64_t access_ms, requests;
} costs[] = {{10, 1}, {0, 2}, {2000, 0}, {2000, 0}};

// How many calls were made with something wrong, told at the end.
class Points : public testing::Environment {
 public:
  void TearDown() override { std::printf("torture: %d points\n", count); }

  static inline int count = 0;
};
[[maybe_unused]] const auto* const registered = testing::AddGlobalTestEnvironment(new Points);

bool isNamed(const ExportedCall& call, const char* name) {
  return call.name == std::string(name);
}

// A camera in order, and two calls in a row.
struct Healthy {
  std::string first, second;
  Traffic firstTraffic, secondTraffic;
  std::uint64_t operations;
  Counts leftOpen;
};

std::uint64_t allOperations() {
  return simulator::world().operations() + simulator::world().operations(Operation::systemCall);
}

Counts openNow() {
  return std::bit_cast<Counts>(simulator::world().open);
}

Counts operator-(Counts after, const Counts& before) {
  for (std::size_t i = 0; i < after.size(); ++i) after.at(i) -= before.at(i);
  return after;
}

// As long as it lives, ready for the call itself.
class ReadyRig : public Rig {
 public:
  ReadyRig(const Path& path, const ExportedCall& call) : Rig(path) {
    if (isNamed(call, "Init")) {
      choose();
    } else {
      init();
    }
  }

  std::string callNoting(const ExportedCall& exported, Traffic& traffic) {
    if (isNamed(exported, "Init")) choose();
    machine().keepsJournal = true;
    const std::string result = call(exported);
    traffic = machine().takeJournal();
    machine().keepsJournal = false;
    return result;
  }
};

Healthy healthyCalls(const Path& path, const ExportedCall& call) {
  ReadyRig rig(path, call);
  const std::uint64_t start = allOperations();
  const Counts before = openNow();
  Healthy healthy;
  healthy.first = rig.callNoting(call, healthy.firstTraffic);
  healthy.operations = allOperations() - start;
  healthy.leftOpen = openNow() - before;
  healthy.second = rig.callNoting(call, healthy.secondTraffic);
  return healthy;
}

// Where a call after the fault may differ from one that never saw any; empty for all.
constexpr struct {
  const char *path, *call;
} remembered[] = {
    {"", "Tick"},                    // a tick that came late is not made up for
    {"Wifi9C4", "SetAutoExposure"},  // writes what it read, which was nothing
    {"Unit998", "SetLEDState"},      // had taken the lights for others: segment mode comes later
    {"Unit9D0", ""},                 // an access mode that was not left costs one request more
    {"Hid998", ""},  // a chip that once did not tell its generation stays at the fast speed
};

bool mayDiffer(const Path& path, const ExportedCall& call) {
  return std::any_of(std::begin(remembered), std::end(remembered), [&](const auto& row) {
    const std::string pathName = row.path, callName = row.call;
    return (pathName.empty() || pathName == path.name()) &&
           (callName.empty() || callName == call.name);
  });
}

// A camera taken for another model is read at one register more; a still that is not answered
// leaves its session.
bool leavesOneMore(const ExportedCall& call) {
  return isNamed(call, "Init") || isNamed(call, "GetWiFiImage");
}

class Torture : public testing::TestWithParam<Path> {
 protected:
  const Path& path() { return GetParam(); }

  // Runs the body for every call, and stops a call at its first failures.
  void forEveryCall(const auto& body) {
    for (const ExportedCall& call : everyCall()) {
      const Healthy healthy = healthyCalls(path(), call);
      const Outcomes outcomes = outcomesOf(call, path(), healthy.first);
      EXPECT_EQ(healthy.first, outcomes.healthy) << call.name;
      body(call, healthy, outcomes);
    }
  }

  void suffer(const ExportedCall& call, const Healthy& healthy, const Outcomes& outcomes,
              const Fault& fault) {
    ++Points::count;
    ReadyRig rig(path(), call);
    simulator::World& machine = rig.machine();
    const std::uint64_t start_ms = machine.clock.now_ms(), start = machine.operations();
    const Counts before = openNow();
    machine.set(fault);
    const std::string result = rig.call(call);
    const std::uint64_t took_ms = machine.clock.now_ms() - start_ms - machine.stalled_ms;
    checkResult(result, healthy, outcomes, fault);
    checkCost(call, took_ms, machine.operations() - start);
    machine.set({});
    machine.plugIn();
    machine.clock.waitForOthers();
    checkLeftOpen(call, healthy, openNow() - before, fault);
    if (fault.kind == Fault::unplugs && path().kind != Path::wifi && !isNamed(call, "Init")) {
      EXPECT_EQ(rig.init(), "1");
    }
    checkRecovery(rig, call, healthy);
  }

  void checkResult(const std::string& result, const Healthy& healthy, const Outcomes& outcomes,
                   const Fault& fault) {
    const bool stalls = fault.kind == Fault::stalls;
    const bool isDead = fault.first == 1 && fault.count == Clock::forever && !stalls && !fault.only;
    if (isDead && healthy.operations > 0) {
      EXPECT_EQ(result, outcomes.dead);
    } else if (stalls && !path().overBridge()) {
      EXPECT_EQ(result, outcomes.healthy) << "slow is not wrong";
    } else {
      EXPECT_TRUE(outcomes.allows(result)) << result;
    }
  }

  // Beyond what the system itself makes the caller wait. Requests are counted where there is no
  // limit for an access.
  void checkCost(const ExportedCall& call, std::uint64_t took_ms, std::uint64_t requests) {
    const Promise promise = promiseOf(call);
    const Cost cost = costs[path().kind];
    EXPECT_LE(took_ms, promise.pauses_ms + promise.accesses * cost.access_ms);
    if (cost.requests == 0 || promise.lists) return;
    EXPECT_LE(requests, promise.accesses * cost.requests);
  }

  // A call that fails leaves no more open than one that succeeds, and without an answer no request.
  void checkLeftOpen(const ExportedCall& call, const Healthy& healthy, const Counts& leftOpen,
                     const Fault& fault) {
    if (fault.only == Operation::access) {
      EXPECT_EQ(leftOpen.at(0), isNamed(call, "GetWiFiImage") ? 1 : 0) << "sessions";
      EXPECT_EQ(leftOpen.at(1), 0) << "requests";
    }
    for (std::size_t i = 0; i < leftOpen.size(); ++i) {
      EXPECT_LE(leftOpen.at(i), healthy.leftOpen.at(i) + (leavesOneMore(call) ? 1 : 0))
          << "field " << i << " of OpenCounts";
    }
  }

  // And leaves in `bWait` whether measuring goes on after a healthy call.
  std::uint64_t allocationsOf(const ExportedCall& call) {
    ReadyRig rig(path(), call);
    const MemoryFault none(0);
    rig.call(call);
    return none.allocations();
  }

  void checkRecovery(ReadyRig& rig, const ExportedCall& call, const Healthy& healthy) {
    Traffic traffic;
    EXPECT_EQ(rig.callNoting(call, traffic), healthy.second) << "when all is well again";
    if (traffic == healthy.firstTraffic || mayDiffer(path(), call)) return;
    EXPECT_EQ(traffic, healthy.secondTraffic) << "when all is well again";
  }
};

// Of long calls every operation only with all effort.
TEST_P(Torture, EveryOperationGoesWrong) {
  constexpr std::uint64_t mostOperations = 40;
  const auto sufferTold = [&](const auto& call, const auto& healthy, const auto& outcomes,
                              const Fault& fault) {
    SCOPED_TRACE(std::string(call.name) + ", operation " + std::to_string(fault.first) +
                 ", fault kind " + std::to_string(fault.kind) + " x " +
                 std::to_string(fault.count));
    suffer(call, healthy, outcomes, fault);
  };
  forEveryCall([&](const ExportedCall& call, const Healthy& healthy, const Outcomes& outcomes) {
    sufferTold(call, healthy, outcomes, {.kind = Fault::fails});  // the cameras alone
    const std::uint64_t step = effort() < 10 ? 1 + healthy.operations / mostOperations : 1;
    for (std::uint64_t n = 1; n <= healthy.operations && !HasFailure(); n += step) {
      const Fault faults[] = {
          {Fault::fails, n, 1, 0, {}},
          {Fault::fails, n, Clock::forever, 0, {}},
          {Fault::unplugs, n, Clock::forever, 0, {}},
          {Fault::stalls, n, n == 1 ? Clock::forever : 1, stall_ms, {}},
      };
      for (const Fault& fault : faults) sufferTold(call, healthy, outcomes, fault);
    }
  });
}

TEST_P(Torture, MemoryRunsOut) {
  constexpr std::uint64_t mostPoints = 150;
  forEveryCall([&](const ExportedCall& call, const Healthy& healthy, const Outcomes&) {
    const std::uint64_t allocations = allocationsOf(call);
    const bool measuringGoesOn = bWait == 1;
    for (std::uint64_t n = 1; n <= allocations && !HasFailure();
         n += 1 + allocations / mostPoints) {
      SCOPED_TRACE(std::string(call.name) + ", allocation " + std::to_string(n));
      ++Points::count;
      ReadyRig rig(path(), call);
      try {
        const MemoryFault fault(n);
        rig.call(call);
      } catch (const std::bad_alloc&) {
        // The test's own: none leaves an export, which would end the program.
      }
      rig.machine().clock.waitForOthers();
      EXPECT_TRUE(bWait == 1 || !measuringGoesOn) << "measuring rests for ever";
      Traffic traffic;
      EXPECT_EQ(rig.callNoting(call, traffic), healthy.second);
    }
  });
}

// Everything at once, by chance; and a camera in order works after it.
TEST_P(Torture, AnythingGoesWrong) {
  constexpr int rounds = 60, callsPerRound = 50;
  std::mt19937 generator(path().pid);
  const auto dice = [&](unsigned sides) { return static_cast<unsigned>(generator() % sides); };
  Rig rig(path());
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    rig.machine().set({Fault::fails, 1, Clock::forever, 0, {}, dice(60)});
    for (int i = 0; i < callsPerRound; ++i, ++Points::count) {
      if (dice(8) == 0) rig.machine().unplug();
      if (dice(4) == 0) rig.machine().plugIn();
      if (dice(8) == 0) rig.choose();
      rig.call(everyCall()[dice(static_cast<unsigned>(everyCall().size()))]);
    }
    rig.machine().set({});
    rig.machine().plugIn();
    rig.machine().timers.clear();
    EXPECT_EQ(rig.init(), "1") << round;
    const std::string config = rig.call(exportNamed("GetConfig"));
    EXPECT_EQ(config, outcomesOf(exportNamed("GetConfig"), path(), config).healthy) << round;
  }
}

INSTANTIATE_TEST_SUITE_P(, Torture, testing::ValuesIn(everyPath().begin(), everyPath().end()),
                         [](const auto& test) { return test.param.name(); });

}  // namespace
}  // namespace qvx::tests
