// qvx-virtual-cameras: registers virtual microscope cameras as video inputs of this machine.
#include <windows.h>

#include <charconv>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "simulator/capture_filter/camera_registry.h"
#include "simulator/capture_filter/child_program.h"
#include "simulator/capture_filter/text.h"
#include "simulator/model/bridge_chip_spec.h"

namespace {

using namespace qvx::simulator;

enum ExitCode : int { done = 0, failed = 1, misused = 2, programNotStarted = 97 };

constexpr char usage[] =
    "usage: qvx-virtual-cameras install [--names system|device-path] CAMERA...\n"
    "       qvx-virtual-cameras run [--names system|device-path] CAMERA... -- PROGRAM "
    "[ARGUMENT...]\n"
    "       qvx-virtual-cameras set NUMBER OPTION=VALUE[,OPTION=VALUE...]\n"
    "       qvx-virtual-cameras list\n"
    "       qvx-virtual-cameras remove\n"
    "\n"
    "run removes the cameras when the program ends, and passes on its exit code.\n"
    "set changes a camera's zoom, button and fault while programs use it.\n"
    "Names: device-path (usual) as Windows names real cameras; system as it names software.\n"
    "\n";

constexpr char examples[] =
    "\n"
    "examples: qvx-virtual-cameras run 0970,zoom=1:20/10s -- qvxctl watch --seconds 15\n"
    "          qvx-virtual-cameras install 0970 09C5,chip=2,button=2s 046D:0825,unit=none\n"
    "          qvx-virtual-cameras set 0 zoom=63\n";

int fail(const std::string& problem, ExitCode code = failed) {
  std::fprintf(stderr, "qvx-virtual-cameras: %s\n", problem.c_str());
  return code;
}

int help() {
  std::printf("%s%s%s", usage, bridgeSpecHelp, examples);
  return done;
}

using Arguments = std::span<const std::wstring>;

// Takes "--names ..." off the front.
bool takeNaming(Arguments& arguments, Naming& naming) {
  naming = Naming::devicePath;
  if (arguments.empty() || arguments[0] != L"--names") return true;
  if (arguments.size() < 2) return false;
  if (arguments[1] == L"system") naming = Naming::system;
  if (naming != Naming::system && arguments[1] != L"device-path") return false;
  arguments = arguments.subspan(2);
  return true;
}

int install(Arguments arguments) {
  Naming naming;
  if (!takeNaming(arguments, naming)) return fail("--names: system or device-path", misused);
  if (arguments.empty()) return fail("no camera given", misused);
  std::vector<std::string> texts;
  for (const std::wstring& argument : arguments) texts.push_back(narrow(argument));
  std::string problem;
  if (registerCameras(texts, naming, filterBesideProgram(), problem)) return done;
  unregisterCameras();
  return fail(problem);
}

int remove(Arguments) {
  unregisterCameras();
  return done;
}

int run(Arguments arguments) {
  std::size_t cameras = 0;
  while (cameras < arguments.size() && arguments[cameras] != L"--") ++cameras;
  if (cameras + 1 >= arguments.size()) return fail("run: no program given", misused);
  const int status = install(arguments.first(cameras));
  if (status != done) return status;
  const auto code = runProgram(arguments.subspan(cameras + 1));
  unregisterCameras();
  return code ? *code : fail("the program cannot be started", programNotStarted);
}

int set(Arguments arguments) {
  if (arguments.size() != 2) return fail("set: a camera's number and its options", misused);
  const std::string number = narrow(arguments[0]);
  const std::vector<RegisteredCamera> cameras = registeredCameras();
  std::size_t index = cameras.size();
  std::from_chars(number.data(), number.data() + number.size(), index);
  if (index >= cameras.size()) return fail("there is no camera " + number);
  std::string problem;
  return changeCamera(cameras[index], narrow(arguments[1]), problem) ? done : fail(problem);
}

int list(Arguments) {
  std::size_t number = 0;
  for (const RegisteredCamera& camera : registeredCameras()) {
    std::printf("%zu  %s\n   %s\n", number++, camera.text.c_str(),
                narrow(devicePathOf(camera)).c_str());
  }
  return done;
}

constexpr struct {
  std::wstring_view name;
  int (*run)(Arguments);
} commands[] = {
    {L"install", install}, {L"run", run}, {L"set", set}, {L"list", list}, {L"remove", remove},
};

}  // namespace

int wmain(int count, wchar_t** values) {
  const std::vector<std::wstring> arguments(values + 1, values + count);
  if (arguments.empty() || arguments[0] == L"--help") return help();
  for (const auto& command : commands) {
    if (command.name == arguments[0]) return command.run(Arguments(arguments).subspan(1));
  }
  return fail("unknown command: " + narrow(arguments[0]), misused);
}
