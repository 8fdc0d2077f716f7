#include <optional>

#include "cameras.h"
#include "commands.h"
#include "failure.h"
#include "json.h"
#include "numbers.h"
#include "output.h"
#include "readings.h"

namespace qvxctl {

namespace {

std::string jsonOf(const std::optional<Range>& range) {
  if (!range) return json::null;
  return json::object(
      {{"lower", json::number(range->lower)}, {"upper", json::number(range->upper)}});
}

void printMove(const char* member, const char* text, qvx_long position, bool asJson) {
  printLine(asJson ? json::object({{member, json::number(position)}})
                   : text + std::to_string(position));
}

void expectWithin(const std::optional<Range>& range, const std::string& what, qvx_long position) {
  if (!range) throw Failure(ExitCode::cameraFailed, what + ": this camera has none");
  if (range->holds(position)) return;
  throw Failure(ExitCode::cameraFailed, what + ": of this camera it is " + textOf(range));
}

void printLimits(const Model& model, qvx_long /*none*/, bool asJson) {
  const auto position = lensRange(model), fine = fineLensRange(model);
  if (asJson) {
    return printLine(json::object({{"position", jsonOf(position)}, {"fine", jsonOf(fine)}}));
  }
  printLine("Position       " + textOf(position));
  printLine("Fine position  " + textOf(fine));
}

void bringToZero(const Model& model, qvx_long /*none*/, bool asJson) {
  SetLensInitPos(model.device);
  printLine(asJson ? json::object({{"position", json::number(0)}})
                   : "Lens sent to its zero position");
}

void moveTo(const Model& model, qvx_long position, bool asJson) {
  expectWithin(lensRange(model), "lens position", position);
  SetLensPos(model.device, position);
  printMove("position", "Lens sent to position ", position, asJson);
}

void moveFinelyTo(const Model& model, qvx_long position, bool asJson) {
  expectWithin(fineLensRange(model), "lens fine position", position);
  SetLensFinePos(model.device, position);
  printMove("fine", "Lens sent to fine position ", position, asJson);
}

constexpr struct Action {
  std::string_view name;
  bool takesPosition;
  Range positions;  // of all models together
  void (*run)(const Model& model, qvx_long position, bool asJson);
} actions[] = {
    {"limits", false, {}, printLimits},
    {"init", false, {}, bringToZero},
    {"pos", true, {-48, 71}, moveTo},
    {"fine", true, {-1023, 1023}, moveFinelyTo},
};

std::optional<Range> rangeFrom(qvx_long (*limits)(int device, qvx_long* upper, qvx_long* lower),
                               int device) {
  Range range{};
  limits(device, &range.upper, &range.lower);
  if (range.lower == -1 && range.upper == -1) return std::nullopt;  // nothing to move
  return range;
}

}  // namespace

std::optional<Range> lensRange(const Model& model) {
  return model.hasLens() ? rangeFrom(GetLensPosLimits, model.device) : std::nullopt;
}

std::optional<Range> fineLensRange(const Model& model) {
  // Over Wi-Fi a range is told, but nothing moves.
  if (!model.hasLens() || model.device == QVX_WIFI_CAMERA) return std::nullopt;
  return rangeFrom(GetLensFinePosLimits, model.device);
}

std::string textOf(const std::optional<Range>& range) {
  return range ? std::to_string(range->lower) + " to " + std::to_string(range->upper) : "none";
}

void driveLens(const Options& options) {
  const std::string name = options.arguments.empty() ? "" : options.arguments.front();
  const Action& action = rowNamed("lens", actions, name);
  const std::string what = "lens " + name;
  expectArguments(options, what, action.takesPosition ? 2 : 1);
  const qvx_long position =
      action.takesPosition
          ? numberWithin(what, options.arguments[1], action.positions.lower, action.positions.upper)
          : 0;
  const Model model = openModel(options);
  if (!model.hasLens()) {
    throw Failure(ExitCode::cameraFailed, "lens: this camera has no focus lens");
  }
  action.run(model, position, options.json);
}

}  // namespace qvxctl
