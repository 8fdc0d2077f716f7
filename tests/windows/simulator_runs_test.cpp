// The simulator as a process of its own beside applications: what they share through it, and what
// they see when it dies or hangs.
#include <windows.h>
// The system's other headers follow windows.h.
#include <winternl.h>

#include <string>

#include "simulator/fronts/camera_list.h"
#include "simulator/fronts/text.h"
#include "tests/windows/fixtures/simulated_cameras.h"
#include "tests/windows/support.h"

extern "C" NTSTATUS NTAPI NtSuspendProcess(HANDLE process);
extern "C" NTSTATUS NTAPI NtResumeProcess(HANDLE process);

namespace qvx::tests {
namespace {

// A program of the build, whose output is read.
class Process {
 public:
  explicit Process(const std::string& command) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE output = nullptr;
    CreatePipe(&output_, &output, &inherited, 0);
    SetHandleInformation(output_, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = output;
    std::wstring line = simulator::programFolder() + simulator::wide(command);
    EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                               &startup, &process_))
        << command;
    CloseHandle(output);
  }
  ~Process() {
    kill();
    CloseHandle(output_);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  std::string readAll() { return readUntil(std::string(1, '\0')); }

  // What it says until it says that, or until its end.
  std::string readUntil(const std::string& mark) {
    std::string all;
    char byte = 0;
    for (DWORD count = 0; all.find(mark) == std::string::npos; all += byte) {
      if (!ReadFile(output_, &byte, 1, &count, nullptr) || count == 0) break;
    }
    return all;
  }

  DWORD exitCode() {
    DWORD code = 0;
    WaitForSingleObject(process_.hProcess, INFINITE);
    GetExitCodeProcess(process_.hProcess, &code);
    return code;
  }

  void kill() {
    TerminateProcess(process_.hProcess, 1);
    WaitForSingleObject(process_.hProcess, INFINITE);
  }
  void suspend() { NtSuspendProcess(process_.hProcess); }
  void resume() { NtResumeProcess(process_.hProcess); }

 private:
  HANDLE output_ = nullptr;
  PROCESS_INFORMATION process_{};
};

class Simulator : public Process {
 public:
  explicit Simulator(const std::string& cameras)
      : Process("qvx-simulator.exe --no-page " + cameras) {
    const std::string said = readUntil("ready");
    EXPECT_NE(said.find("ready"), std::string::npos) << said;
  }
};

// What a killed simulator leaves is taken out by another process.
template <class Condition>
bool eventually(Condition condition) {
  const ULONGLONG end_ms = GetTickCount64() + 20'000;
  while (!condition() && GetTickCount64() < end_ms) Sleep(50);
  return condition();
}

int open(const std::string& camera) {
  SetVideoDeviceIndex(camera.starts_with("usb3") ? -1 : 0);
  return Init();
}

TEST(SimulatorRuns, KeepWhatOneApplicationSetsForTheNext) {
  const Simulator simulator("usb:0970");
  EXPECT_EQ(Process("qvxctl.exe --device 0 call SetVideoProcAmp 0 20 --init").exitCode(), 0u);
  openCamera(0);
  EXPECT_EQ(GetVideoProcAmp(0), 20);
  SetVideoProcAmp(0, 7);
  const std::string said = Process("qvxctl.exe --device 0 call GetVideoProcAmp 0 --init").readAll();
  EXPECT_NE(said.find("7\r\n"), std::string::npos) << said;
}

TEST(SimulatorRuns, StandBesideEachOther) {
  const Simulator first("usb:0970");
  {
    const Simulator second("usb:0870");
    openCamera(1);
    EXPECT_NE(copyOf(GetDeviceId(1)).find(L"pid_0870"), std::wstring::npos);
  }
  EXPECT_TRUE(eventually([] { return simulator::listedCameras().size() == 1; }));
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
    EXPECT_EQ(Process(command).exitCode(), code) << command;
    EXPECT_EQ(simulator::listedCameras().size(), 0u) << command;
  }
}

class Camera : public testing::TestWithParam<std::string> {
 protected:
  // Whatever comes of the calls, they come back.
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
  EXPECT_TRUE(eventually([] { return open(GetParam()) == 0; }));
  const Simulator next(GetParam());
  EXPECT_EQ(open(GetParam()), 1);
}

TEST_P(Camera, OfAHungSimulatorStallsUntilItGoesOn) {
  Simulator simulator(GetParam());
  ASSERT_EQ(open(GetParam()), 1);
  simulator.suspend();
  callInTime();
  simulator.resume();
  EXPECT_EQ(open(GetParam()), 1);
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, Camera, testing::Values("usb:0970", "hid:0960", "usb3:09B0"));

}  // namespace
}  // namespace qvx::tests
