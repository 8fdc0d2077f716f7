// The requests that the bridge's firmware understands. Both decoders share them; each request lists
// its number for either.
#pragma once

#include <string_view>

#include "simulator/model/bridge_chip.h"

namespace qvx::simulator {

// The outcome of a request.
struct BridgeOutcome {
  std::string_view complaint = {};        // the violation, if any
  std::vector<std::uint8_t> answer = {};  // without the filler
  std::size_t padding = 0;                // bytes that follow the announced ones
};

struct BridgeRequest {
  BridgeFirmware since;
  bool reads;                              // the client fetches an answer
  std::optional<std::uint8_t> selector;    // of the extension unit; nothing: not available there
  std::size_t shortest, longest;           // in bytes
  std::optional<std::uint8_t> reportCode;  // on the HID interface; nothing: not available there
  // Executes the request. `body` is the request without its codes.
  BridgeOutcome (*run)(BridgeChip& chip, Bytes body, std::size_t maxAnswerBytes);

  // Requests older than the one-shot ones: two steps of variable length.
  bool isOneShot() const { return since == BridgeFirmware::oneShot; }
};

// The first request that satisfies the predicate; null for none.
const BridgeRequest* findRequest(const std::function<bool(const BridgeRequest&)>& isMeant);

}  // namespace qvx::simulator
