// qvxctl: the cameras of QVX64.dll from the command line, through its exports alone.
#include <algorithm>
#include <exception>

#include "commands.h"
#include "failure.h"
#include "json.h"
#include "output.h"
#include "text.h"

namespace qvxctl {

namespace {

constexpr Command commands[] = {
    {"list", "", "list the cameras", listCameras},
    {"info", "", "choose a camera and tell what is known of it", showInfo},
    {"watch", "", "print each change of the magnification and each press of the touch button",
     watchCamera},
    {"exposure", "[LINES]", "tell the exposure time, after setting it if one is given",
     exposeCamera},
    {"ae", "[on|off|TARGET]", "tell or set automatic exposure and its brightness target",
     adjustAutomaticExposure},
    {"flicker", "auto|60|50", "adapt the camera to the mains frequency", suppressFlicker},
    {"amp", "[PROPERTY [VALUE]]", "tell or set brightness, contrast and the like", adjustPicture},
    {"modes", "[WIDTHxHEIGHT]", "list the picture sizes of the Wi-Fi camera, or choose one",
     listVideoModes},
    {"snapshot", "FILE", "save a still of the Wi-Fi camera as a JPEG file", saveSnapshot},
    {"lens", "limits|init|pos N|fine N", "tell the range of the focus lens, or move it", driveLens},
    {"light", "switch N|level N|quadrant Q N|axial N|aim N",
     "set a light of the lighting controller", setLight},
    {"led", "off|on|other", "switch the illumination between its basic states", setLeds},
    {"config", "", "tell the features of a camera by name", showConfig},
    {"selftest", "", "try everything that a camera has, and compare what it tells", testCamera},
    {"report", "FILE.zip|FILE.txt", "collect what the report of a fault needs", writeReport},
    {"call", "NAME [ARGUMENTS]", "call one export and print its result", callExport},
};

const Command& commandNamed(const std::string& name) {
  const auto* const found = std::ranges::find_if(
      commands, [&name](const Command& command) { return command.name == name; });
  if (found == std::end(commands)) {
    throw Failure(ExitCode::badUsage, "unknown command " + quoted(name) + "; see qvxctl --help");
  }
  return *found;
}

void printVersion(bool asJson) {
  printLine(asJson ? json::object({{"version", json::text(QVXCTL_VERSION)}})
                   : "qvxctl " QVXCTL_VERSION);
}

void runCommand(const Options& options) {
  const Command& command = commandNamed(options.command);
  if (command.arguments.empty() && !options.arguments.empty()) {
    throw Failure(ExitCode::badUsage,
                  options.command + ": unexpected argument " + quoted(options.arguments.front()));
  }
  command.run(options);
}

void run(const Options& options) {
  if (options.version) return printVersion(options.json);
  if (options.help) return printLine(options.command == "call" ? exportHelpText() : helpText());
  if (options.command.empty()) {
    throw Failure(ExitCode::badUsage, "a command is missing; see qvxctl --help");
  }
  runCommand(options);
}

ExitCode guardedRun(const std::vector<std::string>& words) {
  try {
    run(parseOptions(words));
    return ExitCode::ok;
  } catch (const Failure& failure) {
    note(failure.what());
    return failure.code;
  }
}

}  // namespace

std::span<const Command> commandTable() {
  return commands;
}

}  // namespace qvxctl

// Declared nowhere: the C runtime calls it by name.
extern "C" int wmain(int argc, wchar_t** argv);

extern "C" int wmain(int argc, wchar_t** argv) {
  const qvxctl::Utf8Console console;
  std::vector<std::string> words;
  for (int i = 1; i < argc; ++i) words.push_back(qvxctl::utf8(argv[i]));
  return static_cast<int>(qvxctl::guardedRun(words));
}
