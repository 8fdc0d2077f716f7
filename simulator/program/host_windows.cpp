#include <windows.h>

#include <cwchar>
#include <regex>

#include "simulator/fronts/handle.h"
#include "simulator/fronts/text.h"
#include "simulator/program/host.h"
#include "simulator/program/plugs.h"

namespace qvx::simulator {

namespace {

HANDLE interrupted = nullptr;

BOOL WINAPI onInterrupt(DWORD /*event*/) {
  SetEvent(interrupted);
  return TRUE;
}

// Quotes as the program's C runtime parses it: backslashes are special only before a quote.
std::wstring asArgument(const std::wstring& argument) {
  if (!argument.empty() && argument.find_first_of(L" \t\"") == std::wstring::npos) return argument;
  const auto escaped = std::regex_replace(argument, std::wregex(L"(\\\\*)\""), L"$1$1\\\"");
  return L'"' + std::regex_replace(escaped, std::wregex(L"(\\\\+)$"), L"$1$1") + L'"';
}

// Null if it does not start.
Handle startProcess(std::wstring commandLine, bool inherits, DWORD flags) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, inherits, flags, nullptr,
                     nullptr, &startup, &process)) {
    CloseHandle(process.hThread);
  }
  return Handle(process.hProcess);
}

constexpr wchar_t guardOption[] = L"--guard";

// A process that cleans up if this one is killed.
void startGuard() {
  startProcess(asArgument(programPath()) + L" " + guardOption + L" " +
                   std::to_wstring(GetCurrentProcessId()),
               false, DETACHED_PROCESS);
}

int guard(DWORD processId) {
  const Handle process(OpenProcess(SYNCHRONIZE, FALSE, processId));
  if (process != nullptr) WaitForSingleObject(process.get(), INFINITE);
  sweepPlugs();
  return 0;
}

}  // namespace

void claimInterrupts() {
  interrupted = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  SetConsoleCtrlHandler(onInterrupt, TRUE);
}

void awaitInterrupt() {
  WaitForSingleObject(interrupted, INFINITE);
}

std::optional<int> runProgram(std::span<const std::string> arguments) {
  std::wstring commandLine;
  for (const std::string& argument : arguments) commandLine += asArgument(wide(argument)) + L" ";
  const Handle program = startProcess(commandLine, true, 0);
  if (program == nullptr) return std::nullopt;
  DWORD code = 0;
  WaitForSingleObject(program.get(), INFINITE);
  GetExitCodeProcess(program.get(), &code);
  return static_cast<int>(code);
}

std::shared_ptr<void> plugIn(Desk& desk, std::string& problem) {
  auto plugs = std::make_shared<ServedDesk>(desk);
  problem = plugs->problem();
  if (problem.empty() && !plugs->isEmpty()) startGuard();
  return plugs;
}

void unplugLeftovers() {
  sweepPlugs();
}

}  // namespace qvx::simulator

int wmain(int count, wchar_t** values) {
  if (count == 3 && std::wstring_view(values[1]) == qvx::simulator::guardOption) {
    return qvx::simulator::guard(std::wcstoul(values[2], nullptr, 10));
  }
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(qvx::simulator::narrow(values[i]));
  return qvx::simulator::simulate(arguments);
}
