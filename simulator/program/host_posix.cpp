#include <spawn.h>
#include <sys/wait.h>

#include <csignal>
#include <vector>

#include "simulator/program/host.h"

extern char** environ;

namespace qvx::simulator {

namespace {

sigset_t interrupts() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGCHLD}) sigaddset(&signals, signal);
  return signals;
}

// With no signal kept from it.
std::optional<pid_t> start(std::span<const std::string> arguments) {
  std::vector<char*> words;
  for (const std::string& word : arguments) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  pid_t child = 0;
  const int error = posix_spawnp(&child, words[0], nullptr, &attributes, words.data(), environ);
  posix_spawnattr_destroy(&attributes);
  return error == 0 ? std::optional(child) : std::nullopt;
}

}  // namespace

void claimInterrupts() {
  const sigset_t signals = interrupts();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

void awaitInterrupt() {
  const sigset_t signals = interrupts();
  for (int signal = 0; signal != SIGINT && signal != SIGTERM;) sigwait(&signals, &signal);
}

std::optional<int> runProgram(std::span<const std::string> arguments) {
  constexpr int killedBySignal = 128;
  const auto child = start(arguments);
  if (!child) return std::nullopt;
  const sigset_t signals = interrupts();
  int status = 0;
  while (waitpid(*child, &status, WNOHANG) == 0) {
    int signal = 0;
    sigwait(&signals, &signal);
    if (signal == SIGTERM) kill(*child, SIGTERM);
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : killedBySignal + WTERMSIG(status);
}

std::shared_ptr<void> plugIn(Desk& desk, std::string& problem) {
  for (const auto& camera : desk.cameras()) {
    if (camera->spec().transport == Transport::wifi) continue;
    problem = camera->id() + ": only the simulator for Windows plugs in such a camera";
    break;
  }
  return nullptr;
}

void unplugLeftovers() {}

}  // namespace qvx::simulator

int main(int count, char** values) {
  const std::vector<std::string> arguments(values + 1, values + count);
  return qvx::simulator::simulate(arguments);
}
