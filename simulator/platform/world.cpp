#include "simulator/platform/world.h"

namespace qvx::simulator {

namespace {

Clock& newClock() {
  static auto* const all = new std::vector<std::unique_ptr<Clock>>;
  return *all->emplace_back(std::make_unique<Clock>());
}

// Not destroyed at the end of the process: the library's globals may still need it.
std::unique_ptr<World>& current() {
  static auto* const machine = new std::unique_ptr<World>(new World);
  return *machine;
}

}  // namespace

World& world() {
  return *current();
}

void resetWorld() {
  world().clock.waitForOthers();
  current() = std::make_unique<World>();
}

World::World() : World(newClock()) {}

}  // namespace qvx::simulator
