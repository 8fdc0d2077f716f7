// The options of all commands, and the arguments that several commands take.
#pragma once

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>
#include <vector>

#include "options.h"
#include "qvx64/api.h"

namespace qvxctl {

// The help of the program and, as they inherit it, of the commands that are added afterwards.
void describeHelp(CLI::App& app);

// Options may stand before and after the command.
void addOptions(CLI::App& app, Options& options);

// Makes commands refuse the options of others. To be called when all commands have been added.
void reserveOptions(CLI::App& app);

// Rewrites whole numbers, decimal or 0x..., as decimal ones: CLI11 reads 010 as octal.
std::string inDecimal(const std::string& text);

// A check, because CLI11's ranges accept "nan": says what is wrong, nothing for a finite number.
std::string notFinite(const std::string& text);

// A whole number as an argument.
template <class Number>
CLI::Option* addNumber(CLI::App& command, const std::string& name, Number& number, qvx_long min,
                       qvx_long max) {
  return command.add_option(name, number)
      ->option_text(std::to_string(min) + " to " + std::to_string(max))
      ->transform(inDecimal)
      ->check(CLI::Range(min, max));
}

// An argument that names a row of a table.
template <class Row, std::size_t count>
CLI::Option* addChoice(CLI::App& command, const std::string& name, const Row (&rows)[count],
                       const Row*& chosen) {
  std::vector<std::string> names;
  for (const Row& row : rows) names.emplace_back(row.name);
  const auto choose = [&rows, &chosen](const std::string& word) {
    chosen = std::ranges::find(rows, word, &Row::name);
  };
  return command.add_option_function<std::string>(name, choose)->check(CLI::IsMember(names));
}

}  // namespace qvxctl
