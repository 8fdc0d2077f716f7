#include "selftest.h"

#include <algorithm>
#include <array>

#include "cameras.h"
#include "commands.h"
#include "failure.h"
#include "output.h"
#include "presentation.h"
#include "text.h"

namespace qvxctl {

namespace {

Findings testSelection(const Model& camera) {
  const int index = GetVideoDeviceIndex();
  return {compared("device index", index == camera.device, std::to_string(camera.device),
                   std::to_string(index)),
          {"usb 3 cameras", Outcome::ok, "", std::to_string(GetVideoDeviceCount())}};
}

// The exports report none of these for the Wi-Fi camera.
Findings testIdentity(const Model& camera) {
  if (camera.device == QVX_WIFI_CAMERA)
    return {skipped("name"), skipped("path"), skipped("product id")};
  const Camera described = describeCamera(camera.device);
  const bool samePath = utf8FromOem(GetDeviceIDA(camera.device)) == described.path;
  return {compared("name", !described.name.empty(), "", described.name),
          compared("path", !described.path.empty() && samePath, "", described.path),
          compared("product id", described.productId.has_value(), "", productIdText(described))};
}

Findings testFeatures(const Model& camera) {
  return {compared("feature word", camera.features == GetConfig(camera.device), "",
                   hexadecimal(camera.features))};
}

// The magnification first: it decides how some lenses are driven. The lights at the end: they would
// change the exposure.
constexpr Step steps[] = {
    testSelection,      testIdentity, testFeatures,  testMagnification,
    testFieldOfView,    testLens,     testFineLens,  testAutomaticExposure,
    testExposureTarget, testExposure, testFlicker,   testPicture,
    testStills,         testLights,   testQuadrants, testLedStates,
    testTouchButton,
};

constexpr std::array<const char*, 4> outcomeNames = {"ok", "sent", "differs", "skipped"};

const char* nameOf(Outcome outcome) {
  return outcomeNames[static_cast<std::size_t>(outcome)];
}

Json::Value jsonOf(const Finding& finding) {
  return object({{"step", finding.step},
                 {"outcome", nameOf(finding.outcome)},
                 {"set", orNull(finding.set)},
                 {"read", orNull(finding.read)}});
}

std::string textOf(const Finding& finding) {
  constexpr std::size_t outcomeWidth = 9, stepWidth = 20;
  std::string line(nameOf(finding.outcome));
  line.resize(outcomeWidth, ' ');
  line += finding.step;
  if (finding.set.empty() && finding.read.empty()) return line;
  line.resize(std::max(line.size() + 1, outcomeWidth + stepWidth), ' ');
  if (finding.set.empty()) return line + finding.read;
  return line + "set " + finding.set + (finding.read.empty() ? "" : ", read " + finding.read);
}

using Counts = std::array<int, outcomeNames.size()>;

Findings run(Step step, const Model& camera) {
  const LibraryOutputAside aside;
  return step(camera);
}

Counts runAll(const Options& options, const Model& camera) {
  Counts counts{};
  for (const Step step : steps) {
    for (const Finding& finding : run(step, camera)) {
      printResult(options, jsonOf(finding), textOf(finding));
      ++counts[static_cast<std::size_t>(finding.outcome)];
    }
  }
  return counts;
}

void printSummary(const Options& options, const Counts& counts) {
  Json::Value json;
  std::string text;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    json[outcomeNames[i]] = counts[i];
    text += (i == 0 ? "" : ", ") + std::to_string(counts[i]) + ' ' + outcomeNames[i];
  }
  printResult(options, object({{"summary", json}}), text);
}

}  // namespace

void testCamera(const Options& options) {
  const Counts counts = runAll(options, openModel(options));
  printSummary(options, counts);
  const int differing = counts[static_cast<std::size_t>(Outcome::differs)];
  if (differing == 0) return;
  throw Failure(ExitCode::differs, "steps that differ: " + std::to_string(differing));
}

}  // namespace qvxctl
