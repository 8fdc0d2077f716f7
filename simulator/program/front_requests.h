// What the fronts ask of a camera.
#pragma once

#include <span>

#include "simulator/fronts/protocol.h"
#include "simulator/program/desk.h"

namespace qvx::simulator {

// The whole reply to a whole request, with its head. What is no request is refused.
std::string answerFront(PluggedCamera& camera, std::span<const std::uint8_t> request);

}  // namespace qvx::simulator
