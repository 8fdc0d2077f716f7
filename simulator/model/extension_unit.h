// The bridge's extension unit: its properties (selectors) and how the firmware takes them.
#pragma once

#include "simulator/model/bridge_requests.h"
#include "simulator/model/property_sets.h"

namespace qvx::simulator {

class ExtensionUnit {
 public:
  explicit ExtensionUnit(BridgeChip& chip, Unit unit) : chip_(chip), unit_(unit) {}

  bool supports(const PropertySetId& set) const;

  // One property request of exactly that many bytes; false when the camera refuses it.
  bool set(const PropertySetId& set, std::uint32_t selector, Bytes data);
  bool get(const PropertySetId& set, std::uint32_t selector, Room data);

  // As after power-up.
  void reset() {
    accessMode_ = normalAccessMode;
    reply_.clear();
  }

  // Whether the client returned to the normal access mode after its last legacy transfer.
  bool atRest() const { return accessMode_ == normalAccessMode; }

 private:
  static constexpr std::uint8_t normalAccessMode = 1;

  // A property request as received.
  struct Place {
    bool command;  // in the command set, not the register set
    std::uint32_t selector;

    bool operator==(const Place&) const = default;
  };

  bool violate(std::string_view what);
  bool setAccessMode(Bytes data);
  bool run(const BridgeRequest& request, Bytes data);
  bool runCommand(Bytes data);

  BridgeChip& chip_;
  Unit unit_;
  std::uint8_t accessMode_ = normalAccessMode;
  Place place_{};  // of the current request

  // The answer to be fetched, and its place.
  std::vector<std::uint8_t> reply_;
  Place replyPlace_{};
};

}  // namespace qvx::simulator
