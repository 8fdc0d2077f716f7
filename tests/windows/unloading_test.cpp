// Unloading: the DLL stays loaded when it is freed, and it does not touch an open camera when the
// process ends. The program is not linked with the DLL; the ends of processes are tested in child
// processes.
#include <windows.h>
// These headers depend on windows.h.
#include <objbase.h>
#include <wininet.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/support/effort.h"
#include "tests/windows/fixtures/imports.h"
#include "tests/windows/fixtures/process.h"
#include "tests/windows/fixtures/resources.h"
#include "tests/windows/fixtures/simulated_cameras.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

constexpr wchar_t name[] = L"QVX64.dll";

template <class Export>
Export* exported(const char* function) {
  return reinterpret_cast<Export*>(
      reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(name), function)));
}

int freeThreadLocalSlots() {
  std::vector<DWORD> slots;
  for (DWORD slot; (slot = TlsAlloc()) != TLS_OUT_OF_INDEXES;) slots.push_back(slot);
  for (const DWORD slot : slots) TlsFree(slot);
  return static_cast<int>(slots.size());
}

TEST(Unloading, ManyLoadsLeaveNothing) {
  const auto loadAndFree = [] { return FreeLibrary(LoadLibraryW(name)); };
  ASSERT_TRUE(loadAndFree());
  const int slots = freeThreadLocalSlots();
  const Resources before = resources();
  for (int i = 0; i < 1000 * effort(); ++i) ASSERT_TRUE(loadAndFree()) << i;
  const Resources left = resources() - before;
  EXPECT_EQ(left.handles, 0);
  EXPECT_EQ(left.threads, 0);
  EXPECT_LE(left.heapBytes, 512);
  EXPECT_EQ(freeThreadLocalSlots(), slots);
}

int polls = 0;
HINTERNET WINAPI countPoll(LPCWSTR, DWORD, LPCWSTR, LPCWSTR, DWORD) {
  ++polls;
  return nullptr;
}

// A crash in unloaded code would go unnoticed, since the system catches exceptions of timers; so
// the polls are counted.
TEST(Unloading, OnAnotherThreadLeavesTimersThatRun) {
  const HMODULE library = LoadLibraryW(name);
  exported<decltype(SetVideoDeviceIndex)>("SetVideoDeviceIndex")(90);
  exported<decltype(SetEventCallback)>("SetEventCallback")(nullptr);
  exported<decltype(EnablePressKey)>("EnablePressKey")(1);
  std::jthread([library] { FreeLibrary(library); }).join();
  const ReplacedImport request("InternetOpenW", &countPoll);
  pumpMessages(600);
  EXPECT_GE(polls, 1);
  exported<decltype(EnablePressKey)>("EnablePressKey")(0);
}

enum Ending : unsigned { freed = 1, withoutCom = 2 };
enum ExitCode : DWORD { clean = 0, noCamera = 10, camerasReleased = 11 };

BOOL WINAPI tellOfRelease(HANDLE) {
  TerminateProcess(GetCurrentProcess(), camerasReleased);
  return TRUE;
}

// The body of the child process. The object that has opened the cameras owns a handle, which its
// destructor would close.
int openABridgeAndEnd(unsigned ending) {
  const HMODULE library = LoadLibraryW(name);
  exported<decltype(SetVideoDeviceIndex)>("SetVideoDeviceIndex")(0);
  if (exported<decltype(Init)>("Init")() != 1) return noCamera;
  static auto& untilTheEnd = *new ReplacedImport("CloseHandle", &tellOfRelease);
  static_cast<void>(untilTheEnd);
  if ((ending & freed) != 0) FreeLibrary(library);
  APTTYPE type;
  APTTYPEQUALIFIER qualifier;
  while ((ending & withoutCom) != 0 && SUCCEEDED(CoGetApartmentType(&type, &qualifier))) {
    CoUninitialize();
  }
  return clean;
}

TEST(Unloading, LeavesAnOpenBridgeAlone) {
  const SimulatedCameras cameras({"usb:0870"});
  for (int i = 0; i < effort(); ++i) {
    for (const unsigned ending : {0U, 0U | freed, 0U | withoutCom, 0U | freed | withoutCom}) {
      const Process process(Process::again(L"--end " + std::to_wstring(ending)));
      ASSERT_EQ(process.exitCode(), clean) << "ending " << ending << ", process " << i;
    }
  }
}

}  // namespace
}  // namespace qvx::tests

int main(int argc, char** argv) {
  if (argc == 3 && std::string(argv[1]) == "--end") {
    return qvx::tests::openABridgeAndEnd(static_cast<unsigned>(std::stoul(argv[2])));
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
