// What stands for the parameters of an export during a call, by their types: each is given on the
// command line and passed to the function, or written by the function and reported.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <type_traits>
#include <vector>

#include "value.h"

namespace qvxctl {

struct Parameter {
  std::string name;
  bool read = false;  // of a pointer to a number: the function reads it instead of writing it
};

inline Parameter readThroughPointer(const char* name) {
  return {name, true};
}

// The library looks at this much of a narrow text, whatever its length.
using TextBuffer = std::array<char, 256>;

// The words of the command line that become arguments. All functions fail as bad usage.
class ArgumentWords {
 public:
  ArgumentWords(std::string exportName, std::vector<std::string> words)
      : exportName_(std::move(exportName)), words_(std::move(words)) {}

  void take(const Parameter& parameter, int& number);
  void take(const Parameter& parameter, long& number);
  void take(const Parameter& parameter, double& number);
  void take(const Parameter& parameter, TextBuffer& text);
  void takeNone(const Parameter& parameter);
  void expectEnd() const;

 private:
  const std::string& next(const Parameter& parameter);
  std::string label(const Parameter& parameter) const;

  std::string exportName_;
  std::vector<std::string> words_;
  std::size_t position_ = 0;
};

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
  void take(const Parameter& parameter, ArgumentWords& words) { words.take(parameter, number); }
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

// A list that the function fills; it ends where the function left zeros.
template <>
struct Argument<short*> {
  static constexpr const char* type = "ints";
  static bool given(const Parameter&) { return false; }
  void take(const Parameter&, ArgumentWords&) {}
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
  void take(const Parameter& parameter, ArgumentWords& words) { words.take(parameter, text); }
  char* pass() { return text.data(); }

  TextBuffer text{};
};

template <>
struct Argument<const char*> : Argument<char*> {};

// Nobody is there to call back once the call has returned.
template <>
struct Argument<void (*)()> {
  static constexpr const char* type = "none";
  static bool given(const Parameter&) { return true; }
  void take(const Parameter& parameter, ArgumentWords& words) { words.takeNone(parameter); }
  static void (*pass())() { return nullptr; }
};

}  // namespace qvxctl
