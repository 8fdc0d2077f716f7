// Execution of the fronts' requests.
#pragma once

#include "simulator/fronts/protocol.h"
#include "simulator/desk/desk.h"

namespace qvx::simulator {

// The complete reply to a request of `size` bytes. Malformed requests are refused.
std::string answerFront(PluggedCamera& camera, const Request& request, std::size_t size);

}  // namespace qvx::simulator
