#include <algorithm>

#include "commands.h"
#include "exports.h"

namespace qvxctl {

namespace {

struct Row {
  std::string left;
  std::string_view right;
};

std::string words(std::string_view first, std::string_view second) {
  return std::string(first) + (second.empty() ? "" : " ") + std::string(second);
}

std::string table(std::string_view title, const std::vector<Row>& rows) {
  std::size_t width = 0;
  for (const Row& row : rows) width = std::max(width, row.left.size());
  std::string text = "\n\n" + std::string(title) + ':';
  for (const Row& row : rows) {
    text += "\n  " + row.left + std::string(width - row.left.size() + 2, ' ');
    text += row.right;
  }
  return text;
}

std::string commandHelp() {
  std::vector<Row> rows;
  for (const Command& command : commandTable()) {
    rows.push_back({words(command.name, command.arguments), command.summary});
  }
  return table("Commands", rows);
}

std::string optionHelp() {
  std::vector<Row> rows;
  for (const Option& option : optionTable()) {
    const std::string form = words(option.name, option.value);
    rows.push_back({option.command.empty() ? form : words(option.command, form), option.summary});
  }
  return table("Options", rows);
}

}  // namespace

std::string helpText() {
  return "usage: qvxctl [options] COMMAND\nFinds and drives microscope cameras." + commandHelp() +
         optionHelp() +
         table("Examples", {{"qvxctl list", "what is plugged in"},
                            {"qvxctl info --device 90", "the Wi-Fi camera"},
                            {"qvxctl watch --seconds 60 --json", "a minute of readings as JSON"},
                            {"qvxctl call FOVx 0 63.4", "the field of view of camera 0 at x 63.4"},
                            {"qvxctl call GetMAG 90 --init --device 90", "Init first"},
                            {"qvxctl call --help", "the exports and their arguments"}}) +
         table("Exit codes",
               {{"0", "done"},
                {"1", "no camera answers, or it lacks or fails in what was asked for"},
                {"2", "wrong usage"},
                {"3", "QVX64.dll does not have the export"},
                {"4", "standard output or a file cannot be written"},
                {"5", "selftest: the camera told another value than it was set to"}});
}

std::string exportHelpText() {
  std::string text =
      "usage: qvxctl call NAME [ARGUMENTS] [--init] [--device N] [--json]\n"
      "Whole numbers (int) may be hexadecimal: 0x9B0. Results stand behind the arrow.\n"
      "With --device, SetVideoDeviceIndex runs first; with --init, Init after it.\n";
  for (const Export& known : exportTable()) text += "\n  " + known.usage;
  return text;
}

}  // namespace qvxctl
