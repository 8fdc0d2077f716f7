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

constexpr Endpoint usualPage = {"127.0.0.1", 8064};

int fail(const std::string& problem, ExitStatus status) {
  std::fprintf(stderr, "qvx-simulator: %s\n", problem.c_str());
  return status;
}

std::string urlOf(const std::string& address, int port) {
  return "http://" + address + ":" + std::to_string(port) + "/";
}

void logAccess(const PluggedCamera& camera, const Access& access, bool whole) {
  if (whole) {
    std::printf("%10.3f s  %s %4llu  %s\n", static_cast<double>(access.time_ms) / 1000.0,
                camera.id().c_str(), static_cast<unsigned long long>(access.number),
                access.text.c_str());
    std::fflush(stdout);
  }
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
      if (camera->spec().transport != Transport::wifi) continue;
      WifiService& service = services_.emplace_back(*camera, desk_);
      if (!service.start(options_.address)) return taken(options_.address, camera->spec().port);
      tell(camera->id() + "  " + camera->spec().name + "  " +
           urlOf(options_.address, service.port()));
    }
    std::string problem;
    plugs_ = plugIn(desk_, problem);
    if (!problem.empty()) return problem;
    for (const auto& camera : desk_.cameras()) {
      if (camera->spec().transport == Transport::wifi) continue;
      tell(camera->id() + "  " + camera->spec().name);
    }
    return startPage();
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
  static std::string taken(const std::string& address, int port) {
    return "cannot listen on " + address + ":" + std::to_string(port);
  }

  // What a program prints is its own.
  void tell(const std::string& line) const {
    if (!options_.program.empty()) return;
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
  }

  // Several runs stand beside each other: the usual port may be another's.
  std::string startPage() {
    if (options_.noPage) return {};
    addPageRoutes(page_.server, desk_);
    const Endpoint& wanted = options_.page ? *options_.page : usualPage;
    const bool started = page_.start(wanted.address, wanted.port) ||
                         (!options_.page && page_.start(wanted.address, 0));
    if (!started) return taken(wanted.address, wanted.port);
    tell("page  " + urlOf(wanted.address, page_.port()));
    return {};
  }

  const Options& options_;
  Desk desk_;
  std::shared_ptr<void> plugs_;
  std::deque<WifiService> services_;
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
  const auto parsed = optionsFrom(arguments);
  if (const auto* const wrong = std::get_if<std::string>(&parsed)) return fail(*wrong, wrongOption);
  const Options& options = std::get<Options>(parsed);
  if (options.help) {
    std::printf("%s%s", helpText, cameraSpecHelp);
    return ended;
  }
  claimInterrupts();
  return run(options);
}
