#include "numbers.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "failure.h"
#include "text.h"

namespace qvxctl {

namespace {

template <class Number, class... Form>
std::optional<Number> readAll(std::string_view text, Form... form) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, form...);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

bool takePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

std::optional<std::int32_t> readWhole(std::string_view text) {
  using Limits = std::numeric_limits<std::int32_t>;
  const bool negative = takePrefix(text, "-");
  const bool hexadecimal = takePrefix(text, "0x") || takePrefix(text, "0X");
  if (text.starts_with('-')) return std::nullopt;  // a second sign
  const auto magnitude = readAll<std::int64_t>(text, hexadecimal ? 16 : 10);
  if (!magnitude) return std::nullopt;
  const std::int64_t number = negative ? -*magnitude : *magnitude;
  if (number < Limits::min() || number > Limits::max()) return std::nullopt;
  return static_cast<std::int32_t>(number);
}

}  // namespace

std::int32_t wholeNumber(const std::string& what, std::string_view text) {
  if (const auto number = readWhole(text)) return *number;
  throw Failure(ExitCode::badUsage, what + ": " + quoted(text) +
                                        " is not a whole number of 32 bits (decimal or 0x...)");
}

std::int32_t numberWithin(const std::string& what, std::string_view text, std::int32_t least,
                          std::int32_t most) {
  const std::int32_t number = wholeNumber(what, text);
  if (number >= least && number <= most) return number;
  throw Failure(ExitCode::badUsage, what + ": " + std::to_string(number) + " is not from " +
                                        std::to_string(least) + " to " + std::to_string(most));
}

double decimalNumber(const std::string& what, std::string_view text) {
  const auto number = readAll<double>(text);
  if (number && std::isfinite(*number)) return *number;
  throw Failure(ExitCode::badUsage, what + ": " + quoted(text) + " is not a number");
}

std::string digits(double number) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

}  // namespace qvxctl
