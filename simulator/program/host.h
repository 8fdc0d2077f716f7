// What the program asks of the machine that it runs on.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>

#include "simulator/program/desk.h"

namespace qvx::simulator {

// What main does with its arguments, in UTF-8: the program's exit code.
int simulate(std::span<const std::string> arguments);

// To be called before any thread starts.
void claimInterrupts();

// Waits for Ctrl-C, or for what else asks a program to end.
void awaitInterrupt();

// Runs a program to its end and returns its exit code; nothing when it cannot be started. Ctrl-C is
// the program's.
std::optional<int> runProgram(std::span<const std::string> arguments);

// The cameras of a desk that are not Wi-Fi's as devices of this machine; they go with what is
// returned. Says what is wrong when one cannot be plugged in.
std::shared_ptr<void> plugIn(Desk& desk, std::string& problem);

// Takes out what runs that are over have left.
void unplugLeftovers();

}  // namespace qvx::simulator
