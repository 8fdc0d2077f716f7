// The trace as a file of the system. A process reads the variable only once, so every trace is
// written by child processes.
#include <algorithm>
#include <deque>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <thread>
#include <vector>

#include "tests/windows/fixtures/process.h"
#include "tests/windows/support.h"

namespace qvx::tests {
namespace {

namespace fs = std::filesystem;
constexpr int threadsOfChild = 4, callsOfThread = 100;

// What each child does. Tracing must not change the last error.
TEST(DISABLED_TraceChild, CallsFromThreads) {
  SetLastError(4711);
  SetVideoDeviceIndex(0);
  EXPECT_EQ(GetLastError(), 4711U);
  std::vector<std::jthread> threads;
  for (int i = 0; i < threadsOfChild; ++i) {
    threads.emplace_back([] {
      for (int call = 0; call < callsOfThread; ++call) SetVideoDeviceIndex(call);
    });
  }
}

// Whether that many concurrent children completed all their calls.
bool run(int children, const fs::path& trace) {
  SetEnvironmentVariableW(L"QVX64_TRACE", trace.c_str());
  std::deque<Process> processes;
  for (int i = 0; i < children; ++i) {
    processes.emplace_back(
        Process::again(L"--gtest_also_run_disabled_tests --gtest_filter=DISABLED_TraceChild.*"));
  }
  return std::ranges::all_of(processes, [](auto& each) { return each.exitCode(60'000) == 0U; });
}

class TraceFile : public testing::Test {
 protected:
  TraceFile() { fs::create_directory(folder); }
  ~TraceFile() override { fs::remove_all(folder); }

  const fs::path folder = fs::temp_directory_path() / L"qvx-Spur-\u03B1-\u955C";
  const fs::path path = folder / L"\u955C.trace";
};

TEST_F(TraceFile, KeepsTheLinesOfProcessesAndThreadsWhole) {
  constexpr int children = 3;
  ASSERT_TRUE(run(children, path));
  const std::regex call("\\d+ \\d+ \\d+ \\d+ call function=SetVideoDeviceIndex arguments=\\d+");
  const std::regex header(
      "\\d+ \\d+ \\d+ \\d+ trace version=\"[0-9.]+\" windows=\"[0-9.]+\" time=\"[-0-9T:.]+Z\" "
      "module=\".*\\\\\\\\QVX64\\.dll\" libusbk=\".*\"");
  int callsTold = 0, headers = 0;
  std::ifstream file(path, std::ios::binary);
  for (std::string line; std::getline(file, line);) {
    const bool isCall = std::regex_match(line, call), isHeader = std::regex_match(line, header);
    EXPECT_TRUE(isCall || isHeader) << line;
    callsTold += isCall;
    headers += isHeader;
  }
  EXPECT_EQ(callsTold, children * (threadsOfChild * callsOfThread + 1));
  EXPECT_EQ(headers, children);
}

// An obstacle ends the trace, but no call fails.
TEST_F(TraceFile, IsGivenUpWhereItCannotBeWritten) {
  EXPECT_TRUE(run(1, folder / L"none" / L"camera.trace"));
  EXPECT_TRUE(run(1, folder));  // a folder, not a file

  const auto open = [this](DWORD share) {
    return CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, share, nullptr, OPEN_ALWAYS, 0,
                       nullptr);
  };
  const HANDLE exclusive = open(0);
  EXPECT_TRUE(run(1, path));
  CloseHandle(exclusive);
  const HANDLE shared = open(FILE_SHARE_READ | FILE_SHARE_WRITE);
  ASSERT_TRUE(LockFile(shared, 0, 0, MAXDWORD, MAXDWORD));
  EXPECT_TRUE(run(1, path));
  CloseHandle(shared);
  EXPECT_EQ(fs::file_size(path), 0U);
}

}  // namespace
}  // namespace qvx::tests
