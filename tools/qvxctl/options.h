// What the command line says.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qvx64/api.h"

namespace qvxctl {

constexpr int firstIndexBeyondUsb = 8;  // USB cameras have the indexes 0 to 7

struct Options {
  std::string command;
  std::vector<std::string> arguments;
  std::optional<int> device;
  std::optional<double> seconds;
  bool wifiCamera = false;  // its address is given
  bool json = false;
  bool withoutSerials = false;
  bool initFirst = false;
  bool help = false;
  bool version = false;

  // The camera to open. Who gives the address of the Wi-Fi camera means that one.
  int index() const { return device.value_or(wifiCamera ? QVX_WIFI_CAMERA : QVX_CHOOSE); }
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

// Where the library looks for the Wi-Fi camera.
std::string wifiCameraAddress();

// The argument of a command that takes one at most; more are bad usage.
std::optional<std::string> onlyArgument(const Options& options);

// Bad usage unless there are so many arguments; `what` names the command.
void expectArguments(const Options& options, const std::string& what, std::size_t count);

[[noreturn]] void refuseName(const std::string& what, const std::string& name,
                             const std::vector<std::string_view>& known);

// The row of a table that a word names; another word is bad usage.
template <class Row, std::size_t count>
const Row& rowNamed(const std::string& what, const Row (&rows)[count], const std::string& name) {
  std::vector<std::string_view> known;
  for (const Row& row : rows) {
    if (row.name == name) return row;
    known.push_back(row.name);
  }
  refuseName(what, name, known);
}

}  // namespace qvxctl
