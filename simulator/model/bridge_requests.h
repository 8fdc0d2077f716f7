// What clients ask of the bridge's firmware: the same requests for both of its decoders, whose
// numbers for them stand side by side.
#pragma once

#include <string_view>

#include "simulator/model/bridge_chip.h"

namespace qvx::simulator {

// What a request comes to.
struct BridgeOutcome {
  std::string_view complaint = {};        // what is wrong with it, if anything
  std::vector<std::uint8_t> answer = {};  // as far as it is not filler
  std::size_t padding = 0;                // bytes behind what it announced
};

struct BridgeRequest {
  BridgeFirmware since;
  bool reads;                              // the client fetches an answer
  std::optional<std::uint8_t> selector;    // of the extension unit; nothing: not there
  std::size_t shortest, longest;           // bytes of it
  std::optional<std::uint8_t> reportCode;  // on the HID interface; nothing: not there
  // Carries it out, for an answer of so many bytes at most. `body` is the request without codes.
  BridgeOutcome (*run)(BridgeChip& chip, Bytes body, std::size_t maxAnswerBytes);

  // Those before one-shot requests came in two steps, each as long as it needs to be.
  bool isOneShot() const { return since == BridgeFirmware::oneShot; }
};

// The first of them for which that holds; null for none.
const BridgeRequest* findRequest(const std::function<bool(const BridgeRequest&)>& isMeant);

}  // namespace qvx::simulator
