#include "tests/support/promises.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <regex>
#include <stdexcept>

namespace qvx::tests {

namespace {

// From "Worst case: listing + 50 ms + 1 access." or "Worst case: does not block." before each
// declaration.
std::vector<Promise> promisesInHeader() {
  const std::string plus = R"((?: \+ )?)";
  const std::regex terms(R"( \* Worst case: (?:does not block|(listing)?)" + plus +
                         R"((?:(\d+) ms)?)" + plus + R"((?:(\d+) access(?:es)?)?)[.,].*)"),
      declaration(R"(QVX64_API .*?(\w+)\(.*)");
  std::ifstream header(QVX_API_HEADER);
  std::vector<Promise> promises;
  std::optional<Promise> next;
  std::smatch parts;
  const auto number = [&](std::size_t at) {
    return parts[at].matched ? std::stoull(parts[at]) : 0;
  };
  for (std::string line; std::getline(header, line);) {
    if (std::regex_match(line, parts, terms)) {
      next = {.pauses_ms = number(2), .accesses = number(3), .lists = parts[1].matched};
    } else if (std::regex_match(line, parts, declaration)) {
      promises.push_back(next.value());  // throws where there is none
      promises.back().name = parts[1];
      next.reset();
    }
  }
  if (!std::ranges::equal(promises, everyExport(), {}, &Promise::name, &ExportedCall::name))
    throw std::runtime_error("api.h and the table of exports differ");
  return promises;
}

}  // namespace

const Promise& promiseOf(const std::string& name) {
  static const std::vector<Promise> promises = promisesInHeader();
  const auto found = std::ranges::find(promises, name, &Promise::name);
  if (found == promises.end()) throw std::invalid_argument("no promise for " + name);
  return *found;
}

}  // namespace qvx::tests
