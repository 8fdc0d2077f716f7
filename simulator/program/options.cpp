#include "simulator/program/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <set>

#include "simulator/model/words.h"

namespace qvx::simulator {

namespace {

constexpr char usage[] =
    R"(Usage: qvx-simulator [OPTION]... CAMERA... [-- PROGRAM [ARGUMENT]...]
       qvx-simulator --unplug
)";

constexpr char description[] =
    R"(Plugs simulated microscope cameras into this machine, for as long as PROGRAM
runs, or until Ctrl-C. Shows them on a page, http://127.0.0.1:8064/.
What a client does that a real camera would not understand is reported on
standard error as a violation.
)";

constexpr char exitStatusAndExamples[] =
    R"(Exit status: that of PROGRAM; 0 ended by Ctrl-C, 1 a camera cannot be plugged
in, 2 wrong option, 97 PROGRAM does not start.

Examples:
  qvx-simulator --log wifi:0998,zoom=1:200/10s
  qvx-simulator usb:0970,button=2s,fault=stall:600ms -- qvxctl watch
  qvx-simulator hid:09C5 usb3:09B0 -- qvxctl list

)";

// CLI11 knows nothing of a program after the options.
class HelpFormat : public CLI::Formatter {
  std::string make_usage(const CLI::App*, std::string) const override { return usage; }
};

// Says what is wrong with a camera; nothing when it is right.
std::string notACamera(const std::string& text) {
  std::string problem;
  cameraDescriptionFrom(text, problem);
  return problem;
}

void takePage(const std::string& place, Options& options) {
  std::string_view rest = place;
  options.pageIsAsked = true;
  options.pageAddress = takePart(rest, ':');
  const auto port = numberFrom(rest, 0, 0xFFFF);
  if (!port || !CLI::ValidIPV4(options.pageAddress).empty()) {
    throw CLI::ValidationError("--page", place + " is no ADDRESS:PORT, such as 127.0.0.1:8064");
  }
  options.pagePort = static_cast<int>(*port);
}

void define(CLI::App& app, Options& options, std::vector<std::string>& cameras) {
  app.allow_windows_style_options(false);
  app.formatter(std::make_shared<HelpFormat>());
  app.get_formatter()->column_width(24);
  app.footer(exitStatusAndExamples + cameraDescriptionHelp());
  app.option_defaults()->disable_flag_override();
  app.set_help_flag("--help", "print this");
  app.add_option("CAMERA", cameras, "a camera, see below")->option_text("...")->check(notACamera);
  app.add_flag("--log", options.log, "print every access to the cameras");
  app.add_option_function<std::string>(
         "--page", [&options](const std::string& place) { takePage(place, options); },
         "where the page is; by itself it takes another\nport when 8064 is taken")
      ->option_text("ADDRESS:PORT")
      ->take_last();
  app.add_flag("--no-page", options.noPage, "none");
  app.add_option("--address", options.address, "where Wi-Fi cameras listen (default 127.0.0.1)")
      ->option_text("IPV4")
      ->take_last()
      ->check(CLI::ValidIPV4);
  app.add_flag("--unplug", options.unplug,
               "take out what a run that was killed has left\nplugged in");
}

void expectCameras(const Options& options) {
  if (options.cameras.empty() && !options.unplug) throw CLI::RequiredError("a CAMERA");
  std::set<std::uint16_t> ports;
  for (const CameraDescription& camera : options.cameras) {
    if (camera.transport != Transport::wifi || camera.port == 0) continue;
    if (ports.insert(camera.port).second) continue;
    throw CLI::ValidationError("two Wi-Fi cameras on port " + std::to_string(camera.port) +
                               "; give one ,port=N");
  }
}

// CLI11 takes the words in reverse order.
void parse(CLI::App& app, std::vector<std::string> words, Options& options) {
  std::vector<std::string> cameras;
  define(app, options, cameras);
  std::ranges::reverse(words);
  app.parse(std::move(words));
  std::string problem;
  for (const std::string& camera : cameras) {
    options.cameras.push_back(*cameraDescriptionFrom(camera, problem));
  }
  expectCameras(options);
}

}  // namespace

std::string optionsFrom(std::span<const std::string> arguments, Options& options) {
  const auto end = std::ranges::find(arguments, "--");
  if (end != arguments.end()) {
    options.program.assign(end + 1, arguments.end());
    if (options.program.empty()) return "no program given after --";
  }
  CLI::App app(description, "qvx-simulator");
  try {
    parse(app, {arguments.begin(), end}, options);
  } catch (const CLI::CallForHelp&) {
    options.help = app.help();
  } catch (const CLI::ParseError& error) {
    // The value of an unknown option would be taken for a camera.
    const std::vector<std::string> unknown = app.remaining();
    return (unknown.empty() ? error.what() : "unknown option " + unknown.front()) + "; see --help";
  }
  return {};
}

}  // namespace qvx::simulator
