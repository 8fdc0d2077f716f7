#include "simulator/model/fault.h"

#include "simulator/model/words.h"

namespace qvx::simulator {

namespace {

constexpr Word<Fault::Kind> kinds[] = {
    {"none", Fault::none},       {"refuse", Fault::fails}, {"stall", Fault::stalls},
    {"empty", Fault::empties},   {"half", Fault::halves},  {"junk", Fault::junks},
    {"no-marker", Fault::fills}, {"lose", Fault::loses},   {"unplug", Fault::unplugs},
};

// "3" or "3+2": the first operation, and how many.
bool takeRange(std::string_view text, Fault& fault) {
  constexpr std::uint32_t most = 1'000'000'000;
  const bool counted = text.find('+') != std::string_view::npos;
  const auto first = numberFrom(takePart(text, '+'), 1, most);
  const auto count = counted ? numberFrom(text, 1, most) : std::nullopt;
  if (!first || counted != count.has_value()) return false;
  fault.first = *first;
  if (count) fault.count = *count;
  return true;
}

}  // namespace

std::optional<Fault> faultFrom(std::string_view text) {
  if (text.ends_with(':')) return std::nullopt;
  const auto kind = valueOf(takePart(text, ':'), kinds);
  if (!kind) return std::nullopt;
  Fault fault{.kind = *kind};
  if (fault.kind == Fault::stalls) {
    const auto stall_ms = duration_msFrom(takePart(text, ':'));
    if (!stall_ms) return std::nullopt;
    fault.stall_ms = *stall_ms;
  }
  if (text.empty() || (fault.kind != Fault::none && takeRange(text, fault))) return fault;
  return std::nullopt;
}

std::string textOf(const Fault& fault) {
  std::string text(wordFor(fault.kind, kinds));
  const auto add = [&text](char mark, std::uint64_t number) {
    text += mark;
    text += std::to_string(number);
  };
  if (fault.kind == Fault::stalls) {
    add(':', fault.stall_ms);
    text += "ms";
  }
  if (fault.first != 1 || fault.count != Fault::forever) add(':', fault.first);
  if (fault.count != Fault::forever) add('+', fault.count);
  return text;
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
