// Injected faults: one vocabulary for all transports.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace qvx::simulator {

// The kinds of operation that faults count.
enum class Operation {
  access,      // to a device
  systemCall,  // one that the system may refuse
};

// Operations are counted from the moment the fault is set; the next one is number 1.
struct Fault {
  enum Kind : std::uint8_t {
    none,
    fails,    // refused
    stalls,   // executed, but answered late
    unplugs,  // the camera is gone
    empties,  // the reply is empty
    halves,   // half of the reply arrives
    junks,    // the reply consists of arbitrary bytes, NULs included
    fills,    // the reply is filler without any marker that clients search for
    loses,    // a write is acknowledged, but not executed
  };
  static constexpr std::uint64_t forever = std::numeric_limits<std::uint64_t>::max();

  Kind kind = none;
  std::uint64_t first = 1;
  std::uint64_t count = forever;
  std::uint64_t stall_ms = 0;
  std::optional<Operation> only = Operation::access;  // nothing: operations of any kind
  unsigned percent = 100;  // of these operations fail, at random from a fixed seed

  bool operator==(const Fault&) const = default;
};

// Parses "none", "half", "stall:600ms"; with ":3" from the third access on, with ":3+2" the third
// and fourth. Returns nothing for any other text.
std::optional<Fault> faultFrom(std::string_view text);
std::string textOf(const Fault& fault);
std::string faultHelp();

// Decides for one operation after another whether the fault strikes.
class FaultCounter {
 public:
  void set(const Fault& fault) {
    fault_ = fault;
    counted_ = 0;
  }
  const Fault& fault() const { return fault_; }

  // The fault that strikes the next operation.
  Fault next(Operation operation = Operation::access);

  // Whether one of the next `operations` operations may stall.
  bool stallsWithin(std::uint64_t operations) const;

 private:
  Fault fault_;
  std::uint64_t counted_ = 0;
  std::mt19937 dice_;
};

}  // namespace qvx::simulator
