// qvxctl: the cameras of QVX64.dll from the command line, through its exports alone.
#include <algorithm>
#include <string>
#include <vector>

#include "command_line.h"
#include "commands.h"
#include "failure.h"
#include "output.h"
#include "text.h"

namespace qvxctl {

namespace {

template <void (*run)(const Options& options)>
void withoutArguments(CLI::App& command, const Options& options) {
  command.callback([&options] { run(options); });
}

constexpr struct {
  const char *name, *summary;
  void (*define)(CLI::App& command, const Options& options);
} commands[] = {
    {"list", "list the cameras", withoutArguments<listCameras>},
    {"info", "choose a camera and show what is known about it", withoutArguments<showInfo>},
    {"watch", "print each change of the magnification and each press of the touch button",
     withoutArguments<watchCamera>},
    {"exposure", "show the exposure time, after setting it if one is given", defineExposure},
    {"ae", "show or set automatic exposure and its brightness target", defineAutomaticExposure},
    {"flicker", "adapt the camera to the mains frequency", defineFlicker},
    {"amp", "show or set brightness, contrast and the like", definePicture},
    {"modes", "list the picture sizes of the Wi-Fi camera, or choose one", defineModes},
    {"snapshot", "save a still of the Wi-Fi camera as a JPEG file", defineSnapshot},
    {"lens", "show the range of the focus lens, or move it: limits, init, pos, fine", defineLens},
    {"light", "set a light of the lighting controller: switch, level, quadrant, axial, aim",
     defineLight},
    {"led", "switch the illumination between its basic states", defineLeds},
    {"config", "show the features of a camera by name", withoutArguments<showConfig>},
    {"selftest", "try everything that a camera has, and compare what it reports",
     withoutArguments<testCamera>},
    {"report", "collect what a bug report needs, as .zip or .txt", defineReport},
    {"call", "call one export and print its result", defineCall},
};

constexpr char examplesAndExitCodes[] = R"(Examples:
  qvxctl list                                what is plugged in
  qvxctl info --device 90                    the Wi-Fi camera
  qvxctl lens --help                         the arguments of a command
  qvxctl watch --seconds 60 --json           a minute of readings as JSON
  qvxctl call FOVx 0 63.4                    the field of view of camera 0 at x 63.4
  qvxctl call GetMAG 90 --init --device 90   Init first
  qvxctl call --help                         the exports and their arguments

Exit codes:
  0  done
  1  no camera answers, or it lacks or fails in what was asked for
  2  wrong usage
  3  QVX64.dll does not have the export
  4  standard output or a file cannot be written
  5  selftest: the camera reported another value than it was set to)";

void define(CLI::App& app, Options& options) {
  describeHelp(app);
  addOptions(app, options);
  app.require_subcommand(1)->fallthrough()->allow_windows_style_options(false);
  for (const auto& command : commands) {
    command.define(*app.add_subcommand(command.name, command.summary), options);
  }
  reserveOptions(app);
  app.footer(examplesAndExitCodes);
}

// Runs the command. CLI11 takes the words in reverse order.
void run(CLI::App& app, std::vector<std::string> words) {
  std::ranges::reverse(words);
  try {
    app.parse(std::move(words));
  } catch (const CLI::CallForHelp&) {
    const std::string help = app.help();
    printLine(help.substr(0, help.find_last_not_of('\n') + 1));
  } catch (const CLI::CallForVersion& version) {
    printLine(version.what());
  } catch (const CLI::ParseError& error) {
    // For a mistyped command CLI11 only says that a command is missing.
    const std::vector<std::string> unknown = app.remaining();
    const std::string problem =
        unknown.empty() ? error.what() : "unexpected argument \"" + unknown.front() + '"';
    throw Failure(ExitCode::badUsage, problem + "; see qvxctl --help");
  }
}

ExitCode guardedRun(const std::vector<std::string>& words) {
  CLI::App app("Finds and drives microscope cameras.", "qvxctl");
  Options options;
  define(app, options);
  try {
    run(app, words);
    return ExitCode::ok;
  } catch (const Failure& failure) {
    note(failure.what());
    return failure.code;
  }
}

}  // namespace

}  // namespace qvxctl

// Declared nowhere: the C runtime calls it by name.
extern "C" int wmain(int argc, wchar_t** argv);

extern "C" int wmain(int argc, wchar_t** argv) {
  const qvxctl::Utf8Console console;
  std::vector<std::string> words;
  for (int i = 1; i < argc; ++i) words.push_back(qvxctl::utf8(argv[i]));
  return static_cast<int>(qvxctl::guardedRun(words));
}
