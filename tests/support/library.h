// The library as it is just after loading, on a new simulated machine: the start of every test.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/platform/world.h"
#include "tests/support/items.h"
#include "tests/support/reset_library.h"

namespace qvx::tests {

using Journal = std::vector<std::string>;

inline Journal operator+(Journal first, const Journal& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

class LibraryTest : public testing::Test {
 protected:
  LibraryTest() {
    resetLibrary();
    simulator::resetWorld();
  }
  ~LibraryTest() override { resetLibrary(); }

  simulator::World& machine() { return simulator::world(); }

  Journal journal() { return machine().takeJournal(); }

  // The Wi-Fi camera answers everything like this.
  void answerWifi(std::vector<std::string> chunks, bool breaksOff = false, bool isThere = true) {
    machine().wifi = [answer = simulator::HttpAnswer{isThere, std::move(chunks), breaksOff}](
                         const std::string&) { return answer; };
  }

  // Sessions and requests.
  std::pair<int, int> openHttp() {
    return {machine().open.internetSessions, machine().open.internetRequests};
  }
};

}  // namespace qvx::tests
