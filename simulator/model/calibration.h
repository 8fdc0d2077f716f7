// How the position of the zoom encoder relates to the magnification, and the forms in which
// controllers store that relation.
#pragma once

#include <array>
#include <cstdint>

namespace qvx::simulator {

// The controller's 256 registers.
using Registers = std::array<std::uint8_t, 256>;

enum class CalibrationForm {
  none,        // no zoom encoder
  line,        // four points; two are used
  parabola,    // four points; three are used
  cubic,       // four points
  bytes,       // three points in single bytes
  hundredths,  // three points, magnifications in two bytes and hundredths
  floats2,     // three stored coefficients; the three kinds belong to different optics
  floats3,
  floats4,
};

struct Calibration {
  CalibrationForm form;
  // As controllers store it: a client reads the degree first, and the kind if there is no degree.
  std::uint8_t degree, kind;
  void (*storePoints)(const Calibration& calibration, Registers& registers);
  std::array<double, 4> coefficients;  // of the powers of the encoder position, constant first
  // Of the stored points, ascending; the first and the last are the ring's stops.
  std::array<double, 4> positions;
};

// The factory calibration of cameras with this form.
const Calibration& calibrationFor(CalibrationForm form);

// The encoder counts quarters of a unit.
constexpr int quartersPerUnit = 4;

double magnificationAt(const Calibration& calibration, int quarters);

// The position nearest to a magnification, within the ring's stops. The magnification rises with
// the position over the whole range.
int quartersFor(const Calibration& calibration, double magnification);

// Writes the calibration into the registers that its form uses.
void store(const Calibration& calibration, Registers& registers);

}  // namespace qvx::simulator
