// The steps of the self-test. Each sets something, reads it back where an export reports it, and
// restores what it could read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model.h"

namespace qvxctl {

enum class Outcome { ok, sent, differs, skipped };  // sent: no export reports the effect

struct Finding {
  std::string step;
  Outcome outcome;
  std::string set, read;  // empty where nothing was set or read
};

using Findings = std::vector<Finding>;
using Step = Findings (*)(const Model& camera);

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

Findings testMagnification(const Model& camera);
Findings testFieldOfView(const Model& camera);
Findings testLens(const Model& camera);
Findings testFineLens(const Model& camera);
Findings testLights(const Model& camera);
Findings testQuadrants(const Model& camera);
Findings testLedStates(const Model& camera);
Findings testTouchButton(const Model& camera);

Findings testExposure(const Model& camera);
Findings testExposureTarget(const Model& camera);
Findings testAutomaticExposure(const Model& camera);
Findings testFlicker(const Model& camera);
Findings testPicture(const Model& camera);
Findings testStills(const Model& camera);

}  // namespace qvxctl
