// Every call on every path, with every operation of device and system going wrong.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <string>
#include <vector>

#include "state/device_state.h"
#include "tests/support/effort.h"
#include "tests/support/promises.h"
#include "tests/torture/memory.h"
#include "tests/torture/rig.h"

// Most time goes into keeping account of allocations: less of it means faster calls.
extern "C" const char* __asan_default_options() {
  return "malloc_context_size=2";
}

namespace qvx::tests {
namespace {

using namespace std::string_view_literals;
using simulator::Clock;
using simulator::Fault;
using simulator::Operation;
using Traffic = std::vector<std::string>;
using Counts = std::array<int, sizeof(simulator::OpenCounts) / sizeof(int)>;  // as numbers

constexpr std::uint64_t stall_ms = 5000;  // past every limit

// What an access to a camera may take at most, by the kind of path.
constexpr struct {
  std::uint64_t access_ms, requests;
} costs[] = {{10, 1}, {0, 2}, {2000, 0}, {2000, 0}};

// Two timers: the button's one or two accesses, and two of the magnification.
const Promise promiseOfTick = {.name = "Tick", .pauses_ms = 250, .accesses = 4};

// Two calls in a row on a healthy camera.
struct Healthy {
  std::string first, second;
  Traffic firstTraffic, secondTraffic;
  std::uint64_t operations = 0;
  Counts leftOpen{};
  bool measures = false;  // before and after
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

// A rig on which only the call itself remains to be made.
class ReadyRig : public Rig {
 public:
  ReadyRig(const Path& path, const ExportedCall& call) : Rig(path) {
    if (call.name == "Init"sv) {
      choose();
    } else {
      init();
    }
  }

  std::string callNoting(const ExportedCall& exported, Traffic& traffic) {
    if (exported.name == "Init"sv) choose();
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
  const bool measured = bWait == 1;
  healthy.first = rig.callNoting(call, healthy.firstTraffic);
  healthy.measures = measured && bWait == 1;
  healthy.operations = allOperations() - start;
  healthy.leftOpen = openNow() - before;
  healthy.second = rig.callNoting(call, healthy.secondTraffic);
  return healthy;
}

// Where a call after the fault may differ from one that never saw any. Both are parts of names.
constexpr struct {
  const char *path, *call;
} remembered[] = {
    {"", "Tick"},                    // a tick that came late is not made up for
    {"Wifi9C4", "SetAutoExposure"},  // writes what it read, which was nothing
    {"Unit998", "SetLEDState"},      // had taken the lights for others: segment mode comes later
    {"Unit9D0", ""},                 // an access mode that was not left costs one request more
    {"Hid998", ""},  // a chip that once did not tell its generation stays at the fast speed
};

// Each test goes through all calls, and stops a call at its first failures.
class Torture : public testing::TestWithParam<Path> {
 protected:
  ~Torture() override { watchStack(false); }

  const Path& path() { return GetParam(); }

  void forEveryCall(const auto& body) {
    for (const ExportedCall& exported : everyCall()) {
      call = &exported;
      rig_.reset();
      healthy = healthyCalls(path(), exported);
      outcomes = expectedOutcomes();
      EXPECT_EQ(healthy.first, outcomes.healthy) << exported.name;
      body();
    }
  }

  void suffer(const Fault& fault) {
    SCOPED_TRACE(std::string(call->name) + ", operation " + std::to_string(fault.first) +
                 ", fault kind " + std::to_string(fault.kind) + " x " +
                 std::to_string(fault.count));
    if (fault.first == 1) rig_.reset();  // a result may be what an earlier call had found
    ReadyRig& rig = readyRig();
    simulator::World& machine = rig.machine();
    const std::uint64_t start_ms = machine.clock.now_ms(), start = machine.operations();
    const Counts before = openNow();
    machine.stalled_ms = 0;
    machine.set(fault);
    watchStack(true);
    const std::string result = rig.call(*call);
    watchStack(false);
    checkResult(result, fault);
    checkCost(machine.clock.now_ms() - start_ms - machine.stalled_ms, machine.operations() - start);
    machine.set({});
    machine.plugIn();
    machine.clock.waitForOthers();
    checkLeftOpen(openNow() - before, fault);
    if (fault.kind == Fault::unplugs && path().kind != Path::wifi && call->name != "Init"sv) {
      EXPECT_EQ(rig.init(), "1");
    }
    const Traffic traffic = checkRecovery();
    const bool mayDiffer = std::ranges::any_of(remembered, [this](const auto& row) {
      return path().name().find(row.path) != std::string::npos &&
             std::string(call->name).find(row.call) != std::string::npos;
    });
    if (traffic != healthy.firstTraffic && !mayDiffer) {
      EXPECT_EQ(traffic, healthy.secondTraffic) << "when all is well again";
    }
    if (fault.kind == Fault::unplugs) rig_.reset();  // one Init more: other samples to average
  }

