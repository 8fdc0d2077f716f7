#include "simulator/model/fault.h"

#include "simulator/model/words.h"

namespace qvx::simulator {

namespace {

// How faults are written (the part before ":" is the keyword), and what they do.
constexpr struct {
  Fault::Kind kind;
  std::string_view form, effect;
} kinds[] = {
    {Fault::fails, "refuse", "accesses are refused"},
    {Fault::stalls, "stall:600ms", "they are answered so late"},
    {Fault::empties, "empty", "replies are empty"},
    {Fault::halves, "half", "half of each reply comes"},
    {Fault::junks, "junk", "replies are bytes of all kinds"},
    {Fault::fills, "no-marker", "replies are filler"},
    {Fault::loses, "lose", "writes are acknowledged and not done"},
    {Fault::unplugs, "unplug", "the camera is gone"},
    {Fault::none, "none", "all is well"},
};

std::string_view wordOf(std::string_view form) {
  return takePart(form, ':');
}

// "3" or "3+2": the first operation affected, and the number of them.
bool takeRange(std::string_view text, Fault& fault) {
  constexpr std::uint32_t maxNumber = 1'000'000'000;
  const bool counted = text.find('+') != std::string_view::npos;
  const auto first = numberFrom(takePart(text, '+'), 1, maxNumber);
  const auto count = counted ? numberFrom(text, 1, maxNumber) : std::nullopt;
  if (!first || counted != count.has_value()) return false;
  fault.first = *first;
  if (count) fault.count = *count;
  return true;
}

}  // namespace

std::optional<Fault> faultFrom(std::string_view text) {
  if (text.ends_with(':')) return std::nullopt;
  const std::string_view word = takePart(text, ':');
  for (const auto& row : kinds) {
    if (wordOf(row.form) != word) continue;
    Fault fault{.kind = row.kind};
    if (fault.kind == Fault::stalls) {
      const auto stall_ms = duration_msFrom(takePart(text, ':'));
      if (!stall_ms) break;
      fault.stall_ms = *stall_ms;
    }
    if (text.empty() || (fault.kind != Fault::none && takeRange(text, fault))) return fault;
  }
  return std::nullopt;
}

std::string textOf(const Fault& fault) {
  std::string text;
  for (const auto& row : kinds) {
    if (row.kind == fault.kind) text = wordOf(row.form);
  }
  if (fault.kind == Fault::stalls) text += ":" + std::to_string(fault.stall_ms) + "ms";
  if (fault.first != 1 || fault.count != Fault::forever) text += ":" + std::to_string(fault.first);
  if (fault.count != Fault::forever) text += "+" + std::to_string(fault.count);
  return text;
}

std::string faultHelp() {
  std::string help;
  for (const auto& row : kinds) help += helpLine(row.form, row.effect);
  return help;
}

Fault FaultCounter::next(Operation operation) {
  if (fault_.only && fault_.only != operation) return {};
  ++counted_;
  const bool inRange = counted_ >= fault_.first && counted_ - fault_.first < fault_.count;
  return inRange && (fault_.percent >= 100 || dice_() % 100 < fault_.percent) ? fault_ : Fault{};
}

bool FaultCounter::stallsWithin(std::uint64_t operations) const {
  return fault_.kind == Fault::stalls && counted_ + operations >= fault_.first &&
         counted_ < fault_.first + std::min(fault_.count, Fault::forever - fault_.first);
}

}  // namespace qvx::simulator
