// Remembered values of kernels: those of the kernels, bit for bit, whatever was asked before.
#include "resample/kernel_values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <limits>

#include "resample/kernels.h"
#include "tests/support/random.h"

namespace {

using Distances = std::vector<double>;

template <typename Filter>
void ExpectValuesOf(const char* name, const Distances& distances) {
  KernelValues<Filter> values;
  for (const double x : distances) {
    const auto expected = std::bit_cast<std::uint64_t>(Filter::Value(x));
    ASSERT_EQ(std::bit_cast<std::uint64_t>(values.Value(x)), expected) << name << " at " << x;
  }
}

// Asks for these, one after the other.
void ExpectValuesOfEveryKernel(const Distances& distances) {
  ExpectValuesOf<TriangleFilter>("triangle", distances);
  ExpectValuesOf<BoxFilter>("box", distances);
  ExpectValuesOf<Lanczos3Filter>("Lanczos 3", distances);
  ExpectValuesOf<Lanczos8Filter>("Lanczos 8", distances);
  ExpectValuesOf<MitchellFilter>("Mitchell", distances);
  ExpectValuesOf<BicubicFilter>("bicubic", distances);
  ExpectValuesOf<Cubic6Filter>("six-point cubic", distances);
}

Distances Twice(Distances distances) {
  const std::size_t count = distances.size();
  for (std::size_t k = 0; k < count; ++k) distances.push_back(distances[k]);
  return distances;
}

// In [0, 1).
double Fraction(support::Random& random) { return random.Word() / 4294967296.0; }

TEST(KernelValues, AreTheKernelsForMoreDistancesThanAreRemembered) {
  support::Random random(36104000);
  Distances distances;
  for (int k = 0; k < 5000; ++k) distances.push_back((Fraction(random) - 0.5) * 20.0);
  distances = Twice(distances);
  ExpectValuesOfEveryKernel(distances);
  std::reverse(distances.begin(), distances.end());
  ExpectValuesOfEveryKernel(distances);
}

TEST(KernelValues, AreTheKernelsForDistancesThatComeAgain) {
  support::Random random(36104001);
  Distances few, many;
  for (int k = 0; k < 200; ++k) few.push_back(random.Between(-90, 90) / 10.0);
  for (int k = 0; k < 20000; ++k) {
    many.push_back(few[static_cast<std::size_t>(random.Between(0, 199))]);
    if (k % 7 == 0) many.push_back(-many.back());
    if (k % 50 == 0) many.push_back(Fraction(random));
  }
  ExpectValuesOfEveryKernel(many);
}

// One unit in the last place away from each other: the same but for their last bits.
TEST(KernelValues, AreTheKernelsForNeighbouringDistances) {
  support::Random random(36104002);
  Distances distances;
  for (int k = 0; k < 1000; ++k) {
    const double x = Fraction(random) * 8.0;
    Distances near = {x, std::nextafter(x, 9.0), x, std::nextafter(x, -9.0)};
    for (const int step : {1 << 10, 1 << 20, 1 << 30}) near.push_back(x + x / step);
    near = Twice(near);
    distances.insert(distances.end(), near.begin(), near.end());
  }
  ExpectValuesOfEveryKernel(distances);
}

TEST(KernelValues, AreTheKernelsAtScalesAsTheyOccur) {
  for (const double scale : {1.0, 0.5, 1.0 / 3, 0.25, 2.0, 3.0, 0.7, 1.37}) {
    Distances distances;
    for (int i = 0; i < 100; ++i) {
      const double centre = (i + 0.5) / scale;
      for (int j = static_cast<int>(centre) - 12; j <= centre + 12; ++j) {
        distances.push_back((centre - j - 0.5) * std::min(scale, 1.0));
      }
    }
    ExpectValuesOfEveryKernel(distances);
  }
}

TEST(KernelValues, AreTheKernelsAtTheirBordersAndBeyond) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Distances distances = {0.0,   -0.0,   5e-324,    -5e-324,    1e-300,
                         1e300, -1e300, kInfinity, -kInfinity, std::nan("")};
  for (const double border : {0.5, 1.0, 2.0, 3.0, 8.0}) {
    for (const double x : {border, std::nextafter(border, 0.0), std::nextafter(border, 9.0)}) {
      distances.push_back(x);
      distances.push_back(-x);
    }
  }
  ExpectValuesOfEveryKernel(Twice(distances));
}

}  // namespace
