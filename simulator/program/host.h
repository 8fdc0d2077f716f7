// What differs between Windows and Linux.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>

#include "simulator/desk/desk.h"

namespace qvx::simulator {

// The body of main(): takes its arguments in UTF-8, returns the exit code.
int simulate(std::span<const std::string> arguments);

// To be called before any thread starts.
void claimInterrupts();

// Waits for Ctrl-C or another request to end the program.
void awaitInterrupt();

// Runs a program and returns its exit code, or nothing if it cannot be started. Ctrl-C goes to that
// program.
std::optional<int> runProgram(std::span<const std::string> arguments);

// Plugs the desk's cameras, except Wi-Fi ones, into this machine while the returned object lives.
// Sets `problem` if one cannot be plugged in.
std::shared_ptr<void> plugIn(Desk& desk, std::string& problem);

// Unplugs what earlier runs have left behind.
void unplugLeftovers();

}  // namespace qvx::simulator
