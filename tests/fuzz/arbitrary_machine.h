// A simulated machine on which every device answers what the fuzzer's bytes say.
#pragma once

#include <thread>

#include "simulator/platform/world.h"
#include "tests/fuzz/input.h"

namespace qvx::fuzz {

class Machine {
 public:
  explicit Machine(Input& input);
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  // Exchanges all devices; those in use stay as they are.
  void furnish();

  // Chooses whether devices from now on work, refuse, come late, or vary as the input says.
  void changeMood();

 private:
  enum class Mood { well, capricious, refusing, silent };

  bool permits();
  bool isLate();

  Input& input_;
  Mood mood_ = Mood::well;
  std::thread::id applicationThread_ = std::this_thread::get_id();
  simulator::PictureControls picture_;
};

}  // namespace qvx::fuzz
