// The commands. Each prints its results and fails with a Failure.
#pragma once

#include <string>

#include "options.h"

namespace CLI {
class App;
}

namespace qvxctl {

// Without arguments.
void listCameras(const Options& options);
void showInfo(const Options& options);
void watchCamera(const Options& options);
void showConfig(const Options& options);
void testCamera(const Options& options);

// Define the arguments of a command and what it does. Each is called once, so the arguments may be
// kept in its static variables.
void defineExposure(CLI::App& command, const Options& options);
void defineAutomaticExposure(CLI::App& command, const Options& options);
void defineFlicker(CLI::App& command, const Options& options);
void definePicture(CLI::App& command, const Options& options);
void defineModes(CLI::App& command, const Options& options);
void defineSnapshot(CLI::App& command, const Options& options);
void defineLens(CLI::App& command, const Options& options);
void defineLight(CLI::App& command, const Options& options);
void defineLeds(CLI::App& command, const Options& options);
void defineReport(CLI::App& command, const Options& options);
void defineCall(CLI::App& command, const Options& options);

}  // namespace qvxctl
