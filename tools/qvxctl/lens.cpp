#include <algorithm>
#include <optional>

#include "cameras.h"
#include "commands.h"
#include "failure.h"
#include "json.h"
#include "numbers.h"
#include "output.h"
#include "readings.h"
#include "text.h"

namespace qvxctl {

namespace {

std::string jsonOf(const std::optional<Range>& range) {
  if (!range) return json::null;
  return json::object(
      {{"lower", json::number(range->lower)}, {"upper", json::number(range->upper)}});
}

void printLimits(int device, qvx_long /*none*/, bool asJson) {
  const auto position = rangeFrom(GetLensPosLimits, device);
  const auto fine = rangeFrom(GetLensFinePosLimits, device);
  if (asJson) {
    return printLine(json::object({{"position", jsonOf(position)}, {"fine", jsonOf(fine)}}));
  }
  printLine("Position       " + textOf(position));
  printLine("Fine position  " + textOf(fine));
}

void bringToZero(int device, qvx_long /*none*/, bool asJson) {
  SetLensInitPos(device);
  printLine(asJson ? json::object({{"position", json::number(0)}})
                   : "Lens sent to its zero position");
}

void moveTo(int device, qvx_long position, bool asJson) {
  SetLensPos(device, position);
  printLine(asJson ? json::object({{"position", json::number(position)}})
                   : "Lens sent to position " + std::to_string(position));
}

void moveFinelyTo(int device, qvx_long position, bool asJson) {
  SetLensFinePos(device, position);
  printLine(asJson ? json::object({{"fine", json::number(position)}})
                   : "Lens sent to fine position " + std::to_string(position));
}

constexpr struct Action {
  std::string_view name;
  bool takesPosition;
  void (*run)(int device, qvx_long position, bool asJson);
} actions[] = {
    {"limits", false, printLimits},
    {"init", false, bringToZero},
    {"pos", true, moveTo},
    {"fine", true, moveFinelyTo},
};

const Action& actionIn(const Options& options) {
  const std::string name = options.arguments.empty() ? "" : options.arguments.front();
  const auto* const found = std::ranges::find(actions, name, &Action::name);
  if (found == std::end(actions)) {
    throw Failure(ExitCode::badUsage,
                  "lens: " + quoted(name) + " is not limits, init, pos or fine");
  }
  const std::size_t expected = found->takesPosition ? 2 : 1;
  if (options.arguments.size() < expected) {
    throw Failure(ExitCode::badUsage, "lens " + name + ": a position is missing");
  }
  if (options.arguments.size() > expected) {
    throw Failure(ExitCode::badUsage,
                  "lens " + name + ": unexpected argument " + quoted(options.arguments[expected]));
  }
  return *found;
}

}  // namespace

std::optional<Range> rangeFrom(LimitsFunction limits, int device) {
  Range range{};
  limits(device, &range.upper, &range.lower);
  if (range.lower == -1 && range.upper == -1) return std::nullopt;  // nothing to move
  return range;
}

std::string textOf(const std::optional<Range>& range) {
  return range ? std::to_string(range->lower) + " to " + std::to_string(range->upper) : "none";
}

void driveLens(const Options& options) {
  const Action& action = actionIn(options);
  const qvx_long position =
      action.takesPosition ? wholeNumber("lens position", options.arguments[1]) : 0;
  action.run(openCamera(options.device.value_or(automaticIndex)), position, options.json);
}

}  // namespace qvxctl
