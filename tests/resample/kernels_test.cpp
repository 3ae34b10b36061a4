// The seven kernels: properties that theory promises, and values worked out by hand.
#include "resample/kernels.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

// What the tests know of each kernel.
template <typename Filter>
struct Traits;
template <>
struct Traits<TriangleFilter> {
  static constexpr double kSupport = 1.0;
  static constexpr bool kInterpolates = true;
  static constexpr bool kSumsToOne = true;
};
template <>
struct Traits<BoxFilter> {
  static constexpr double kSupport = 0.5;
  static constexpr bool kInterpolates = true;
  static constexpr bool kSumsToOne = true;
};
template <>
struct Traits<Lanczos3Filter> {
  static constexpr double kSupport = 3.0;
  static constexpr bool kInterpolates = true;
  static constexpr bool kSumsToOne = false;
};
template <>
struct Traits<Lanczos8Filter> {
  static constexpr double kSupport = 8.0;
  static constexpr bool kInterpolates = true;
  static constexpr bool kSumsToOne = false;
};
template <>
struct Traits<MitchellFilter> {
  static constexpr double kSupport = 2.0;
  static constexpr bool kInterpolates = false;
  static constexpr bool kSumsToOne = true;
};
template <>
struct Traits<BicubicFilter> {
  static constexpr double kSupport = 2.0;
  static constexpr bool kInterpolates = true;
  static constexpr bool kSumsToOne = true;
};
template <>
struct Traits<Cubic6Filter> {
  static constexpr double kSupport = 3.0;
  static constexpr bool kInterpolates = true;
  static constexpr bool kSumsToOne = true;
};

template <typename Filter>
class EveryKernel : public testing::Test {};

using Filters = testing::Types<TriangleFilter, BoxFilter, Lanczos3Filter, Lanczos8Filter,
                               MitchellFilter, BicubicFilter, Cubic6Filter>;
TYPED_TEST_SUITE(EveryKernel, Filters);

constexpr double kStep = 1.0 / 1024;

TYPED_TEST(EveryKernel, IsSymmetric) {
  for (double x = 0.0; x <= 9.0; x += kStep) {
    ASSERT_EQ(TypeParam::Value(x), TypeParam::Value(-x)) << x;
  }
}

TYPED_TEST(EveryKernel, IsNothingBeyondItsSupport) {
  constexpr double kSupport = Traits<TypeParam>::kSupport;
  EXPECT_EQ(TypeParam::Value(std::nextafter(kSupport, 100.0)), 0.0);
  for (double x = kSupport + kStep; x <= 20.0; x += kStep) ASSERT_EQ(TypeParam::Value(x), 0.0) << x;
}

TYPED_TEST(EveryKernel, IsSomethingInsideItsSupport) {
  constexpr double kSupport = Traits<TypeParam>::kSupport;
  double largest = 0.0;
  for (double x = kSupport - 0.4; x < kSupport; x += kStep) {
    largest = std::fmax(largest, std::fabs(TypeParam::Value(x)));
  }
  EXPECT_GT(largest, 1e-4);
}

TYPED_TEST(EveryKernel, InterpolatesExactlyWhereItShould) {
  if (Traits<TypeParam>::kInterpolates) {
    EXPECT_EQ(TypeParam::Value(0.0), 1.0);
    for (int k = 1; k < 9; ++k) EXPECT_NEAR(TypeParam::Value(k), 0.0, 1e-15) << k;
  } else {
    EXPECT_NEAR(TypeParam::Value(0.0), 8.0 / 9.0, 1e-15);
    EXPECT_NEAR(TypeParam::Value(1.0), 1.0 / 18.0, 1e-15);
  }
}

// The weights that pixels at distance 1 get add up to 1 wherever the centre lies, but for the
// windowed sincs, whose sum stays within a hundredth of it.
TYPED_TEST(EveryKernel, WeightsOfAllPixelsAddUpToOne) {
  const double tolerance = Traits<TypeParam>::kSumsToOne ? 1e-14 : 0.012;
  double worst = 0.0;
  for (double offset = kStep / 2; offset < 1.0; offset += kStep) {
    double sum = 0.0;
    for (int k = -10; k <= 10; ++k) sum += TypeParam::Value(offset - k);
    worst = std::fmax(worst, std::fabs(sum - 1.0));
  }
  EXPECT_LE(worst, tolerance);
  EXPECT_EQ(worst > 1e-9, !Traits<TypeParam>::kSumsToOne) << "the tolerance is needed";
}

TYPED_TEST(EveryKernel, IsContinuousButForTheBox) {
  double previous = TypeParam::Value(0.0);
  double largestStep = 0.0;
  for (double x = kStep; x <= 9.0; x += kStep) {
    const double value = TypeParam::Value(x);
    largestStep = std::fmax(largestStep, std::fabs(value - previous));
    previous = value;
  }
  const bool isBox = std::is_same_v<TypeParam, BoxFilter>;
  EXPECT_EQ(largestStep > 3 * kStep, isBox);
}

TYPED_TEST(EveryKernel, SearchCoversTheSupport) {
  EXPECT_GE(TypeParam::kSearch, Traits<TypeParam>::kSupport);
}

