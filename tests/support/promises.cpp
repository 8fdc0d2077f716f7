#include "tests/support/promises.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace qvx::tests {

namespace {

// From "listing + 50 ms + 1 access" or "does not block".
Promise promiseIn(const std::string& name, const std::string& terms) {
  Promise promise{.name = name};
  if (terms == "does not block") return promise;
  if (terms.empty()) throw std::runtime_error("api.h promises nothing for " + name);
  std::istringstream words(terms);
  std::uint64_t amount = 0;
  for (std::string word; words >> word;) {
    if (word == "listing") {
      promise.lists = true;
    } else if (word == "ms") {
      promise.pauses_ms = amount;
    } else if (word == "access" || word == "accesses") {
      promise.accesses = amount;
    } else if (word != "+") {
      amount = std::stoull(word);
    }
  }
  return promise;
}

std::vector<Promise> promisesInHeader() {
  constexpr char label[] = " * Worst case: ", declaration[] = "QVX64_API ";
  std::ifstream header(QVX_API_HEADER);
  std::vector<Promise> promises;
  std::string terms;  // of the next function
  for (std::string line; std::getline(header, line);) {
    if (line.starts_with(label)) {
      terms = line.substr(std::size(label) - 1);
      terms.resize(std::min(terms.find_first_of(".,"), terms.size()));
    } else if (line.starts_with(declaration)) {
      const std::string start = line.substr(0, line.find('('));
      promises.push_back(promiseIn(start.substr(start.find_last_of(" *") + 1), terms));
      terms.clear();
    }
  }
  const auto isSame = [](const Promise& promise, const ExportedCall& row) {
    return promise.name == row.name;
  };
  if (!std::ranges::equal(promises, everyExport(), isSame))
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
