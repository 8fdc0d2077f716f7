// The call layer over workers: time limits, status codes, the shared mutex, bus and speed.
#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <set>

#include "etlib2/access.h"
#include "etlib2/etLib2.h"
#include "platform/workers.h"
#include "tests/support/cameras.h"
#include "tests/support/effort.h"
#include "trace/trace.h"

namespace qvx::tests {
namespace {

using simulator::BridgeFamily;
using simulator::Fault;
using simulator::VirtualBridge;

constexpr std::uint32_t failed = 0x80004005;

using Bytes = std::array<std::uint8_t, 64>;

// The buffers of a caller: the bus switch, the light switch, and a command with its answer.
struct Lent {
  std::uint32_t select = 0;
  std::uint8_t reg = 0x04, light = 0;
  Bytes command = {0xF2, 0x5A};
};

// The status of every kind of access. Writes put back the values that were read before.
std::set<std::uint32_t> tryAll(std::uint32_t device, Lent& lent) {
  return {etLib2_RegRead_DevNum(device, 6, 1, &lent.select),
          etLib2_RegWrite_DevNum(device, 6, 1, &lent.select),
          etLib2_I2cRead_DevNum(device, 0x62, 1, &lent.reg, 1, &lent.light),
          etLib2_I2cWrite_DevNum(device, 0x62, 1, &lent.reg, 1, &lent.light),
          etLib2_Custom_CMD_Read(device, 0xF0, 40, lent.command.data()),
          etLib2_Custom_CMD_Write(device, 0xF0, 40, lent.command.data())};
}

void expectAllFail(std::uint32_t device = 0) {
  const auto lent = std::make_unique<Lent>();
  EXPECT_EQ(tryAll(device, *lent), std::set{failed});
  EXPECT_EQ(lent->command[1], 0x5A) << "the caller's buffer is left alone";
}

class CallLayer : public LibraryTest {
 protected:
  CallLayer() { open(camera); }

  void open(VirtualBridge& first) {
    machine().videoInputs = {bridgeInput(first)};
    EXPECT_EQ(etLib2_Init(), 1);
    journal();
  }

  std::uint32_t readStatus() {
    value = 0xAAAAAAAA;
    return etLib2_RegRead_DevNum(0, 0x85, 1, &value);
  }

  // Holds the library's mutex from another thread, as another process would.
  void holdMutexFor(std::uint64_t milliseconds) {
    auto held = std::make_shared<bool>(false);
    machine().clock.startThread([this, held, milliseconds] {
      const auto mutex = platform::openNamedMutex("Empia VideoClass HidClass Library");
      mutex->acquire(0);
      machine().clock.change([&] { *held = true; });
      machine().clock.sleep(milliseconds);
      mutex->release();
    });
    machine().clock.waitFor(simulator::Clock::forever, [held] { return *held; });
  }

  // How long the call takes on the machine's clock.
  template <class Call>
  std::uint64_t timeOf(Call call) {
    const std::uint64_t before_ms = machine().clock.now_ms();
    call();
    return machine().clock.now_ms() - before_ms;
  }

