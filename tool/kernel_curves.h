// The seven resampling kernels as their textbooks define them, and what they do to frequencies.
// Written for the plots, apart from the plug-in.
#pragma once

#include <array>
#include <cmath>

namespace tool {

// Distances are in pixels: of the source when enlarging, of the result when shrinking. Every kernel
// is even, and 0 from its radius on.
struct Kernel {
  int mode;            // of "ScalingZVQ"
  const char* name;    // as the documents name the mode
  const char* source;  // where its formula stands
  double radius;
  double (*weight)(double distance);
};

namespace kernel {

inline constexpr double kPi = 3.14159265358979323846;

inline double Sinc(double x) { return x == 0 ? 1 : std::sin(kPi * x) / (kPi * x); }

inline double Triangle(double x) { return std::fmax(0, 1 - std::fabs(x)); }

// Takes its border in, so that halfway between two pixels both count.
inline double Box(double x) { return std::fabs(x) <= 0.5 ? 1 : 0; }

template <int kLobes>
double Lanczos(double x) {
  return std::fabs(x) < kLobes ? Sinc(x) * Sinc(x / kLobes) : 0;
}

// The family of cubics with two parameters, for B = C = 1/3.
inline double Mitchell(double x) {
  constexpr double kB = 1.0 / 3, kC = 1.0 / 3;
  const double t = std::fabs(x);
  if (t < 1) {
    return ((12 - 9 * kB - 6 * kC) * t * t * t + (-18 + 12 * kB + 6 * kC) * t * t + 6 - 2 * kB) / 6;
  }
  if (t < 2) {
    return ((-kB - 6 * kC) * t * t * t + (6 * kB + 30 * kC) * t * t + (-12 * kB - 48 * kC) * t +
            8 * kB + 24 * kC) /
           6;
  }
  return 0;
}

// Cubic convolution over four pixels; `a` is the slope at distance 1.
inline double Bicubic(double x) {
  constexpr double kA = -0.75;
  const double t = std::fabs(x);
  if (t < 1) return (kA + 2) * t * t * t - (kA + 3) * t * t + 1;
  if (t < 2) return kA * (t * t * t - 5 * t * t + 8 * t - 4);
  return 0;
}

// Cubic convolution over six pixels, of the third order.
inline double SixPoint(double x) {
  const double t = std::fabs(x);
  if (t < 1) return (8 * t * t * t - 14 * t * t + 6) / 6;
  if (t < 2) return (-7 * t * t * t + 36 * t * t - 59 * t + 30) / 12;
  if (t < 3) return (t - 3) * (t - 3) * (t - 2) / 12;
  return 0;
}

}  // namespace kernel

inline constexpr std::array<Kernel, 7> kKernels = {{
    {1, "triangle", "linear interpolation", 1, kernel::Triangle},
    {2, "box", "the mean of the area that a pixel covers", 0.5, kernel::Box},
    {3, "Lanczos 3", "Duchon 1979: sinc(x) sinc(x / 3)", 3, kernel::Lanczos<3>},
    {4, "Lanczos 8", "Duchon 1979: sinc(x) sinc(x / 8)", 8, kernel::Lanczos<8>},
    {5, "Mitchell-Netravali", "Mitchell and Netravali 1988, B = C = 1/3", 2, kernel::Mitchell},
    {6, "bicubic", "Keys 1981, four points, a = −0.75", 2, kernel::Bicubic},
    {7, "six-point cubic", "Keys 1981, six points", 3, kernel::SixPoint},
}};

// What a source pixel counts for at a distance, when `count` pixels stand in a row and this is
// number `index`: its weight by the sum of all weights.
inline double Share(const Kernel& kernel, double distance, int index, int count) {
  double total = 0;
  for (int i = 0; i < count; ++i) total += kernel.weight(distance + index - i);
  return kernel.weight(distance) / total;
}

// The Fourier transform of the continuous kernel: its gain for waves of `frequency` cycles per
// pixel. Real, as kernels are even; numerical, exact to about 1e-5.
inline double Gain(const Kernel& kernel, double frequency) {
  constexpr int kSteps = 512;  // per pixel
  double sum = 0;
  const int steps = int(kernel.radius * kSteps);
  for (int i = 0; i < steps; ++i) {
    const double t = (i + 0.5) / kSteps;
    sum += kernel.weight(t) * std::cos(2 * kernel::kPi * frequency * t);
  }
  return 2 * sum / kSteps;
}

}  // namespace tool
