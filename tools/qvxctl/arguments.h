// Represents a parameter of an export during a call, by its type: an argument of the command line,
// or a variable that the export writes and the client prints.
#pragma once

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "command_line.h"
#include "text.h"
#include "value.h"

namespace qvxctl {

struct Parameter {
  Parameter(const char* itsName, bool isRead = false) : name(itsName), read(isRead) {}

  std::string name;
  bool read;  // through a pointer to a number
};

// The library always reads this many bytes of a narrow text.
using TextBuffer = std::array<char, 256>;

// A type as help shows it.
template <class T>
constexpr const char* typeName() {
  if (std::is_same_v<T, bool>) return "bool";
  if (std::is_floating_point_v<T>) return "number";
  return std::is_integral_v<T> ? "int" : "text";
}

template <class T>
struct Argument;

template <class T>
requires std::is_arithmetic_v<T>
struct Argument<T> {
  static constexpr const char* type = typeName<T>();
  static bool given(const Parameter&) { return true; }
  void add(CLI::App& command, const std::string& name) {
    if constexpr (std::is_integral_v<T>) {
      using Limits = std::numeric_limits<T>;
      addNumber(command, name, number, Limits::min(), Limits::max())->option_text(type)->required();
    } else {
      command.add_option(name, number)->option_text(type)->required()->check(notFinite);
    }
  }
  T pass() { return number; }
  Value value() const { return valueOf(number); }

  T number{};
};

template <class T>
requires std::is_arithmetic_v<T>
struct Argument<T*> : Argument<T> {
  static bool given(const Parameter& parameter) { return parameter.read; }
  T* pass() { return &this->number; }
};

// A list that the export fills; it ends where the export left zeros.
template <>
struct Argument<short*> {
  static constexpr const char* type = "ints";
  static bool given(const Parameter&) { return false; }
  void add(CLI::App&, const std::string&) {}
  short* pass() { return numbers.data(); }
  Value value() const {
    return valueOf(std::vector<short>(numbers.begin(), std::ranges::find(numbers, 0)));
  }

  std::array<short, 16> numbers{};
};

template <>
struct Argument<char*> {
  static constexpr const char* type = "text";
  static bool given(const Parameter&) { return true; }
  void add(CLI::App& command, const std::string& name) {
    const auto take = [this](const std::string& word) {
      std::ranges::copy(ansi(word), text.begin());
    };
    command.add_option_function<std::string>(name, take)
        ->option_text(type)
        ->required()
        ->check([](const std::string& word) {
          return ansi(word).size() < TextBuffer().size() ? "" : "longer than 255 characters";
        });
  }
  char* pass() { return text.data(); }

  TextBuffer text{};
};

template <>
struct Argument<const char*> : Argument<char*> {};

// There is nothing to call back once the call has returned.
template <>
struct Argument<void (*)()> {
  static constexpr const char* type = "none";
  static bool given(const Parameter&) { return true; }
  static void add(CLI::App& command, const std::string& name) {
    command.add_option(name)->option_text(type)->required()->check(CLI::IsMember({"none"}));
  }
  static void (*pass())() { return nullptr; }
};

}  // namespace qvxctl
