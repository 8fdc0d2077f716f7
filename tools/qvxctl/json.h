// JSON text from values. Each function returns one complete JSON value; texts are UTF-8.
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qvxctl::json {

inline constexpr char null[] = "null";

using Member = std::pair<std::string, std::string>;  // a name and a JSON value

std::string text(std::string_view text);
std::string textOrNull(std::string_view text);  // null when empty
std::string number(double number);              // null when not finite: JSON has no such number
template <std::integral T>
std::string number(T number) {
  return std::to_string(number);
}
std::string array(const std::vector<std::string>& values);
std::string object(const std::vector<Member>& members);

}  // namespace qvxctl::json
