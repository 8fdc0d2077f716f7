// The simulator as a process beside applications: what they share through it, and what they see
// when it dies or hangs.
#include <windows.h>
// This header depends on windows.h.
#include <winternl.h>

#include <string>

#include "simulator/fronts/camera_list.h"
#include "simulator/fronts/text.h"
#include "tests/windows/fixtures/process.h"
#include "tests/windows/fixtures/simulated_cameras.h"
#include "tests/windows/support.h"

extern "C" NTSTATUS NTAPI NtSuspendProcess(HANDLE process);
extern "C" NTSTATUS NTAPI NtResumeProcess(HANDLE process);

namespace qvx::tests {
namespace {

// A program of the build, whose output can be read.
class Program {
 public:
  explicit Program(const std::string& command) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE output = nullptr;
    CreatePipe(&output_, &output, &inherited, 0);
    SetHandleInformation(output_, HANDLE_FLAG_INHERIT, 0);
    process_.emplace(simulator::programFolder() + simulator::wide(command), output);
    CloseHandle(output);
  }
  ~Program() { CloseHandle(output_); }

  const Process& process() const { return *process_; }

  // Its output up to the mark, or to its end.
  std::string readUntil(const std::string& mark) {
    std::string all;
    char byte = 0;
    for (DWORD count = 0; all.find(mark) == std::string::npos; all += byte) {
      if (!ReadFile(output_, &byte, 1, &count, nullptr) || count == 0) break;
    }
    return all;
  }

 private:
  HANDLE output_ = nullptr;
  std::optional<Process> process_;
};

DWORD exitCodeOf(const std::string& command) {
  return Program(command).process().exitCode().value();
}

class Simulator : public Program {
 public:
  explicit Simulator(const std::string& cameras)
      : Program("qvx-simulator.exe --no-page " + cameras) {
    const std::string said = readUntil("ready");
    EXPECT_NE(said.find("ready"), std::string::npos) << said;
  }
};

constexpr DWORD limit_ms = 20'000;  // for another process to unplug what a killed one has left

int open(const std::string& camera) {
  SetVideoDeviceIndex(camera.starts_with("usb3") ? -1 : 0);
  return Init();
}

TEST(SimulatorRuns, StandBesideEachOther) {
  const Simulator first("usb:0970");
  {
    const Simulator second("usb:0870");
    openCamera(1);
    EXPECT_NE(copyOf(GetDeviceId(1)).find(L"pid_0870"), std::wstring::npos);
  }
  EXPECT_TRUE(eventually(limit_ms, [] { return simulator::listedCameras().size() == 1; }));
  openCamera(0);
  EXPECT_NE(copyOf(GetDeviceId(0)).find(L"pid_0970"), std::wstring::npos);
}

TEST(SimulatorRuns, PassOnExitCodesAndTidyUp) {
  for (const auto& [arguments, code] : {std::pair{"usb:0970 -- cmd.exe /c exit 7", 7u},
                                        {"usb:0970 -- no-such-program", 97u},
                                        {"usb:0970,unit=bridges", 2u},
                                        {"usb:", 2u},
                                        {"wifi:0970,port=1 wifi:0971,port=1", 2u}}) {
    const std::string command = std::string("qvx-simulator.exe --no-page ") + arguments;
    EXPECT_EQ(exitCodeOf(command), code) << command;
    EXPECT_EQ(simulator::listedCameras().size(), 0u) << command;
  }
}

class Camera : public testing::TestWithParam<std::string> {
 protected:
  // The calls return in time, whatever their results.
  static void callInTime() {
    const ULONGLONG start_ms = GetTickCount64();
    GetConfig(0);
    GetVideoProcAmp(0);
    GetMAG(0);
    Init();
    EXPECT_LT(GetTickCount64() - start_ms, 60'000u);
  }
};

TEST_P(Camera, OfAKilledSimulatorIsGoneAndOfTheNextIsThere) {
  {
    const Simulator killed(GetParam());
    ASSERT_EQ(open(GetParam()), 1);
  }
  callInTime();
  EXPECT_TRUE(eventually(limit_ms, [] { return open(GetParam()) == 0; }));
  const Simulator next(GetParam());
  EXPECT_EQ(open(GetParam()), 1);
}

TEST_P(Camera, OfAHungSimulatorStallsUntilItGoesOn) {
  const Simulator simulator(GetParam());
  ASSERT_EQ(open(GetParam()), 1);
  NtSuspendProcess(simulator.process().handle());
  callInTime();
  NtResumeProcess(simulator.process().handle());
  EXPECT_EQ(open(GetParam()), 1);
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, Camera, testing::Values("usb:0970", "hid:0960", "usb3:09B0"));

}  // namespace
}  // namespace qvx::tests
