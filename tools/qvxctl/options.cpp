#include "options.h"

#include <algorithm>

#include "failure.h"
#include "numbers.h"
#include "text.h"

namespace qvxctl {

namespace {

double secondsIn(const std::string& text) {
  const double seconds = decimalNumber("--seconds", text);
  constexpr double longest = 1e9;  // about 32 years: far inside what a clock can count
  if (seconds >= 0 && seconds <= longest) return seconds;
  throw Failure(ExitCode::badUsage, "--seconds: " + text + " is not between 0 and 1000000000");
}

constexpr Option options[] = {
    {"--device", "N", "",
     "the camera: 0 to 7, 90 for Wi-Fi, -1 (default) to let the library choose",
     [](Options& all, const std::string& value) { all.device = wholeNumber("--device", value); }},
    {"--json", "", "", "print JSON: one object, or one per line from watch and selftest",
     [](Options& all, const std::string&) { all.json = true; }},
    {"--seconds", "S", "watch", "stop after S seconds instead of at Ctrl-C",
     [](Options& all, const std::string& value) { all.seconds = secondsIn(value); }},
    {"--init", "", "call", "choose the camera and run Init before the call",
     [](Options& all, const std::string&) { all.initFirst = true; }},
    {"--help", "", "", "print this help; after call, the exports and their arguments",
     [](Options& all, const std::string&) { all.help = true; }},
    {"--version", "", "", "print the version",
     [](Options& all, const std::string&) { all.version = true; }},
};

const Option& optionNamed(const std::string& name) {
  const auto* const found =
      std::ranges::find_if(options, [&name](const Option& option) { return option.name == name; });
  if (found == std::end(options)) {
    throw Failure(ExitCode::badUsage, "unknown option " + quoted(name) + "; see qvxctl --help");
  }
  return *found;
}

// Reads the words one after the other into the options.
class Parser {
 public:
  explicit Parser(const std::vector<std::string>& words) : words_(words) {}

  Options parse() {
    while (position_ < words_.size()) take(words_[position_++]);
    for (const Option* option : given_) checkCommandOf(*option);
    return parsed_;
  }

 private:
  void take(const std::string& word) {
    if (onlyArguments_ || !word.starts_with("--")) {
      takeArgument(word);
    } else if (word == "--") {
      onlyArguments_ = true;
    } else {
      takeOption(word);
    }
  }

  void takeArgument(const std::string& word) {
    if (parsed_.command.empty()) {
      parsed_.command = word;
    } else {
      parsed_.arguments.push_back(word);
    }
  }

  void takeOption(const std::string& word) {
    const std::size_t equals = word.find('=');
    const Option& option = optionNamed(word.substr(0, equals));
    std::optional<std::string> value;
    if (equals != std::string::npos) value = word.substr(equals + 1);
    option.apply(parsed_, option.value.empty() ? withoutValue(option, value)
                                               : valueOf(option, std::move(value)));
    given_.push_back(&option);
  }

  std::string withoutValue(const Option& option, const std::optional<std::string>& value) {
    if (!value) return {};
    throw Failure(ExitCode::badUsage, std::string(option.name) + " takes no value");
  }

  std::string valueOf(const Option& option, std::optional<std::string> attached) {
    if (attached) return *std::move(attached);
    if (position_ < words_.size()) return words_[position_++];
    throw Failure(ExitCode::badUsage,
                  std::string(option.name) + " needs a value: " + std::string(option.value));
  }

  void checkCommandOf(const Option& option) const {
    if (option.command.empty() || option.command == parsed_.command) return;
    throw Failure(ExitCode::badUsage, std::string(option.name) + " is an option of " +
                                          std::string(option.command) + " only");
  }

  const std::vector<std::string>& words_;
  std::size_t position_ = 0;
  bool onlyArguments_ = false;
  Options parsed_;
  std::vector<const Option*> given_;
};

}  // namespace

std::span<const Option> optionTable() {
  return options;
}

Options parseOptions(const std::vector<std::string>& words) {
  return Parser(words).parse();
}

std::optional<std::string> onlyArgument(const Options& options) {
  if (options.arguments.empty()) return std::nullopt;
  if (options.arguments.size() == 1) return options.arguments.front();
  throw Failure(ExitCode::badUsage,
                options.command + ": unexpected argument " + quoted(options.arguments[1]));
}

}  // namespace qvxctl