  // Most time goes into Init: a rig is used again while the call behaves on it as on a new one.
  ReadyRig& readyRig() {
    if (rig_ == nullptr) rig_ = std::make_unique<ReadyRig>(path(), *call);
    return *rig_;
  }
  Traffic checkRecovery() {
    Traffic traffic;
    const std::string result = rig_->callNoting(*call, traffic);
    EXPECT_EQ(result, healthy.second) << "when all is well again";
    const bool isAsNew = result == healthy.first && traffic == healthy.firstTraffic;
    if (!isAsNew || call->name == "Init"sv) rig_.reset();
    return traffic;
  }

  const ExportedCall* call = nullptr;
  Healthy healthy;
  Outcomes outcomes;

  Outcomes expectedOutcomes() {
    for (const Outcomes& row : call->outcomes)
      if (path().name().find(row.path) != std::string::npos) return row;
    return {.healthy = healthy.first, .dead = healthy.first};
  }

 private:
  std::unique_ptr<ReadyRig> rig_;

  void checkResult(const std::string& result, const Fault& fault) {
    const bool stalls = fault.kind == Fault::stalls;
    const bool isDead = fault.first == 1 && fault.count == Clock::forever && !stalls && !fault.only;
    if (isDead && healthy.operations > 0) {
      EXPECT_EQ(result, outcomes.dead);
    } else if (stalls && !path().overBridge()) {
      EXPECT_EQ(result, outcomes.healthy) << "slow is not wrong";
    } else {
      EXPECT_TRUE(result == outcomes.healthy || result == outcomes.dead ||
                  std::ranges::count(outcomes.partly, result) == 1)
          << result;
    }
  }

  // The system's own delays come on top. Requests are counted where an access has no time limit.
  void checkCost(std::uint64_t took_ms, std::uint64_t requests) {
    const Promise promise = call->name == "Tick"sv ? promiseOfTick : promiseOf(call->name);
    const auto& cost = costs[path().kind];
    EXPECT_LE(took_ms, promise.limit_ms(cost.access_ms));
    if (cost.requests == 0 || promise.lists) return;
    EXPECT_LE(requests, promise.accesses * cost.requests);
  }

  // A call that fails leaves no more open than one that succeeds, and without an answer no request.
  void checkLeftOpen(const Counts& leftOpen, const Fault& fault) {
    if (fault.only == Operation::access) {
      EXPECT_EQ(leftOpen.at(0), call->name == "GetWiFiImage"sv ? 1 : 0) << "sessions";
      EXPECT_EQ(leftOpen.at(1), 0) << "requests";
    }
    // A camera taken for another model is read at one register more; a still that is not answered
    // leaves its session.
    const int more = call->name == "Init"sv || call->name == "GetWiFiImage"sv ? 1 : 0;
    for (std::size_t i = 0; i < leftOpen.size(); ++i)
      EXPECT_LE(leftOpen.at(i), healthy.leftOpen.at(i) + more) << "field " << i << " of OpenCounts";
  }
};

// Every operation of a long call only with QVX_EFFORT=10; otherwise about 40 of them.
TEST_P(Torture, EveryOperationGoesWrong) {
  constexpr std::uint64_t maxOperations = 40;
  forEveryCall([&] {
    suffer({.kind = Fault::fails});  // the cameras alone
    const std::uint64_t step = effort() < 10 ? 1 + healthy.operations / maxOperations : 1;
    for (std::uint64_t n = 1; n <= healthy.operations && !HasFailure(); n += step) {
      suffer({Fault::fails, n, 1, 0, {}});
      suffer({Fault::fails, n, Clock::forever, 0, {}});
      suffer({Fault::unplugs, n, Clock::forever, 0, {}});
      suffer({Fault::stalls, n, n == 1 ? Clock::forever : 1, stall_ms, {}});
    }
  });
}

TEST_P(Torture, MemoryRunsOut) {
  constexpr std::uint64_t maxPoints = 150;
  forEveryCall([&] {
    std::uint64_t count = 0;
    {
      ReadyRig rig(path(), *call);
      refuseAllocation(0);
      rig.call(*call);
      count = allocations();
    }
    for (std::uint64_t n = 1; n <= count && !HasFailure(); n += 1 + count / maxPoints) {
      SCOPED_TRACE(std::string(call->name) + ", allocation " + std::to_string(n));
      ReadyRig& rig = readyRig();
      refuseAllocation(n);
      try {
        rig.call(*call);
      } catch (const std::bad_alloc&) {
        // The test's own: none leaves an export, which would end the program.
      }
      refuseAllocation(0);
      rig.machine().clock.waitForOthers();
      EXPECT_TRUE(bWait == 1 || !healthy.measures) << "measuring rests for ever";
      checkRecovery();
    }
  });
}

INSTANTIATE_TEST_SUITE_P(, Torture, testing::ValuesIn(everyPath().begin(), everyPath().end()),
                         [](const auto& test) { return test.param.name(); });

}  // namespace
}  // namespace qvx::tests