  VirtualBridge camera{0x970};
  std::uint32_t value = 0;
};

TEST_F(CallLayer, WithoutACameraItIsClosedAndFailsWithoutStartingAThread) {
  machine().videoInputs.clear();
  EXPECT_EQ(etLib2_Init(), 0);
  EXPECT_EQ(machine().open, simulator::OpenCounts{});
  expectAllFail();
  etLib2_SelectI2cBus_DevNum(0, 2, 1);
  EXPECT_EQ(etLib2_GetDevTotalNum(), 0);
  EXPECT_EQ(machine().threadsStarted, 0);
}

TEST_F(CallLayer, AnswerInTime) {
  EXPECT_EQ(readStatus(), 0u);
  EXPECT_EQ(value, 0u);
  machine().set({Fault::stalls, 1, 1, 499});
  EXPECT_EQ(timeOf([this] { EXPECT_EQ(readStatus(), 0u); }), 499u);
  machine().set({Fault::fails});
  EXPECT_EQ(readStatus(), failed);
  EXPECT_EQ(value, 0xAAAAAAAAu) << "a failed read leaves the value";
}

TEST_F(CallLayer, LateAnswerCostsTheLimitAndNothingLater) {
  machine().set({Fault::stalls, 1, 1, 600});
  EXPECT_EQ(timeOf([this] { EXPECT_EQ(readStatus(), failed); }), 500u);
  EXPECT_EQ(journal().size(), 1u);
  machine().clock.sleep(200);
  EXPECT_EQ(journal().size(), 1u) << "the late worker finishes its transfer";
  EXPECT_EQ(value, 0xAAAAAAAAu) << "and leaves the caller's memory alone";
  EXPECT_EQ(readStatus(), 0u);
}

// The callers' buffers are gone before the workers write: the sanitizer would notice.
TEST_F(CallLayer, LateAnswersWhoseCallersHaveGoneAreHarmless) {
  machine().set({Fault::stalls, 1, simulator::Clock::forever, 1100});
  expectAllFail();
  etLib2_Release();
  machine().clock.waitForOthers();
  EXPECT_EQ(machine().open.filters, 0) << "the last worker takes the transport with it";
  EXPECT_EQ(machine().open.mutexHandles, 0);
}

TEST_F(CallLayer, BusyMutexDelaysTheTransferBeyondTheCaller) {
  holdMutexFor(700);
  EXPECT_EQ(timeOf([this] { EXPECT_EQ(readStatus(), failed); }), 500u);
  EXPECT_EQ(journal(), Journal{});
  machine().clock.sleep(300);
  EXPECT_EQ(journal().size(), 2u) << "the worker waited on, and did the transfer";
}

TEST_F(CallLayer, TraceTellsOfLateWorkersAndABusyMutex) {
  machine().environment["QVX64_TRACE"] = "camera.trace";
  trace::begin();
  EXPECT_EQ(etLib2_Init(), 1);
  const std::string& text = machine().files[L"camera.trace"];
  const auto told = [&text](const char* event) { return text.find(event) != std::string::npos; };
  readStatus();
  EXPECT_FALSE(told(" late ") || told(" busy ")) << text;
  holdMutexFor(5000);
  readStatus();
  machine().clock.waitForOthers();
  EXPECT_TRUE(told(" late limit_ms=500\n") && told(" busy limit_ms=")) << text;
}

TEST_F(CallLayer, MutexHeldTooLongMeansNoTransfer) {
  holdMutexFor(5000);
  EXPECT_EQ(readStatus(), failed);
  Bytes bytes{};
  EXPECT_EQ(timeOf([&] { EXPECT_EQ(etLib2_Custom_CMD_Read(0, 29, 40, bytes.data()), failed); }),
            100u)
      << "custom commands wait less";
  EXPECT_EQ(timeOf([&] { etLib2_SelectI2cBus_DevNum(0, 2, 1); }), 1000u)
      << "two late steps: the generation counts as 0, the register cannot be read";
  machine().clock.waitForOthers();
  EXPECT_EQ(journal(), Journal{});
  EXPECT_EQ(readStatus(), 0u);
}

TEST_F(CallLayer, OneWorkerPerStep) {
  machine().threadsStarted = 0;
  readStatus();
  EXPECT_EQ(machine().threadsStarted, 1);
  etLib2_SelectI2cBus_DevNum(0, 2, 1);
  EXPECT_EQ(machine().threadsStarted, 4);
  journal();
  machine().threadsStart = false;
  expectAllFail();
  etLib2_SelectI2cBus_DevNum(0, 2, 1);
  EXPECT_EQ(journal(), Journal{});
}

TEST_F(CallLayer, RefusesWhatDoesNotFit) {
  machine().threadsStarted = 0;
  Bytes room{};
  std::uint8_t *const bytes = room.data(), *const none = nullptr;
  const std::set<std::uint32_t> refused = {
      etLib2_RegRead_DevNum(0, 0x85, 5, &value),
      etLib2_RegRead_DevNum(0, 0x85, 1, nullptr),
      etLib2_RegWrite_DevNum(0, 0x80, 255, &value),
      etLib2_RegWrite_DevNum(0, 0x80, 1, nullptr),
      etLib2_I2cRead_DevNum(0, 0x62, 65, bytes, 1, bytes),
      etLib2_I2cRead_DevNum(0, 0x62, 1, bytes, 65, bytes),
      etLib2_I2cRead_DevNum(0, 0x62, ~0u, bytes, 1, bytes),
      etLib2_I2cWrite_DevNum(0, 0x62, 1, none, 1, bytes),
      etLib2_I2cWrite_DevNum(0, 0x62, 1, bytes, 1, none),
      etLib2_Custom_CMD_Read(0, 29, 40, nullptr),
      etLib2_Custom_CMD_Write(0, 30, 0, nullptr),
  };
  EXPECT_EQ(refused, std::set{failed});
  EXPECT_EQ(machine().threadsStarted, 0);
  for (const std::uint32_t device : {1u, ~0u}) expectAllFail(device);
  EXPECT_EQ(currentDevice, ~0u);
  EXPECT_EQ(journal(), Journal{});
  EXPECT_EQ(etLib2_RegRead_DevNum(0, 0x10085, 0x101, &value), 0u) << "only the low parts count";
}

TEST_F(CallLayer, OpeningNeedsTheMutexForAWhile) {
  etLib2_Release();
  holdMutexFor(2500);
  EXPECT_EQ(timeOf([] { EXPECT_EQ(etLib2_Init(), 0); }), 2000u) << "1 s for each transport";
  machine().clock.waitForOthers();
  EXPECT_EQ(etLib2_Init(), 1);
}

using BusSelection = CallLayer;

TEST_F(BusSelection, SwitchesTheBusAndThenTheSpeed) {
  // The next read comes after it; on the other bus there is no camera.
  const Rows<std::uint8_t, std::uint32_t, std::uint32_t, const char*> rows = {
      {2, 1, 0x04, "r62.80f"},
      {2, 0, 0x04, "r62.80"},
      {1, 7, 0x00, nullptr},
      {0, 0, 0x04, "r62.80"},
      {255, 1, 0x04, "r62.80f"}};
  for (const auto& [bus, fast, select, read] : rows) {
    etLib2_SelectI2cBus_DevNum(0, bus, fast);
    EXPECT_EQ(camera.chip.peek(6) & 0x04, select) << int{bus};
    EXPECT_EQ(i2cSpeed, fast != 0 ? 0x10 : 0);
    if (read == nullptr) continue;
    std::uint8_t sub = 0x80, data = 0;
    journal();
    etLib2_I2cRead_DevNum(0, 0x62, 1, &sub, 1, &data);
    EXPECT_EQ(trafficIn(journal()), read) << int{bus};
  }
  etLib2_Release();
  etLib2_Init();
  EXPECT_EQ(i2cSpeed, 0x10) << "the speed outlasts a release";
  EXPECT_EQ(complaintsOf(camera.camera), "");
}

TEST_F(BusSelection, AFailedStepLeavesTheSpeed) {
  etLib2_SelectI2cBus_DevNum(0, 2, 0);
  // Operations: set and get of the identity, set and get of register 6, set of register 6. Each
  // failing request also fails in its legacy forms; a late write counts as failed.
  for (const Fault& fault : {Fault{Fault::fails, 1}, Fault{Fault::fails, 3}, Fault{Fault::fails, 5},
                             Fault{Fault::stalls, 5, 1, 600}}) {
    machine().set(fault);
    etLib2_SelectI2cBus_DevNum(0, 2, 1);
    EXPECT_EQ(i2cSpeed, 0) << fault.first;
  }
  machine().clock.waitForOthers();
}

using Eeprom = CallLayer;

TEST_F(Eeprom, SelectsItsBusAndSwapsTheAddress) {
  etLib2_SelectI2cBus_DevNum(0, 2, 1);
  std::array<std::uint8_t, 2> sub = {0x34, 0x01};
  std::uint8_t data = 0x5A;
  journal();
  EXPECT_EQ(etLib2_I2cWrite_DevNum(0, 0xA0, 2, sub.data(), 1, &data), 0u);
  EXPECT_EQ(sub, (std::array<std::uint8_t, 2>{0x01, 0x34}));
  EXPECT_TRUE(bytesIn(journal()).ends_with(", 21[32] 00 A0 00 02 01 34 01 5A"))
      << "standard speed, whatever was selected";
  EXPECT_EQ(camera.chip.peek(6) & 0x04, 0u);
  std::uint8_t answer = 0;
  sub = {0x34, 0x01};
  EXPECT_EQ(etLib2_I2cRead_DevNum(0, 0xA0, 2, sub.data(), 1, &answer), 0u);
  EXPECT_NE(etLib2_I2cRead_DevNum(1, 0xA0, 2, sub.data(), 1, &answer), 0u) << "no such bridge";
  EXPECT_EQ(answer, 0x5A);
  EXPECT_EQ(complaintsOf(camera.camera), "");
}

TEST_F(Eeprom, IsAnOrdinarySlaveOnGenerationTwoWhichHasNoSwitch) {
  VirtualBridge second(0x970, {.family = BridgeFamily::generation2});
  open(second);
  std::array<std::uint8_t, 2> sub = {0x12, 0x34};
  std::uint8_t data = 0;
  etLib2_I2cRead_DevNum(0, 0xA0, 2, sub.data(), 1, &data);
  EXPECT_EQ(sub, (std::array<std::uint8_t, 2>{0x12, 0x34}));
  EXPECT_TRUE(bytesIn(journal()).starts_with("20[32] 00 A0 00 02 12 34 01, "));
  etLib2_SelectI2cBus_DevNum(0, 2, 1);
  EXPECT_EQ(i2cSpeed, 0);
  EXPECT_EQ(bytesIn(journal()), "26[32] 00 00 04, get 26 32");
}

class CallLayerThreads : public CallLayer {
 protected:
  static constexpr int threads = 8;
  const int roundsPerThread = 125 * effort();

