#include "simulator/model/violations.h"

namespace qvx::simulator {

void Violations::add(std::initializer_list<std::string_view> parts) {
  if (count_ < capacity) {
    lines_[count_] = {};
    for (const std::string_view part : parts) lines_[count_].append(part);
  }
  ++count_;
}

std::string_view Violations::operator[](std::size_t index) const {
  if (index < count_ && index < capacity) return lines_[index].view();
  return {};
}

}  // namespace qvx::simulator
