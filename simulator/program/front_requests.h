// What the fronts ask of a camera.
#pragma once

#include "simulator/fronts/protocol.h"
#include "simulator/program/desk.h"

namespace qvx::simulator {

// The whole reply to a request of so many bytes, with its head. What is no request is refused.
std::string answerFront(PluggedCamera& camera, const Request& request, std::size_t size);

}  // namespace qvx::simulator
