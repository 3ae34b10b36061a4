// The formulas of the seven kernels, term by term in their defined order.
#include "tests/oracles/kernels.h"

#include <cfloat>
#include <cmath>
#include <stdexcept>

namespace oracle {
namespace {

static_assert(FLT_EVAL_METHOD == 0, "every operation must be rounded to its own type");

constexpr double kPi = 3.141592653589793;

void CheckMode(int mode) {
  if (mode < kFirstMode || mode > kLastMode) throw std::invalid_argument("mode outside 1..7");
}

double Sinc(double u) { return u == 0.0 ? 1.0 : std::sin(kPi * u) / (kPi * u); }

double Triangle(double t) { return t < 1.0 ? 1.0 - t : 0.0; }

double Box(double t) { return t <= 0.5 ? 1.0 : 0.0; }

double Lanczos3(double t) { return t < 3.0 ? Sinc(t) * Sinc(t / 3.0) : 0.0; }

double Lanczos8(double t) { return t < 8.0 ? Sinc(t) * Sinc(t * 0.125) : 0.0; }

double Mitchell(double t) {
  const double t2 = t * t;
  if (t < 1.0) {
    double sum = (7.0 * t) * t2;
    sum = sum - 12.0 * t2;
    sum = sum + 16.0 / 3.0;
    return sum / 6.0;
  }
  if (t < 2.0) {
    double sum = ((-7.0 / 3.0) * t) * t2;
    sum = sum + 12.0 * t2;
    sum = sum - 20.0 * t;
    sum = sum + 32.0 / 3.0;
    return sum / 6.0;
  }
  return 0.0;
}

double Bicubic(double t) {
  if (t < 1.0) return (1.25 * t - 2.25) * (t * t) + 1.0;
  if (t < 2.0) return ((-0.75 * t + 3.75) * t - 6.0) * t + 3.0;
  return 0.0;
}

double SixPointCubic(double t) {
  const double t2 = t * t;
  if (t <= 1.0) {
    double sum = ((4.0 / 3.0) * t2) * t;
    sum = sum - (7.0 / 3.0) * t2;
    return sum + 1.0;
  }
  if (t <= 2.0) {
    double sum = ((-7.0 / 12.0) * t2) * t;
    sum = sum + 3.0 * t2;
    sum = sum - (59.0 / 12.0) * t;
    return sum + 2.5;
  }
  if (t <= 3.0) {
    double sum = ((1.0 / 12.0) * t2) * t;
    sum = sum - (2.0 / 3.0) * t2;
    sum = sum + 1.75 * t;
    return sum - 1.5;
  }
  return 0.0;
}

}  // namespace

double Kernel(int mode, double x) {
  CheckMode(mode);
  const double t = x < 0.0 ? -x : x;
  switch (mode) {
    case 1:
      return Triangle(t);
    case 2:
      return Box(t);
    case 3:
      return Lanczos3(t);
    case 4:
      return Lanczos8(t);
    case 5:
      return Mitchell(t);
    case 6:
      return Bicubic(t);
    default:
      return SixPointCubic(t);
  }
}

double SearchHalfWidth(int mode) {
  CheckMode(mode);
  const double widths[] = {1.0, 0.5, 3.0, 8.0, 2.0, 4.0, 3.0};
  return widths[mode - kFirstMode];
}

int EnlargingCapacity(int mode, bool firstPass) {
  CheckMode(mode);
  if (mode == 2) return firstPass ? 2 : 3;
  const int capacities[] = {4, 0, 8, 18, 6, 10, 8};
  return capacities[mode - kFirstMode];
}

double ShrinkingCapacity(double reach, bool firstPass) {
  return firstPass ? 2.0 * std::trunc(reach) + 2.0 : std::trunc(2.0 * reach + 2.0);
}

bool ListCanBeAllocated(double capacity) {
  const double bytes = capacity * 8.0;
  return bytes >= 1.0 && bytes <= 2147483647.0;
}

}  // namespace oracle
