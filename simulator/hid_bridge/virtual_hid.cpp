// qvx-virtual-hid: plugs virtual microscope cameras into this Wine prefix as HID devices.
#include <cstdio>
#include <string>

#include "simulator/capture_filter/tool.h"
#include "simulator/hid_bridge/virtual_hid_devices.h"

namespace {

using namespace qvx::simulator;

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

int remove(Arguments) {
  unplugHidDevices();
  return done;
}

// Says first what clients did against the cameras' rules.
void takeOut() {
  for (std::size_t i = 0; hidDeviceText(i); ++i) {
    const auto state = hidDeviceState(i);
    if (!state || state->violationCount == 0) continue;
    std::fprintf(stderr, "camera %zu: %u violations\n%s", i, state->violationCount,
                 state->violations);
  }
  unplugHidDevices();
}

int run(Arguments arguments) {
  const auto asked = programRunIn(arguments);
  if (!asked) return misused;
  if (asked->cameras.empty()) return fail("run: no camera given", misused);
  std::string problem;
  if (!plugHidDevices(textsOf(asked->cameras), driverBesideProgram(), problem))
    return fail(problem);
  return runAmongCameras(asked->program, takeOut);
}

int set(Arguments arguments) {
  const auto change = changeIn(arguments);
  if (!change) return misused;
  std::string problem;
  return changeHidDevice(change->camera, change->options, problem) ? done : fail(problem);
}

int list(Arguments) {
  for (std::size_t i = 0; const auto text = hidDeviceText(i); ++i) {
    std::printf("%zu  %s\n", i, text->c_str());
  }
  return done;
}

constexpr Command commands[] = {{L"run", run}, {L"set", set}, {L"list", list}, {L"remove", remove}};

}  // namespace

int wmain(int count, wchar_t** values) {
  return runTool({"qvx-virtual-hid", usage, examples, commands}, count, values);
}
