// qvx-simulator: simulated microscope cameras for applications under development.
#include <cstdio>
#include <deque>

#include "simulator/page/page_api.h"
#include "simulator/program/host.h"
#include "simulator/program/options.h"
#include "simulator/program/wifi_service.h"

namespace {

using namespace qvx::simulator;

enum ExitStatus { ended = 0, notPluggedIn = 1, wrongOption = 2, programNotStarted = 97 };

int fail(const std::string& problem, ExitStatus status) {
  std::fprintf(stderr, "qvx-simulator: %s\n", problem.c_str());
  return status;
}

std::string place(const std::string& address, int port) {
  return address + ":" + std::to_string(port);
}

void print(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

void logAccess(const PluggedCamera& camera, const Access& access, bool whole) {
  char start[64];
  std::snprintf(start, sizeof start, "%10.3f s  %s %4llu  ",
                static_cast<double>(access.time_ms) / 1000.0, camera.id().c_str(),
                static_cast<unsigned long long>(access.number));
  if (whole) print(start + access.text);
  for (const std::string& violation : access.violations) {
    std::fprintf(stderr, "violation: %s: %s\n", camera.id().c_str(), violation.c_str());
  }
}

// Prints nothing while a program runs: its output is not mixed with ours.
void tell(const Options& options, const std::string& line) {
  if (options.program.empty()) print(line);
}

// Both return what is wrong, or nothing.
std::string startWifi(const Options& options, Desk& desk, std::deque<HttpPort>& ports) {
  for (const auto& camera : desk.cameras()) {
    std::string line = camera->id() + "  " + camera->description().name;
    if (camera->description().transport == Transport::wifi) {
      HttpPort& port = ports.emplace_back();
      serveWifiCamera(port, *camera, desk);
      if (!port.start(options.address, camera->description().port)) {
        return "cannot listen on " + place(options.address, camera->description().port);
      }
      line += "  http://" + place(options.address, port.port()) + "/";
    }
    tell(options, line);
  }
  return {};
}

// Several simulators may run side by side: another one may have the default port.
std::string startPage(const Options& options, Desk& desk, HttpPort& page) {
  const std::string& address = options.pageAddress;
  addPageRoutes(page.server, desk);
  if (!page.start(address, options.pagePort) && (options.pageIsAsked || !page.start(address, 0))) {
    return "cannot listen on " + place(address, options.pagePort);
  }
  tell(options, "page  http://" + place(address, page.port()) + "/");
  return {};
}

int runUntilEnd(const Options& options) {
  tell(options, "ready");
  if (options.program.empty()) {
    awaitInterrupt();
    return ended;
  }
  const auto status = runProgram(options.program);
  return status ? *status : fail("the program does not start", programNotStarted);
}

int run(const Options& options) {
  Desk desk;
  for (const CameraDescription& description : options.cameras) {
    PluggedCamera& camera = desk.plugIn(description);
    camera.onAccess = [&](const Access& access) { logAccess(camera, access, options.log); };
  }
  std::deque<HttpPort> ports;
  std::string problem = startWifi(options, desk, ports);
  const auto plugs = problem.empty() ? plugIn(desk, problem) : nullptr;
  if (problem.empty() && !options.noPage) problem = startPage(options, desk, ports.emplace_back());
  const int status = problem.empty() ? runUntilEnd(options) : fail(problem, notPluggedIn);
  desk.close();
  return status;
}

}  // namespace

int qvx::simulator::simulate(std::span<const std::string> arguments) {
  Options options;
  const std::string wrong = optionsFrom(arguments, options);
  if (!wrong.empty()) return fail(wrong, wrongOption);
  if (!options.help.empty()) {
    std::printf("%s", options.help.c_str());
    return ended;
  }
  claimInterrupts();
  if (options.unplug) unplugLeftovers();
  return options.cameras.empty() ? static_cast<int>(ended) : run(options);
}
