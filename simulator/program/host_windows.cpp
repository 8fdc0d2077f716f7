#include <windows.h>

#include <vector>

#include "simulator/capture_filter/child_program.h"
#include "simulator/capture_filter/text.h"
#include "simulator/program/host.h"

namespace qvx::simulator {

namespace {

HANDLE interrupted = nullptr;

BOOL WINAPI onInterrupt(DWORD /*event*/) {
  SetEvent(interrupted);
  return TRUE;
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
  std::vector<std::wstring> words;
  for (const std::string& argument : arguments) words.push_back(wide(argument));
  return runProgram(words);
}

std::unique_ptr<Plugs> plugIn(Desk& /*desk*/, std::string& /*problem*/) {
  return std::make_unique<Plugs>();
}

void unplugLeftovers() {}

}  // namespace qvx::simulator

int wmain(int count, wchar_t** values) {
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(qvx::simulator::narrow(values[i]));
  return qvx::simulator::simulate(arguments);
}
