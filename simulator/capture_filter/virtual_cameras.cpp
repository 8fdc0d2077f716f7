// qvx-virtual-cameras: registers virtual microscope cameras as video inputs of this machine.
#include <cstdio>
#include <string>
#include <vector>

#include "simulator/capture_filter/camera_registry.h"
#include "simulator/capture_filter/text.h"
#include "simulator/capture_filter/tool.h"

namespace {

using namespace qvx::simulator;

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
  std::string problem;
  if (registerCameras(textsOf(arguments), naming, filterBesideProgram(), problem)) return done;
  unregisterCameras();
  return fail(problem);
}

int remove(Arguments) {
  unregisterCameras();
  return done;
}

int run(Arguments arguments) {
  const auto asked = programRunIn(arguments);
  if (!asked) return misused;
  const int status = install(asked->cameras);
  return status == done ? runAmongCameras(asked->program, unregisterCameras) : status;
}

int set(Arguments arguments) {
  const auto change = changeIn(arguments);
  if (!change) return misused;
  const std::vector<RegisteredCamera> cameras = registeredCameras();
  if (change->camera >= cameras.size()) {
    return fail("there is no camera " + std::to_string(change->camera));
  }
  std::string problem;
  return changeCamera(cameras[change->camera], change->options, problem) ? done : fail(problem);
}

int list(Arguments) {
  std::size_t number = 0;
  for (const RegisteredCamera& camera : registeredCameras()) {
    std::printf("%zu  %s\n   %s\n", number++, camera.text.c_str(),
                narrow(devicePathOf(camera)).c_str());
  }
  return done;
}

constexpr Command commands[] = {
    {L"install", install}, {L"run", run}, {L"set", set}, {L"list", list}, {L"remove", remove},
};

}  // namespace

int wmain(int count, wchar_t** values) {
  return runTool({"qvx-virtual-cameras", usage, examples, commands}, count, values);
}
