// What a client did that a real camera's maker would call a mistake: registers that do not exist,
// wrong lengths, pins that are inputs. The camera goes on; a test fails at its end.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/model/text.h"

namespace qvx::simulator {

class Violations {
 public:
  static constexpr std::size_t capacity = 32;

  // The parts become one line: "controller: read of unknown register 0x37".
  void add(std::initializer_list<std::string_view> parts) {
    if (count_++ >= capacity) return;
    std::string& line = lines_.emplace_back();
    for (const std::string_view part : parts) line += part;
  }

  // All of them, those beyond the capacity included; only the first `capacity` keep their text.
  std::size_t count() const { return count_; }
  std::string_view operator[](std::size_t index) const {
    return index < lines_.size() ? std::string_view(lines_[index]) : std::string_view();
  }

  // The texts; they are forgotten here.
  std::vector<std::string> take() {
    count_ = 0;
    return std::exchange(lines_, {});
  }

 private:
  std::vector<std::string> lines_;
  std::size_t count_ = 0;
};

}  // namespace qvx::simulator
