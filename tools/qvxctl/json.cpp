#include "json.h"

#include <cmath>
#include <cstdio>

#include "numbers.h"

namespace qvxctl::json {

namespace {

std::string escaped(char character) {
  if (character == '"' || character == '\\') return {'\\', character};
  if (static_cast<unsigned char>(character) >= 0x20) return {character};
  char code[8];
  std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(character));
  return code;
}

std::string joined(const std::vector<std::string>& values) {
  std::string list;
  for (const std::string& value : values) list += (list.empty() ? "" : ",") + value;
  return list;
}

}  // namespace

std::string text(std::string_view text) {
  std::string value = "\"";
  for (const char character : text) value += escaped(character);
  return value + '"';
}

std::string textOrNull(std::string_view value) {
  return value.empty() ? null : text(value);
}

std::string number(double number) {
  return std::isfinite(number) ? digits(number) : null;
}

std::string array(const std::vector<std::string>& values) {
  return '[' + joined(values) + ']';
}

std::string object(const std::vector<Member>& members) {
  std::vector<std::string> pairs;
  for (const auto& [name, value] : members) pairs.push_back(text(name) + ':' + value);
  return '{' + joined(pairs) + '}';
}

}  // namespace qvxctl::json
