// qvx-wifi-camera: a simulated Wi-Fi camera for applications under development.
#include <csignal>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "simulator/wifi_camera/options.h"
#include "simulator/wifi_camera/service.h"

namespace {

using namespace qvx::wifi_camera;

enum ExitStatus { ended = 0, cannotListen = 1, wrongOption = 2 };

// The signals that this program waits for, kept from every thread.
sigset_t claimSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGUSR1, SIGUSR2}) sigaddset(&signals, signal);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

void runUntilEnded(Service& service, const sigset_t& signals) {
  for (int signal = 0; signal != SIGINT && signal != SIGTERM;) {
    sigwait(&signals, &signal);
    if (signal == SIGUSR1 || signal == SIGUSR2) service.touchButton(signal == SIGUSR1);
  }
}

int run(const Options& options) {
  const sigset_t signals = claimSignals();
  Service service(options);
  errno = 0;
  if (!service.start()) {
    std::fprintf(stderr, "qvx-wifi-camera: cannot listen on %s:%u: %s\n", options.address.c_str(),
                 static_cast<unsigned>(options.port),
                 std::generic_category().message(errno).c_str());
    return cannotListen;
  }
  std::printf("ready on http://%s:%d\n", options.address.c_str(), service.port());
  std::fflush(stdout);
  runUntilEnded(service, signals);
  return ended;
}

}  // namespace

int main(int count, char** arguments) {
  const auto parsed = optionsFrom({arguments + 1, static_cast<std::size_t>(count - 1)});
  if (const auto* const wrong = std::get_if<std::string>(&parsed)) {
    std::fprintf(stderr, "qvx-wifi-camera: %s\n", wrong->c_str());
    return wrongOption;
  }
  const Options& options = std::get<Options>(parsed);
  if (!options.help) return run(options);
  std::fputs(helpText, stdout);
  return ended;
}
