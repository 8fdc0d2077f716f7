// Lists and tables in short.
#pragma once

#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace qvx::tests {

// A table of cases.
template <class... Columns>
using Rows = std::vector<std::tuple<Columns...>>;

// The items of "one|two|three"; "" and "|" begin with an empty one.
inline std::vector<std::string> itemsIn(const std::string& list) {
  std::istringstream rest(list + '|');
  std::vector<std::string> items;
  for (std::string item; std::getline(rest, item, '|');) items.push_back(item);
  return items;
}

}  // namespace qvx::tests
