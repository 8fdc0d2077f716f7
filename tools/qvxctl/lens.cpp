#include <optional>

#include "cameras.h"
#include "command_line.h"
#include "commands.h"
#include "failure.h"
#include "output.h"
#include "readings.h"

namespace qvxctl {

namespace {

Json::Value jsonOf(const std::optional<Range>& range) {
  if (!range) return {};
  return object({{"lower", Json::Int(range->min)}, {"upper", Json::Int(range->max)}});
}

void expectWithin(const std::optional<Range>& range, const std::string& what, qvx_long position) {
  if (!range) throw Failure(ExitCode::cameraFailed, what + ": this camera has none");
  if (range->holds(position)) return;
  throw Failure(ExitCode::cameraFailed, what + ": this camera's is " + textOf(range));
}

void printLimits(const Options& options, const Model& model, qvx_long /*none*/) {
  const auto position = lensRange(model), fine = fineLensRange(model);
  printResult(options, object({{"position", jsonOf(position)}, {"fine", jsonOf(fine)}}),
              "Position       " + textOf(position) + "\nFine position  " + textOf(fine));
}

void moveToZero(const Options& options, const Model& model, qvx_long /*none*/) {
  SetLensInitPos(model.device);
  printResult(options, object({{"position", 0}}), "Lens sent to its zero position");
}

void moveTo(const Options& options, const Model& model, qvx_long position) {
  expectWithin(lensRange(model), "lens position", position);
  SetLensPos(model.device, position);
  printResult(options, object({{"position", Json::Int(position)}}),
              "Lens sent to position " + std::to_string(position));
}

void moveFinelyTo(const Options& options, const Model& model, qvx_long position) {
  expectWithin(fineLensRange(model), "lens fine position", position);
  SetLensFinePos(model.device, position);
  printResult(options, object({{"fine", Json::Int(position)}}),
              "Lens sent to fine position " + std::to_string(position));
}

constexpr struct Action {
  const char *name, *summary;
  bool takesPosition;
  Range positions;  // of all models together
  void (*run)(const Options& options, const Model& model, qvx_long position);
} actions[] = {
    {"limits", "show the ranges; moves the lens to its zero position", false, {}, printLimits},
    {"init", "move to the zero position", false, {}, moveToZero},
    {"pos", "move to a position", true, {-48, 71}, moveTo},
    {"fine", "move to a fine position, of a voice coil", true, {-1023, 1023}, moveFinelyTo},
};

void run(const Options& options, const Action& action, qvx_long position) {
  const Model model = openModel(options);
  if (!model.hasLens()) {
    throw Failure(ExitCode::cameraFailed, "lens: this camera has no focus lens");
  }
  action.run(options, model, position);
}

std::optional<Range> rangeFrom(qvx_long (*limits)(int device, qvx_long* upper, qvx_long* lower),
                               int device) {
  Range range{};
  limits(device, &range.max, &range.min);
  if (range.min == -1 && range.max == -1) return std::nullopt;  // nothing to move
  return range;
}

}  // namespace

std::optional<Range> lensRange(const Model& model) {
  return model.hasLens() ? rangeFrom(GetLensPosLimits, model.device) : std::nullopt;
}

std::optional<Range> fineLensRange(const Model& model) {
  // Over Wi-Fi the library gives a range, but nothing moves.
  if (!model.hasLens() || model.device == QVX_WIFI_CAMERA) return std::nullopt;
  return rangeFrom(GetLensFinePosLimits, model.device);
}

std::string textOf(const std::optional<Range>& range) {
  return range ? std::to_string(range->min) + " to " + std::to_string(range->max) : "none";
}

void defineLens(CLI::App& command, const Options& options) {
  static qvx_long position;
  command.require_subcommand(1);
  for (const Action& action : actions) {
    CLI::App* const part = command.add_subcommand(action.name, action.summary);
    if (action.takesPosition) {
      addNumber(*part, "N", position, action.positions.min, action.positions.max)->required();
    }
    part->callback([&] { run(options, action, position); });
  }
}

}  // namespace qvxctl