  CallLayerThreads() {
    machine().videoInputs.push_back(bridgeInput(other, "2"));
    etLib2_Init();
    camera.camera.controller.set(0x04, 15);
    other.camera.controller.set(0x04, 16);
  }

  // A round of calls to one device. Returns whether each had its own answer.
  static bool round(std::uint32_t device, int number) {
    Lent lent;
    etLib2_SelectI2cBus_DevNum(device, 2, static_cast<std::uint32_t>(number & 1));
    return etLib2_GetDevTotalNum() == 2 && tryAll(device, lent) == std::set{0u} &&
           (lent.select & 4) != 0 && lent.light == (device == 0 ? 15 : 16);
  }

  void runThreads(const std::function<void(int)>& body) {
    for (int thread = 0; thread < threads; ++thread) {
      machine().clock.startThread([body, thread] { body(thread); });
    }
    machine().clock.waitForOthers();
  }

  VirtualBridge other{0x9C2};
};

TEST_F(CallLayerThreads, LoseNoReply) {
  std::atomic<int> lost = 0;
  runThreads([this, &lost](int thread) {
    for (int i = 0; i < roundsPerThread; ++i)
      lost += round(static_cast<std::uint32_t>(thread & 1), i) ? 0 : 1;
  });
  EXPECT_EQ(lost, 0);
  EXPECT_EQ(machine().open.filters, 2);
  EXPECT_EQ(complaintsOf(camera.camera) + complaintsOf(other.camera), "");
}

// What is called while the library is closed fails; nothing else does, and nothing stays open.
TEST_F(CallLayerThreads, SurviveOpeningAndClosing) {
  runThreads([this](int thread) {
    for (int i = 0; i < roundsPerThread / 5; ++i) {
      if (thread == 0) etLib2_Init();
      if (thread == 1) etLib2_Release();
      if (thread > 1) round(static_cast<std::uint32_t>(thread & 1), i);
    }
  });
  etLib2_Release();
  EXPECT_EQ(machine().open.filters, 0);
  EXPECT_EQ(machine().open.mutexHandles, 0);
}

}  // namespace
}  // namespace qvx::tests