struct KnownValue {
  double x, value;
};

TEST(TriangleFilter, HasTheseValues) {
  for (const KnownValue& known : {KnownValue{0.25, 0.75}, {0.5, 0.5}, {1.0, 0.0}, {-0.75, 0.25}}) {
    EXPECT_EQ(TriangleFilter::Value(known.x), known.value);
  }
}

TEST(BoxFilter, IncludesItsBorder) {
  EXPECT_EQ(BoxFilter::Value(0.5), 1.0);
  EXPECT_EQ(BoxFilter::Value(-0.5), 1.0);
  EXPECT_EQ(BoxFilter::Value(std::nextafter(0.5, 1.0)), 0.0);
}

TEST(Lanczos3Filter, IsOneAtZeroWithoutDividing) { EXPECT_EQ(Lanczos3Filter::Value(0.0), 1.0); }
TEST(Lanczos8Filter, IsOneAtZeroWithoutDividing) { EXPECT_EQ(Lanczos8Filter::Value(-0.0), 1.0); }

TEST(Lanczos3Filter, HasTheseValues) {
  // sinc(1/2) = 2/pi, sinc(1/6) = 3/pi: 6/pi². sinc(3/2) = -2/(3pi), sinc(1/2) = 2/pi: -4/(3pi²).
  const double pi2 = kernels::kPi * kernels::kPi;
  EXPECT_NEAR(Lanczos3Filter::Value(0.5), 6.0 / pi2, 1e-15);
  EXPECT_NEAR(Lanczos3Filter::Value(1.5), -4.0 / (3.0 * pi2), 1e-15);
  EXPECT_EQ(Lanczos3Filter::Value(3.0), 0.0);
}

TEST(Lanczos8Filter, HasTheseValues) {
  // sinc(4) is 0 but for the rounding of pi; sinc(1/2)·sinc(1/16) = 2/pi · 16·sin(pi/16)/pi.
  const double pi = kernels::kPi;
  EXPECT_NEAR(Lanczos8Filter::Value(0.5), 2.0 / pi * (16.0 * std::sin(pi / 16.0) / pi), 1e-15);
  EXPECT_NEAR(Lanczos8Filter::Value(4.0), 0.0, 1e-15);
  EXPECT_EQ(Lanczos8Filter::Value(8.0), 0.0);
}

TEST(Lanczos3Filter, KeepsTheTinyValueOfItsZeros) {
  // sin(pi) as a double is 1.2e-16, so the first zero is a tap of its own.
  EXPECT_NE(Lanczos3Filter::Value(1.0), 0.0);
}

TEST(MitchellFilter, HasTheseValues) {
  // (7/8 - 3 + 16/3) / 6 = 77/144; (-63/8 + 27 - 30 + 32/3) / 6 = -5/144.
  EXPECT_NEAR(MitchellFilter::Value(0.5), 77.0 / 144.0, 1e-15);
  EXPECT_NEAR(MitchellFilter::Value(1.5), -5.0 / 144.0, 1e-15);
  EXPECT_EQ(MitchellFilter::Value(2.0), 0.0);
}

TEST(BicubicFilter, HasTheseValues) {
  // (5/8 - 9/4)/4 + 1 = 19/32; ((-9/8 + 15/4)·3/2 - 6)·3/2 + 3 = -3/32. Exact in binary.
  EXPECT_EQ(BicubicFilter::Value(0.5), 0.59375);
  EXPECT_EQ(BicubicFilter::Value(1.5), -0.09375);
  EXPECT_EQ(BicubicFilter::Value(1.0), 0.0);
  EXPECT_EQ(BicubicFilter::Value(2.0), 0.0);
}

TEST(Cubic6Filter, HasTheseValues) {
  // 1/6 - 7/12 + 1 = 7/12; -63/32 + 27/4 - 59/8 + 5/2 = -3/32; 125/96 - 25/6 + 35/8 - 3/2 = 1/96.
  EXPECT_NEAR(Cubic6Filter::Value(0.5), 7.0 / 12.0, 1e-15);
  EXPECT_NEAR(Cubic6Filter::Value(1.5), -3.0 / 32.0, 1e-15);
  EXPECT_NEAR(Cubic6Filter::Value(2.5), 1.0 / 96.0, 1e-15);
}

TEST(Cubic6Filter, EvaluatesItsBordersByTheirInnerPiece) {
  const auto inner = [](double t) {
    const double t2 = t * t;
    if (t == 1.0) return ((4.0 / 3.0 * t2) * t - 7.0 / 3.0 * t2) + 1.0;
    if (t == 2.0) return (((-7.0 / 12.0 * t2) * t + 3.0 * t2) - 59.0 / 12.0 * t) + 2.5;
    return (((1.0 / 12.0 * t2) * t - 2.0 / 3.0 * t2) + 1.75 * t) - 1.5;
  };
  for (double t : {1.0, 2.0, 3.0}) EXPECT_EQ(Cubic6Filter::Value(t), inner(t)) << t;
  EXPECT_EQ(Cubic6Filter::Value(std::nextafter(3.0, 4.0)), 0.0);
}

}  // namespace
