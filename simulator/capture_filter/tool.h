// The frame of the command-line tools that furnish this machine with virtual cameras.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qvx::simulator {

enum ExitCode : int { done = 0, failed = 1, misused = 2, programNotStarted = 97 };

using Arguments = std::span<const std::wstring>;

struct Command {
  std::wstring_view name;
  int (*run)(Arguments);
};

struct Tool {
  const char* name;
  const char *usage, *examples;
  std::span<const Command> commands;
};

// Runs the command that the command line names; returns the tool's exit code.
int runTool(const Tool& tool, int count, wchar_t** values);

// Says what is wrong, in the running tool's name.
int fail(const std::string& problem, ExitCode code = failed);

std::vector<std::string> textsOf(Arguments arguments);

// The arguments of `run CAMERA... -- PROGRAM [ARGUMENT...]`.
struct ProgramRun {
  Arguments cameras, program;
};

// Nothing, and said so, without a program.
std::optional<ProgramRun> programRunIn(Arguments arguments);

// Runs the program on behalf of the tool and takes the cameras out when it has ended, whatever came
// of it. Returns the program's exit code.
int runAmongCameras(Arguments program, void (*takeOut)());

// The arguments of `set NUMBER OPTIONS`.
struct Change {
  std::size_t camera;
  std::string options;
};
std::optional<Change> changeIn(Arguments arguments);

}  // namespace qvx::simulator
