// The commands. Each prints its results and fails with a Failure.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "options.h"

namespace qvxctl {

struct Command {
  std::string_view name;
  std::string_view arguments;  // as help shows them; empty for none
  std::string_view summary;
  void (*run)(const Options& options);
};

std::span<const Command> commandTable();

void listCameras(const Options& options);
void showInfo(const Options& options);
void watchCamera(const Options& options);
void exposeCamera(const Options& options);
void adjustAutomaticExposure(const Options& options);
void suppressFlicker(const Options& options);
void adjustPicture(const Options& options);
void listVideoModes(const Options& options);
void saveSnapshot(const Options& options);
void driveLens(const Options& options);
void setLight(const Options& options);
void setLeds(const Options& options);
void showConfig(const Options& options);
void testCamera(const Options& options);
void writeReport(const Options& options);
void callExport(const Options& options);

std::string helpText();        // the whole client
std::string exportHelpText();  // the exports that `call` knows

}  // namespace qvxctl
