// qvx-virtual-hid: plugs virtual microscope cameras into this Wine prefix as HID devices.
#include <windows.h>

#include <charconv>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "simulator/capture_filter/child_program.h"
#include "simulator/capture_filter/text.h"
#include "simulator/hid_bridge/virtual_hid_devices.h"
#include "simulator/model/bridge_chip_spec.h"

namespace {

using namespace qvx::simulator;

enum ExitCode : int { done = 0, failed = 1, misused = 2, programNotStarted = 97 };

constexpr char usage[] =
    "usage: qvx-virtual-hid run CAMERA... -- PROGRAM [ARGUMENT...]\n"
    "       qvx-virtual-hid set NUMBER OPTION=VALUE[,OPTION=VALUE...]\n"
    "       qvx-virtual-hid list\n"
    "       qvx-virtual-hid remove\n"
    "\n"
    "run unplugs the cameras when the program ends, tells what it did against their rules, and\n"
    "passes on its exit code. set changes a camera's zoom, button and fault meanwhile.\n"
    "\n";

constexpr char examples[] =
    "\n"
    "examples: qvx-virtual-hid run 0970,zoom=1:20/10s -- qvxctl watch --seconds 15\n"
    "          qvx-virtual-hid run 09C5,chip=2 0970,reports=extra -- qvxctl info\n";

int fail(const std::string& problem, ExitCode code = failed) {
  std::fprintf(stderr, "qvx-virtual-hid: %s\n", problem.c_str());
  return code;
}

int help() {
  std::printf("%s%s%s", usage, bridgeSpecHelp, examples);
  return done;
}

using Arguments = std::span<const std::wstring>;

int remove(Arguments) {
  unplugHidDevices();
  return done;
}

void tellViolations(std::size_t cameras) {
  for (std::size_t i = 0; i < cameras; ++i) {
    const auto state = hidDeviceState(i);
    if (!state || state->violationCount == 0) continue;
    std::fprintf(stderr, "camera %zu: %u violations\n%s", i, state->violationCount,
                 state->violations);
  }
}

int run(Arguments arguments) {
  std::vector<std::string> texts;
  std::size_t count = 0;
  while (count < arguments.size() && arguments[count] != L"--") {
    texts.push_back(narrow(arguments[count++]));
  }
  if (count == 0) return fail("run: no camera given", misused);
  if (count + 1 >= arguments.size()) return fail("run: no program given", misused);
  std::string problem;
  if (!plugHidDevices(texts, driverBesideProgram(), problem)) return fail(problem);
  const auto code = runProgram(arguments.subspan(count + 1));
  tellViolations(count);
  unplugHidDevices();
  return code ? *code : fail("the program cannot be started", programNotStarted);
}

int set(Arguments arguments) {
  if (arguments.size() != 2) return fail("set: a camera's number and its options", misused);
  const std::string number = narrow(arguments[0]);
  std::size_t index = 0;
  const char* const end = number.data() + number.size();
  if (std::from_chars(number.data(), end, index).ptr != end) {
    return fail("set: not a number: " + number, misused);
  }
  std::string problem;
  return changeHidDevice(index, narrow(arguments[1]), problem) ? done : fail(problem);
}

int list(Arguments) {
  for (std::size_t i = 0; const auto text = hidDeviceText(i); ++i) {
    std::printf("%zu  %s\n", i, text->c_str());
  }
  return done;
}

constexpr struct {
  std::wstring_view name;
  int (*run)(Arguments);
} commands[] = {{L"run", run}, {L"set", set}, {L"list", list}, {L"remove", remove}};

}  // namespace

int wmain(int count, wchar_t** values) {
  const std::vector<std::wstring> arguments(values + 1, values + count);
  if (arguments.empty() || arguments[0] == L"--help") return help();
  for (const auto& command : commands) {
    if (command.name == arguments[0]) return command.run(Arguments(arguments).subspan(1));
  }
  return fail("unknown command: " + narrow(arguments[0]), misused);
}
