#include <windows.h>

#include <cwchar>

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

// As the C runtime of the program takes it apart again.
std::wstring asArgument(const std::wstring& argument) {
  if (!argument.empty() && argument.find_first_of(L" \t\"") == std::wstring::npos) return argument;
  std::wstring result = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t character : argument) {
    if (character == L'"') result.append(backslashes + 1, L'\\');
    backslashes = character == L'\\' ? backslashes + 1 : 0;
    result += character;
  }
  return result.append(backslashes, L'\\') + L'"';
}

constexpr wchar_t guardOption[] = L"--guard";

// A process of its own, which tidies up should this one be killed.
void startGuard() {
  std::wstring program(32768, L'\0');
  program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
  std::wstring commandLine =
      asArgument(program) + L" " + guardOption + L" " + std::to_wstring(GetCurrentProcessId());
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS,
                      nullptr, nullptr, &startup, &process)) {
    return;
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

int guard(DWORD processId) {
  const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, processId);
  if (process != nullptr) WaitForSingleObject(process, INFINITE);
  sweepPlugs();
  return 0;
}

class WindowsPlugs final : public Plugs {
 public:
  explicit WindowsPlugs(Desk& desk) : served(desk) {}

  ServedDesk served;
};

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
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                      &startup, &process)) {
    return std::nullopt;
  }
  DWORD code = 0;
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(code);
}

std::unique_ptr<Plugs> plugIn(Desk& desk, std::string& problem) {
  auto plugs = std::make_unique<WindowsPlugs>(desk);
  problem = plugs->served.problem();
  if (!problem.empty()) return nullptr;
  for (const auto& camera : desk.cameras()) {
    if (camera->spec().transport == Transport::wifi) continue;
    startGuard();
    break;
  }
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
