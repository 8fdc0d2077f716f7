// The steps of the self-test. Each sets something, reads it back where the library tells it, and
// leaves the camera as it was as far as it could be read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qvx64/api.h"

namespace qvxctl {

enum class Outcome { ok, sent, differs, skipped };  // sent: nothing tells what came of it

struct Finding {
  std::string step;
  Outcome outcome;
  std::string set, read;  // empty where nothing was set or read
};

struct TestedCamera {
  int device;
  qvx_long features;  // see GetConfig
  bool has(qvx_long feature) const { return (features & feature) != 0; }
};

using Findings = std::vector<Finding>;
using Step = Findings (*)(const TestedCamera& camera);

inline Finding compared(std::string step, bool asExpected, std::string set, std::string read) {
  return {std::move(step), asExpected ? Outcome::ok : Outcome::differs, std::move(set),
          std::move(read)};
}

inline Finding sent(std::string step, std::string set) {
  return {std::move(step), Outcome::sent, std::move(set), ""};
}

inline Finding skipped(std::string step) {
  return {std::move(step), Outcome::skipped, "", ""};
}

inline void append(std::string& list, qvx_long number) {
  if (!list.empty()) list += ' ';
  list += std::to_string(number);
}

Findings testMagnification(const TestedCamera& camera);
Findings testFieldOfView(const TestedCamera& camera);
Findings testLens(const TestedCamera& camera);
Findings testFineLens(const TestedCamera& camera);
Findings testLights(const TestedCamera& camera);
Findings testQuadrants(const TestedCamera& camera);
Findings testLedStates(const TestedCamera& camera);
Findings testTouchButton(const TestedCamera& camera);

Findings testExposure(const TestedCamera& camera);
Findings testExposureTarget(const TestedCamera& camera);
Findings testAutomaticExposure(const TestedCamera& camera);
Findings testFlicker(const TestedCamera& camera);
Findings testPicture(const TestedCamera& camera);
Findings testStills(const TestedCamera& camera);

}  // namespace qvxctl
