// How the client exits.
#pragma once

#include <stdexcept>
#include <string>

namespace qvxctl {

enum class ExitCode {
  ok = 0,
  cameraFailed = 1,  // it does not answer, lacks what was asked for, or sent no whole still
  badUsage = 2,
  libraryMismatch = 3,
  outputLost = 4,
  differs = 5
};

// Ends the run: main prints the message in one line and exits with the code.
struct Failure : std::runtime_error {
  Failure(ExitCode exitCode, const std::string& message)
      : std::runtime_error(message), code(exitCode) {}
  ExitCode code;
};

}  // namespace qvxctl
