// What the command line says.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qvxctl {

struct Options {
  std::string command;
  std::vector<std::string> arguments;
  std::optional<int> device;
  std::optional<double> seconds;
  bool json = false;
  bool initFirst = false;
  bool help = false;
  bool version = false;
};

struct Option {
  std::string_view name;
  std::string_view value;    // what follows the option; empty for none
  std::string_view command;  // the only command that takes it; empty for all
  std::string_view summary;
  void (*apply)(Options& options, const std::string& value);
};

std::span<const Option> optionTable();

// Options may stand anywhere; "--" ends them. Negative numbers are not options. Fails as bad usage.
Options parseOptions(const std::vector<std::string>& words);

// The argument of a command that takes one at most; more are bad usage.
std::optional<std::string> onlyArgument(const Options& options);

}  // namespace qvxctl
