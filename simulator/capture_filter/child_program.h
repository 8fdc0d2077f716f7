// Runs a program on behalf of a tool that furnishes the machine for it.
#pragma once

#include <optional>
#include <span>
#include <string>

namespace qvx::simulator {

// The program's exit code; nothing when it could not be started. Ctrl-C is the program's: the tool
// goes on, to tidy up.
std::optional<int> runProgram(std::span<const std::wstring> arguments);

// The folder of the running program, with a backslash at its end.
std::wstring programFolder();

// Whether the file is there; if not, says so.
bool isThere(const std::wstring& file, std::string& problem);

}  // namespace qvx::simulator
