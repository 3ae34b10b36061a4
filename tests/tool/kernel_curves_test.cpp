// The textbooks' kernels at points where their values are known.
#include "tool/kernel_curves.h"

#include <gtest/gtest.h>

namespace tool {
namespace {

const Kernel& Mode(int mode) { return kKernels[std::size_t(mode - 1)]; }

TEST(KernelCurves, StandInTheOrderOfTheModes) {
  for (int mode = 1; mode <= 7; ++mode) EXPECT_EQ(Mode(mode).mode, mode);
}

TEST(KernelCurves, HaveTheirKnownValues) {
  const struct {
    int mode;
    double distance, weight;
  } rows[] = {
      {1, 0, 1},
      {1, 0.25, 0.75},
      {1, 1, 0},
      {2, 0, 1},
      {2, 0.5, 1},
      {2, 0.5000001, 0},
      {3, 0, 1},
      {3, 1.5, -0.1350949},
      {3, 0.5, 0.6079271},
      {4, 0, 1},
      {4, 0.5, 0.6325370},
      {4, 7.5, -0.0028112},
      {5, 0, 8.0 / 9},
      {5, 1, 1.0 / 18},
      {5, 1.5, -5.0 / 144},
      {5, 2, 0},
      {6, 0, 1},
      {6, 0.5, 0.59375},
      {6, 1.5, -0.09375},
      {6, 2, 0},
      {7, 0, 1},
      {7, 0.5, 7.0 / 12},
      {7, 1.5, -0.09375},
      {7, 2.5, 1.0 / 96},
  };
  for (const auto& row : rows) {
    EXPECT_NEAR(Mode(row.mode).weight(row.distance), row.weight, 1e-7)
        << row.mode << " at " << row.distance;
  }
}

TEST(KernelCurves, AreEvenAndEndAtTheirRadius) {
  for (const Kernel& kernel : kKernels) {
    for (double x = 0; x < 9; x += 0.01) {
      EXPECT_EQ(kernel.weight(x), kernel.weight(-x)) << kernel.name << " at " << x;
    }
    EXPECT_NE(kernel.weight(kernel.radius - 0.03), 0) << kernel.name;
    EXPECT_EQ(kernel.weight(kernel.radius + 1e-9), 0) << kernel.name;
    EXPECT_EQ(kernel.weight(kernel.radius + 3), 0) << kernel.name;
  }
}

TEST(KernelCurves, AreSmoothWithinTheirRadius) {
  for (const Kernel& kernel : kKernels) {
    for (double x = 0; x < kernel.radius - 0.002; x += 0.001) {
      EXPECT_NEAR(kernel.weight(x), kernel.weight(x + 0.001), 0.002) << kernel.name << " at " << x;
    }
  }
}

TEST(KernelCurves, WeightsOfARowSumToOneButForLanczos) {
  for (const Kernel& kernel : kKernels) {
    const double tolerance = kernel.mode == 3 || kernel.mode == 4 ? 0.0125 : 1e-12;
    double furthest = 0;
    for (double x = -0.4999; x < 0.5; x += 0.01) {
      double sum = 0;
      for (int i = -9; i <= 9; ++i) sum += kernel.weight(x + i);
      EXPECT_NEAR(sum, 1, tolerance) << kernel.name << " at " << x;
      furthest = std::fmax(furthest, std::fabs(sum - 1));
    }
    EXPECT_EQ(furthest > 1e-6, tolerance > 1e-6) << kernel.name;
  }
}

TEST(KernelCurves, SharesOfARowSumToOne) {
  for (const Kernel& kernel : kKernels) {
    double sum = 0;
    for (int i = 0; i < 21; ++i) sum += Share(kernel, 10.3 - i, i, 21);
    EXPECT_NEAR(sum, 1, 1e-12) << kernel.name;
  }
  // At the border there are fewer pixels to share with.
  EXPECT_NEAR(Share(Mode(1), -0.25, 0, 3), 1, 1e-12);
  EXPECT_NEAR(Share(Mode(1), 0.25, 0, 3), 0.75, 1e-12);
}

TEST(KernelCurves, GainsAreThoseOfKnownTransforms) {
  for (double f = 0.05; f < 2; f += 0.05) {
    const double sinc = kernel::Sinc(f);
    EXPECT_NEAR(Gain(Mode(2), f), sinc, 1e-5) << f;         // of a box
    EXPECT_NEAR(Gain(Mode(1), f), sinc * sinc, 1e-5) << f;  // of two boxes, one after the other
  }
  for (const Kernel& kernel : kKernels) EXPECT_NEAR(Gain(kernel, 0), 1, 0.01) << kernel.name;
  EXPECT_NEAR(Gain(Mode(4), 0.5), 0.5, 0.01);
  EXPECT_LT(std::fabs(Gain(Mode(4), 1)), 0.001);
}

}  // namespace
}  // namespace tool
