// Operations that differ by model family, as tables: the first row that a camera belongs to
// decides. The order counts, since some families are asked for on the wire.
#pragma once

#include <cstddef>
#include <optional>
#include <type_traits>
#include <utility>

#include "models/families.h"
#include "state/device_state.h"

namespace qvx {

template <class Operation>
struct FamilyRow {
  Family belongs;
  Operation* run;
};

// Null when no row fits. A camera is a product id, or whatever else its rows ask about.
template <class Camera, class Row, std::size_t count>
const Row* rowFor(const Camera& camera, const Row (&rows)[count]) {
  for (const Row& row : rows) {
    if (row.belongs(camera)) return &row;
  }
  return nullptr;
}

// Runs the operation of the row that fits and returns its result, or nothing when no row does. For
// an operation without a result, returns whether a row fits.
template <class Result, class... Parameters, std::size_t count>
auto runRowFor(int pid, const FamilyRow<Result(Parameters...)> (&rows)[count],
               std::type_identity_t<Parameters>... arguments) {
  const auto* const row = rowFor(pid, rows);
  if constexpr (std::is_void_v<Result>) {
    if (row != nullptr) row->run(arguments...);
    return row != nullptr;
  } else {
    return row == nullptr ? std::nullopt : std::optional<Result>(row->run(arguments...));
  }
}

// Keeps the magnification timer away from the controller while an operation talks to the camera.
// Where that gives nothing (a camera that lacks it), the timer stays away until another operation
// or Init lets it go on: that is the rate that applications have always seen. One that
// breaks off half-way leaves the timer as it was.
template <class Operation>
auto withoutMeasuring(Operation operation) {
  const auto before = std::exchange(bWait, std::uint8_t{0});
  try {
    auto result = operation();
    if (result) bWait = 1;
    return result;
  } catch (...) {
    bWait = before;
    throw;
  }
}

}  // namespace qvx
