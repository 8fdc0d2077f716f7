// The magnification that the zoom ring is set to: a raw encoder reading of the controller, turned
// into a rate by a polynomial. The coefficients are fitted once, from the factory calibration, when
// Init opens a camera with the feature; a timer then recomputes the rate.
#pragma once

#include <array>
#include <cstdint>

namespace qvx {

inline float f890Rate = 0;                     // the published rate
inline std::array<float, 10> fabc{};           // fabc[i] multiplies x to the power i
inline float f890a = 0, f890b = 0, f890c = 0;  // a x^2 + b x + c, where no degree is stored

// The cubic fit: four points as rows [x^3, x^2, x, 1], and the adjugate of that matrix.
inline std::array<float, 16> fArrIn{}, fArrOut{};

// The integer three-point fit: calibration bytes and determinant.
inline std::uint32_t ul890x1 = 0, ul890x2 = 0, ul890x3 = 0;
inline std::uint32_t ul890y1 = 0, ul890y2 = 0, ul890y3 = 0;
inline float n890det = 0;

// The fit with two-byte targets in hundredths: calibration bytes, matrix (transposed; n890M11 and
// so on are the other fit's), determinant and targets.
inline std::uint32_t ul890m10 = 0, ul890m11 = 0, ul890m12 = 0;
inline std::uint32_t ul890m20 = 0, ul890m21 = 0, ul890m22 = 0;
inline std::uint32_t ul890m30 = 0, ul890m31 = 0, ul890m32 = 0;
inline float f890M11 = 0, f890M12 = 0, f890M13 = 0;
inline float f890M21 = 0, f890M22 = 0, f890M23 = 0;
inline float f890M31 = 0, f890M32 = 0, f890M33 = 0;
inline float f890det = 0, f890y1 = 0, f890y2 = 0, f890y3 = 0;

// The smoothing window of ten samples. A new device or a call of Init does not restart it.
inline float fRate5s = 0;   // sum of the window's first five
inline float fRate5s1 = 0;  // sum of its second five
namespace count_890_rate {
inline std::uint8_t k = 0;  // place in the window, 0 to 9
}  // namespace count_890_rate

// The calibration loaders. Each reads its registers from device `nTmpIdx` and fills the
// coefficients; a fit without a solution changes none of them, or fits meaningless but finite ones.
void CountMag_ab();     // straight line through two of the four points
void CountMag_abc();    // parabola through three of them
void CountMag_abcd();   // cubic through all four
void Count890abc();     // parabola through three single-byte points
void Count890L2Uabc();  // parabola with targets in hundredths
void Get890abc();       // three coefficients stored as floats

// Picks the loader by the degree (register 0xC5) and kind (0xC3) of the stored calibration.
void loadMagnificationCalibration();

// Takes one sample and publishes the rate.
void Count890Rate();

// A two-byte value at a register and the next, 50 ms after each: an encoder position in quarters
// (mode 0), or a magnification with its own decimal exponent (any other mode).
float GetMag4PointsRawData(int mode, std::uint32_t reg);

// Four bytes, lowest first, as a single-precision number.
float ChangePicData2Float(const std::array<int, 4>& bytes);

// 4x4 matrices in row-major order.
float Minor(const std::array<float, 16>& m, int r0, int r1, int r2, int c0, int c1, int c2);
float Det(const std::array<float, 16>& m);
void Adjoint(const std::array<float, 16>& m, std::array<float, 16>& adjugate);

// Field width in micrometres at a magnification, for the model of a device.
double fieldOfView(int deviceIndex, double magnification);

}  // namespace qvx
