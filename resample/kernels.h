// The seven kernels that weigh source pixels by their distance from a new pixel's centre. Distances
// are in source pixels when enlarging and in result pixels when shrinking; every kernel is
// symmetric and 0 outside its support. All arithmetic is in doubles, in the order written.
//
// Each kernel is a type with
//   kSearch           radius within which source pixels are looked at, at scale 1
//   kEnlargedTaps     most taps of a new pixel when enlarging along rows, and
//   kEnlargedTapsDown down columns
//   kCostly           whether values take long to compute
//   Value(x)          the kernel
#pragma once

#include <cmath>

namespace kernels {

inline constexpr double kPi = 3.141592653589793;

// sin(πu) / (πu), 1 at 0.
inline double Sinc(double u) {
  if (u == 0.0) return 1.0;
  const double angle = kPi * u;
  return std::sin(angle) / angle;
}

}  // namespace kernels

// Mode 1. Linear interpolation; "triangle" or "tent" filter (Heckbert 1989, "Fundamentals of
// Texture Mapping and Image Warping"). Support 1. Value 1 - t for t < 1.
struct TriangleFilter {
  static constexpr double kSearch = 1.0;
  static constexpr int kEnlargedTaps = 4;
  static constexpr int kEnlargedTapsDown = 4;
  static constexpr bool kCostly = false;
  static double Value(double x) {
    const double t = std::fabs(x);
    return t < 1.0 ? 1.0 - t : 0.0;
  }
};

// Mode 2. Nearest neighbour when enlarging, area mean when shrinking; "box" or "Fourier window"
// filter (Turkowski 1990, "Filters for Common Resampling Tasks"). Support 0.5, its border included:
// a centre exactly between two pixels takes both. Value 1.
struct BoxFilter {
  static constexpr double kSearch = 0.5;
  static constexpr int kEnlargedTaps = 2;
  static constexpr int kEnlargedTapsDown = 3;
  static constexpr bool kCostly = false;
  static double Value(double x) { return std::fabs(x) <= 0.5 ? 1.0 : 0.0; }
};

// Mode 3. Sinc windowed by the central lobe of a sinc three times as wide (Duchon 1979, "Lanczos
// Filtering in One and Two Dimensions"; Turkowski 1990). Support 3. Value sinc(t)·sinc(t/3) for t
// < 3. At integer t it is not quite 0, because sin(kPi) is not: such taps count like any other.
struct Lanczos3Filter {
  static constexpr double kSearch = 3.0;
  static constexpr int kEnlargedTaps = 8;
  static constexpr int kEnlargedTapsDown = 8;
  static constexpr bool kCostly = true;
  static double Value(double x) {
    const double t = std::fabs(x);
    return t < 3.0 ? kernels::Sinc(t) * kernels::Sinc(t / 3.0) : 0.0;
  }
};

// Mode 4. The same, eight lobes wide. Support 8. Value sinc(t)·sinc(t/8) for t < 8.
struct Lanczos8Filter {
  static constexpr double kSearch = 8.0;
  static constexpr int kEnlargedTaps = 18;
  static constexpr int kEnlargedTapsDown = 18;
  static constexpr bool kCostly = true;
  static double Value(double x) {
    const double t = std::fabs(x);
    return t < 8.0 ? kernels::Sinc(t) * kernels::Sinc(t * 0.125) : 0.0;
  }
};

// Mode 5. The piecewise cubic with B = C = 1/3 (Mitchell and Netravali 1988, "Reconstruction
// Filters in Computer Graphics"). Support 2. Does not interpolate: 8/9 at 0, 1/18 at 1. Value (7t³
// - 12t² + 16/3)/6 for t < 1,
// (-7/3·t³ + 12t² - 20t + 32/3)/6 for t < 2.
struct MitchellFilter {
  static constexpr double kSearch = 2.0;
  static constexpr int kEnlargedTaps = 6;
  static constexpr int kEnlargedTapsDown = 6;
  static constexpr bool kCostly = false;
  static double Value(double x) {
    const double t = std::fabs(x);
    const double t2 = x * x;
    if (t < 1.0) return (((7.0 * t) * t2 - 12.0 * t2) + 16.0 / 3.0) / 6.0;
    if (t < 2.0) {
      return ((((-7.0 / 3.0 * t) * t2 + 12.0 * t2) - 20.0 * t) + 32.0 / 3.0) / 6.0;
    }
    return 0.0;
  }
};

// Mode 6. Cubic convolution with a = -3/4 (Keys 1981, "Cubic Convolution Interpolation for Digital
// Image Processing"). Support 2. Value (5/4·t - 9/4)t² + 1 for t < 1, ((-3/4·t + 15/4)t - 6)t + 3
// for t < 2. Deliberate: searches twice as far as its support; the taps beyond weigh nothing and
// are dropped.
struct BicubicFilter {
  static constexpr double kSearch = 4.0;
  static constexpr int kEnlargedTaps = 10;
  static constexpr int kEnlargedTapsDown = 10;
  static constexpr bool kCostly = false;
  static double Value(double x) {
    const double t = std::fabs(x);
    if (t < 1.0) return (1.25 * t - 2.25) * (t * t) + 1.0;
    if (t < 2.0) return ((-0.75 * t + 3.75) * t - 6.0) * t + 3.0;
    return 0.0;
  }
};

// Mode 7. Six-point cubic convolution, of third order (Keys 1981). Support 3. Value 4/3·t³ - 7/3·t²
// + 1 for t <= 1, -7/12·t³ + 3t² - 59/12·t + 5/2 for t <= 2, 1/12·t³ - 2/3·t² + 7/4·t - 3/2 for t
// <= 3. Deliberate: its borders are inclusive, so what the pieces round to there is kept where it
// is not 0.
struct Cubic6Filter {
  static constexpr double kSearch = 3.0;
  static constexpr int kEnlargedTaps = 8;
  static constexpr int kEnlargedTapsDown = 8;
  static constexpr bool kCostly = false;
  static double Value(double x) {
    const double t = std::fabs(x);
    const double t2 = t * t;
    if (t <= 1.0) return ((4.0 / 3.0 * t2) * t - 7.0 / 3.0 * t2) + 1.0;
    if (t <= 2.0) return (((-7.0 / 12.0 * t2) * t + 3.0 * t2) - 59.0 / 12.0 * t) + 2.5;
    if (t <= 3.0) return (((1.0 / 12.0 * t2) * t - 2.0 / 3.0 * t2) + 1.75 * t) - 1.5;
    return 0.0;
  }
};
