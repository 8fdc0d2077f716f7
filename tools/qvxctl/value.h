// A value that an export gave, in both forms that the client prints.
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <vector>

#include "json.h"
#include "numbers.h"
#include "text.h"

namespace qvxctl {

struct Value {
  std::string text, json;
};

struct NamedValue {
  std::string name;
  Value value;
};

template <std::integral Number>
Value valueOf(Number number) {
  return {std::to_string(number), json::number(number)};
}

inline Value valueOf(bool truth) {
  const char* const word = truth ? "true" : "false";
  return {word, word};
}

inline Value valueOf(double number) {
  return {digits(number), json::number(number)};
}

inline Value valueOf(const std::string& text) {
  return {text, json::text(text)};
}

// Strings of the library: null only when memory is exhausted.
inline Value valueOf(const wchar_t* text) {
  return text == nullptr ? Value{"", json::null} : valueOf(utf8(text));
}

inline Value valueOf(const char* text) {
  return text == nullptr ? Value{"", json::null} : valueOf(utf8FromOem(text));
}

inline Value valueOf(const std::vector<short>& numbers) {
  Value list;
  std::vector<std::string> elements;
  for (const short number : numbers) elements.push_back(std::to_string(number));
  for (const std::string& element : elements) list.text += (list.text.empty() ? "" : " ") + element;
  list.json = json::array(elements);
  return list;
}

}  // namespace qvxctl
