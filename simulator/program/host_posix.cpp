#include <semaphore.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <vector>

#include "simulator/program/host.h"

namespace qvx::simulator {

namespace {

sem_t interrupted;
std::atomic<pid_t> child = 0;  // the running program; the terminal sends Ctrl-C to it directly

void onInterrupt(int signal) {
  if (child == 0) sem_post(&interrupted);
  if (child != 0 && signal == SIGTERM) kill(child, SIGTERM);
}

}  // namespace

void claimInterrupts() {
  sem_init(&interrupted, 0, 0);
  for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, onInterrupt);
}

void awaitInterrupt() {
  while (sem_wait(&interrupted) != 0) {
  }
}

std::optional<int> runProgram(std::span<const std::string> arguments) {
  constexpr int killedBySignal = 128;
  std::vector<char*> words;
  for (const std::string& word : arguments) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  pid_t started = 0;
  if (posix_spawnp(&started, words[0], nullptr, nullptr, words.data(), environ) != 0) return {};
  child = started;
  if (sem_trywait(&interrupted) == 0) kill(started, SIGTERM);  // the signal came during the start
  int status = 0;
  while (waitpid(started, &status, 0) < 0) {
  }
  child = 0;
  return WIFEXITED(status) ? WEXITSTATUS(status) : killedBySignal + WTERMSIG(status);
}

std::shared_ptr<void> plugIn(Desk& desk, std::string& problem) {
  for (const auto& camera : desk.cameras()) {
    if (camera->description().transport == Transport::wifi) continue;
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
