// A value that an export returned or wrote, in both forms that the client prints.
#pragma once

#include <json/value.h>

#include <charconv>
#include <cmath>
#include <concepts>
#include <string>
#include <vector>

#include "text.h"

namespace qvxctl {

struct Value {
  std::string text;
  Json::Value json = {};
};

struct NamedValue {
  std::string name;
  Value value;
};

template <std::integral Number>
Value valueOf(Number number) {
  return {std::to_string(number), Json::Int64{number}};
}

inline Value valueOf(bool truth) {
  return {truth ? "true" : "false", truth};
}

// The shortest digits that read back as the same number. JSON has no infinity: there it is null.
inline Value valueOf(double number) {
  char digits[32];
  const std::string text(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
  return {text, std::isfinite(number) ? number : Json::Value()};
}

// Strings of the library: null only when memory is exhausted.
inline Value valueOf(const wchar_t* text) {
  return text == nullptr ? Value{} : Value{utf8(text), utf8(text)};
}

inline Value valueOf(const char* text) {
  return text == nullptr ? Value{} : Value{utf8FromOem(text), utf8FromOem(text)};
}

inline Value valueOf(const std::vector<short>& numbers) {
  Value list{"", Json::arrayValue};
  for (const short number : numbers) {
    list.text += (list.text.empty() ? "" : " ") + std::to_string(number);
    list.json.append(number);
  }
  return list;
}

}  // namespace qvxctl
