// The trace as a file of the system. A process reads the variable only once, so every trace is
// written by child processes: this program, with the number of calls of each of its threads as
// argument.
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
constexpr int threadsOfChild = 4;

void callFromThreads(int calls) {
  std::vector<std::thread> threads;
  for (int i = 0; i < threadsOfChild; ++i) {
    threads.emplace_back([calls] {
      for (int call = 0; call < calls; ++call) SetVideoDeviceIndex(call);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// Whether that many concurrent children completed all their calls.
bool run(int children, int calls, const fs::path& trace) {
  SetEnvironmentVariableW(L"QVX64_TRACE", trace.c_str());
  std::deque<Process> processes;
  for (int i = 0; i < children; ++i) {
    processes.emplace_back(Process::again(L"--calls " + std::to_wstring(calls)));
  }
  return std::ranges::all_of(processes, [](auto& each) { return each.exitCode(60'000) == 0U; });
}

class TraceFile : public testing::Test {
 protected:
  TraceFile() { fs::create_directory(folder); }
  ~TraceFile() override { fs::remove_all(folder); }

  std::vector<std::string> lines() const {
    std::vector<std::string> all;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) all.push_back(line);
    return all;
  }

  const fs::path folder = fs::temp_directory_path() / L"qvx-Spur-\u03B1-\u955C";
  const fs::path path = folder / L"\u955C.trace";
};

TEST_F(TraceFile, KeepsTheLinesOfProcessesAndThreadsWhole) {
  constexpr int children = 3, calls = 100;
  ASSERT_TRUE(run(children, calls, path));
  const std::regex call("\\d+ \\d+ \\d+ \\d+ call function=SetVideoDeviceIndex arguments=\\d+");
  const std::regex header(
      "\\d+ \\d+ \\d+ \\d+ trace version=\"[0-9.]+\" windows=\"[0-9.]+\" time=\"[-0-9T:.]+Z\" "
      "module=\".*\\\\\\\\QVX64\\.dll\" libusbk=\".*\"");
  int callsTold = 0, headers = 0;
  for (const std::string& line : lines()) {
    const bool isCall = std::regex_match(line, call), isHeader = std::regex_match(line, header);
    EXPECT_TRUE(isCall || isHeader) << line;
    callsTold += isCall;
    headers += isHeader;
  }
  EXPECT_EQ(callsTold, children * (threadsOfChild * calls + 1));
  EXPECT_EQ(headers, children);
}

// An obstacle ends the trace, but no call fails.
TEST_F(TraceFile, IsGivenUpWhereItCannotBeWritten) {
  EXPECT_TRUE(run(1, 5, folder / L"none" / L"camera.trace"));
  EXPECT_TRUE(run(1, 5, folder));  // a folder, not a file

  const auto opened = [this](DWORD share) {
    return CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, share, nullptr, OPEN_ALWAYS, 0,
                       nullptr);
  };
  const HANDLE exclusive = opened(0);
  EXPECT_TRUE(run(1, 5, path));
  CloseHandle(exclusive);
  EXPECT_EQ(lines().size(), 0U);

  const HANDLE shared = opened(FILE_SHARE_READ | FILE_SHARE_WRITE);
  ASSERT_TRUE(LockFile(shared, 0, 0, MAXDWORD, MAXDWORD));
  EXPECT_TRUE(run(1, 5, path));
  CloseHandle(shared);
  EXPECT_EQ(lines().size(), 0U);
}

}  // namespace
}  // namespace qvx::tests

int main(int argc, char** argv) {
  if (argc == 3 && std::string(argv[1]) == "--calls") {
    SetLastError(4711);
    SetVideoDeviceIndex(0);
    if (GetLastError() != 4711) return 1;  // tracing must not change the last error
    qvx::tests::callFromThreads(std::stoi(argv[2]));
    return 0;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
