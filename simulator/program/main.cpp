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

std::string urlOf(const std::string& address, int port) {
  return "http://" + address + ":" + std::to_string(port) + "/";
}

std::string taken(const std::string& address, int port) {
  return "cannot listen on " + address + ":" + std::to_string(port);
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

class Run {
 public:
  explicit Run(const Options& options) : options_(options) {
    for (const CameraSpec& spec : options.cameras) {
      PluggedCamera& camera = desk_.plugIn(spec);
      camera.onAccess = [&camera, log = options.log](const Access& access) {
        logAccess(camera, access, log);
      };
    }
  }

  // What cannot be had; nothing when all is there.
  std::string start() {
    for (const auto& camera : desk_.cameras()) {
      std::string line = camera->id() + "  " + camera->spec().name;
      if (camera->spec().transport == Transport::wifi) {
        HttpPort& port = ports_.emplace_back();
        serveWifiCamera(port, *camera, desk_);
        if (!port.start(options_.address, camera->spec().port)) {
          return taken(options_.address, camera->spec().port);
        }
        line += "  " + urlOf(options_.address, port.port());
      }
      tell(line);
    }
    std::string problem;
    plugs_ = plugIn(desk_, problem);
    return problem.empty() && !options_.noPage ? startPage() : problem;
  }

  int go() {
    tell("ready");
    if (options_.program.empty()) {
      awaitInterrupt();
      return ended;
    }
    const auto status = runProgram(options_.program);
    return status ? *status : fail("the program does not start", programNotStarted);
  }

  ~Run() { desk_.close(); }

 private:
  // What a program prints is its own.
  void tell(const std::string& line) const {
    if (options_.program.empty()) print(line);
  }

  // Several runs stand beside each other: the usual port may be another's.
  std::string startPage() {
    const std::string& address = options_.pageAddress;
    addPageRoutes(page_.server, desk_);
    if (!page_.start(address, options_.pagePort) &&
        (options_.pageIsAsked || !page_.start(address, 0))) {
      return taken(address, options_.pagePort);
    }
    tell("page  " + urlOf(address, page_.port()));
    return {};
  }

  const Options& options_;
  Desk desk_;
  std::shared_ptr<void> plugs_;
  std::deque<HttpPort> ports_;  // of Wi-Fi cameras
  HttpPort page_;
};

int run(const Options& options) {
  if (options.unplug) unplugLeftovers();
  if (options.cameras.empty()) return ended;
  Run run(options);
  const std::string problem = run.start();
  return problem.empty() ? run.go() : fail(problem, notPluggedIn);
}

}  // namespace

int qvx::simulator::simulate(std::span<const std::string> arguments) {
  Options options;
  const std::string wrong = optionsFrom(arguments, options);
  if (!wrong.empty()) return fail(wrong, wrongOption);
  if (options.help) {
    std::printf("%s%s", helpText, cameraSpecHelp().c_str());
    return ended;
  }
  claimInterrupts();
  return run(options);
}
