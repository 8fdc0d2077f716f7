// What goes wrong with a camera: one vocabulary for every way to reach it.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace qvx::simulator {

// What is done to a machine and its cameras, as faults count it.
enum class Operation {
  access,      // of a device
  systemCall,  // that the system may refuse
};

// Counted in operations from the moment the fault is set: number 1 is the next.
struct Fault {
  enum Kind : std::uint8_t {
    none,
    fails,    // refused
    stalls,   // done, but answered late
    unplugs,  // the camera is gone
    empties,  // the reply is empty
    halves,   // half of the reply comes
    junks,    // the reply is bytes of all kinds, NULs included
    fills,    // the reply is filler, without any of the marks that clients look for
    loses,    // a write is acknowledged, and not done
  };
  static constexpr std::uint64_t forever = std::numeric_limits<std::uint64_t>::max();

  Kind kind = none;
  std::uint64_t first = 1;
  std::uint64_t count = forever;
  std::uint64_t stall_ms = 0;
  std::optional<Operation> only = Operation::access;  // nothing: operations of either kind
  unsigned percent = 100;                             // of these suffer, as seeded dice have it

  bool operator==(const Fault&) const = default;
};

// "none", "half", "stall:600ms"; with ":3" from the third access on, with ":3+2" the third and the
// fourth. Nothing for anything else.
std::optional<Fault> faultFrom(std::string_view text);
std::string textOf(const Fault& fault);
std::string faultHelp();

// A fault on its way through the operations.
class FaultCounter {
 public:
  void set(const Fault& fault) {
    fault_ = fault;
    counted_ = 0;
  }
  const Fault& fault() const { return fault_; }

  // What the next operation suffers.
  Fault next(Operation operation = Operation::access);

  // Whether one of the next so many operations may stall.
  bool stallsWithin(std::uint64_t operations) const;

 private:
  Fault fault_;
  std::uint64_t counted_ = 0;
  std::mt19937 dice_;
};

}  // namespace qvx::simulator
