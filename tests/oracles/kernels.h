// The seven filter kernels of "ScalingZVQ", straight from their formulas, and the fixed numbers
// that go with each mode. Modes are 1..7: triangle, box, Lanczos 3, Lanczos 8, Mitchell, bicubic,
// six-point cubic. Every function throws std::invalid_argument on another mode.
#pragma once

namespace oracle {

constexpr int kFirstMode = 1;
constexpr int kLastMode = 7;

// The weight of a source pixel whose centre lies `x` away from the result pixel's centre, in source
// pixels when enlarging and in result pixels when shrinking; double precision throughout.
// The sign of x does not matter; beyond the kernel's support the weight is 0.
double Kernel(int mode, double x);

// Half the width of the window in which weights are evaluated, in the units of Kernel's `x`.
// Mode 6 looks 4 away although its kernel ends at 2.
double SearchHalfWidth(int mode);

// Taps that one list holds when enlarging (result size / source size >= 1).
int EnlargingCapacity(int mode, bool firstPass);

// Taps that one list holds when shrinking; `reach` is the search half-width in source pixels, at
// least 0. A whole number; a double because it may exceed every integer type.
double ShrinkingCapacity(double reach, bool firstPass);

// Whether a list of that many taps, 8 bytes each, can be allocated: 1 .. 2^31 - 1 bytes.
bool ListCanBeAllocated(double capacity);

}  // namespace oracle
