#include "command_line.h"

#include <windows.h>

#include <cmath>
#include <cstdlib>

#include "address.h"
#include "output.h"
#include "text.h"

namespace qvxctl {

namespace {

// As a full path, because the self-test changes the current folder.
void useTrace(const std::string& text) {
  const std::wstring name = wide(text);
  std::wstring path(GetFullPathNameW(name.c_str(), 0, nullptr, nullptr), L'\0');
  const auto room = static_cast<DWORD>(path.size());
  if (room == 0 || GetFullPathNameW(name.c_str(), room, path.data(), nullptr) == 0) {
    throw CLI::ValidationError("--trace", '"' + text + "\" is no name of a file");
  }
  SetEnvironmentVariableW(L"QVX64_TRACE", path.c_str());
}

std::vector<std::string> deviceIndexes() {
  std::vector<std::string> indexes;
  for (int index = QVX_CHOOSE; index < firstIndexBeyondUsb; ++index) {
    indexes.push_back(std::to_string(index));
  }
  indexes.push_back(std::to_string(QVX_WIFI_CAMERA));
  return indexes;
}

std::string version(const Options& options) {
  return options.json ? lineOf(object({{"version", QVXCTL_VERSION}})) : "qvxctl " QVXCTL_VERSION;
}

constexpr struct {
  const char* option;
  const char* command;
} reservedOptions[] = {{"--no-serials", "report"}, {"--seconds", "watch"}, {"--init", "call"}};

// Lists commands with their arguments.
class HelpFormat : public CLI::Formatter {
  std::string make_option_usage(const CLI::Option* argument) const override {
    const std::string name = argument->get_name();
    return argument->get_required() ? name : '[' + name + ']';
  }

  std::string make_subcommand(const CLI::App* command) const override {
    std::string form = command->get_name();
    for (const CLI::Option* argument :
         command->get_options([](const CLI::Option* option) { return option->get_positional(); })) {
      form += ' ' + make_option_usage(argument);
    }
    if (!command->get_subcommands({}).empty()) form += ' ' + get_label("SUBCOMMAND");
    std::ostringstream line;
    CLI::detail::format_help(line, form, command->get_description(), get_column_width());
    return line.str();
  }
};

}  // namespace

std::string inDecimal(const std::string& text) {
  const bool hexadecimal = text.find_first_of("xX") != std::string::npos;
  char* end = nullptr;
  const long long number = std::strtoll(text.c_str(), &end, hexadecimal ? 16 : 10);
  return text.empty() || *end != '\0' ? text : std::to_string(number);
}

std::string notFinite(const std::string& text) {
  return std::isfinite(std::strtod(text.c_str(), nullptr)) ? "" : text + " is not a finite number";
}

void addOptions(CLI::App& app, Options& options) {
  constexpr double longest_s = 1e9;  // about 32 years: far inside what a clock can count
  app.option_defaults()->disable_flag_override();
  app.add_option("--device", options.device,
                 "the camera: 0 to 7, 90 for Wi-Fi, -1 (default) to let the library choose")
      ->option_text("N")
      ->take_last()
      ->transform(inDecimal)
      ->check(CLI::IsMember(deviceIndexes()));
  app.add_option_function<std::string>(
         "--camera",
         [&options](const std::string& text) {
           useAddress(text);
           options.wifiCamera = true;
         },
         "where the Wi-Fi camera is; chooses it unless --device says otherwise")
      ->option_text("IPV4[:PORT]")
      ->take_last()
      ->check(notAnAddress);
  app.add_option_function<std::string>(
         "--trace", useTrace, "the library writes what passes between it and the camera to a file")
      ->option_text("FILE")
      ->take_last();
  app.add_flag("--no-serials", options.withoutSerials,
               "for report: leave out the serial numbers in device paths");
  app.add_flag("--json", options.json,
               "print JSON: one object, or one per line from watch and selftest");
  app.add_option("--seconds", options.seconds,
                 "for watch: stop after S seconds instead of at Ctrl-C")
      ->option_text("S")
      ->take_last()
      ->check(notFinite)
      ->check(CLI::Range(0.0, longest_s));
  app.add_flag("--init", options.initFirst,
               "for call: choose the camera and run Init before the call");
  app.set_version_flag(
      "--version", [&options] { return version(options); }, "print the version");
}

void reserveOptions(CLI::App& app) {
  for (const auto& reserved : reservedOptions) {
    const auto others = app.get_subcommands(
        [&reserved](CLI::App* command) { return command->get_name() != reserved.command; });
    for (CLI::App* const other : others) other->excludes(app.get_option(reserved.option));
  }
}

void describeHelp(CLI::App& app) {
  const auto format = std::make_shared<HelpFormat>();
  format->label("OPTIONS", "options");
  format->label("SUBCOMMAND", "COMMAND");
  format->column_width(40);
  app.formatter(format);
  app.set_help_flag("--help", "print this help, or that of the command that is given");
  app.group("Commands");
}

}  // namespace qvxctl
