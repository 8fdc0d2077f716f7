// How a camera's zoom encoder relates to its magnification, and the forms in which controllers
// store that relation.
#pragma once

#include <array>
#include <cstdint>

namespace qvx::simulator {

// The controller's 256 registers.
using Registers = std::array<std::uint8_t, 256>;

enum class CalibrationForm {
  none,        // no zoom encoder
  line,        // four points, of which two are used
  parabola,    // four points, of which three are used
  cubic,       // four points
  bytes,       // three points in single bytes
  hundredths,  // three points, magnifications in two bytes and hundredths
  floats2,     // three stored coefficients; the three kinds differ in the optics they belong to
  floats3,
  floats4,
};

struct Calibration {
  CalibrationForm form;
  // As controllers say it: a client looks at the degree first, and at the kind when there is none.
  std::uint8_t degree, kind;
  void (*storePoints)(const Calibration& calibration, Registers& registers);
  std::array<double, 4> coefficients;  // of the powers of the encoder position, constant first
  std::array<double, 4> positions;     // of the stored points, ascending; the ring's stops are the
                                       // first and the last
};

// The one that cameras with this form are given at the factory.
const Calibration& calibrationFor(CalibrationForm form);

// The encoder counts quarters of a unit.
constexpr int quartersPerUnit = 4;

double magnificationAt(const Calibration& calibration, int quarters);

// The position that shows a magnification best, within the ring's stops. Magnification rises with
// the position over the whole ring.
int quartersFor(const Calibration& calibration, double magnification);

// Writes the calibration into the registers that its form uses.
void store(const Calibration& calibration, Registers& registers);

}  // namespace qvx::simulator
