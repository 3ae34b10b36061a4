// Conversions and wrapping integers: values that C++ leaves undefined, beside ordinary ones.
#include "plugin/arithmetic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

constexpr std::int32_t kLeast = -2147483647 - 1;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct ToInt32Case {
  double value;
  std::int32_t expected;
};

TEST(TruncateToInt32, TruncatesTowardZeroAndAnswersTheLeastIntegerForWhatDoesNotFit) {
  const ToInt32Case cases[] = {
      {0.0, 0},
      {-0.0, 0},
      {0.999999, 0},
      {-0.999999, 0},
      {1.0, 1},
      {-1.5, -1},
      {254.5, 254},
      {1e-310, 0},
      {2147483646.5, 2147483646},
      {2147483647.0, 2147483647},
      {2147483647.9999995, 2147483647},
      {2147483648.0, kLeast},
      {2147483649.0, kLeast},
      {4294967296.0, kLeast},
      {-2147483647.5, -2147483647},
      {-2147483648.0, kLeast},
      {-2147483648.9999995, kLeast},
      {-2147483649.0, kLeast},
      {-4294967295.0, kLeast},
      {1e300, kLeast},
      {-1e300, kLeast},
      {kInfinity, kLeast},
      {-kInfinity, kLeast},
      {kNan, kLeast},
      {-kNan, kLeast},
  };
  for (const ToInt32Case& row : cases) {
    EXPECT_EQ(TruncateToInt32(row.value), row.expected) << row.value;
  }
}

TEST(FloorToInt32, RoundsDownAndAnswersTheLeastIntegerForWhatDoesNotFit) {
  const ToInt32Case cases[] = {
      {0.0, 0},
      {-0.0, 0},
      {0.999999, 0},
      {5e-324, 0},
      {-5e-324, -1},
      {-0.25, -1},
      {-0.999999, -1},
      {-1.0, -1},
      {-1.0000000000000002, -2},
      {-1.5, -2},
      {1.0, 1},
      {254.9999, 254},
      {-254.0001, -255},
      {2147483646.5, 2147483646},
      {2147483647.0, 2147483647},
      {2147483647.5, 2147483647},
      {2147483648.0, kLeast},
      {4294967296.0, kLeast},
      {-2147483646.5, -2147483647},
      {-2147483647.0, -2147483647},
      {-2147483647.5, kLeast},
      {-2147483648.0, kLeast},
      {-2147483648.5, kLeast},
      {-2147483649.0, kLeast},
      {-4294967295.5, kLeast},
      {1e300, kLeast},
      {-1e300, kLeast},
      {kInfinity, kLeast},
      {-kInfinity, kLeast},
      {kNan, kLeast},
      {-kNan, kLeast},
  };
  for (const ToInt32Case& row : cases) {
    EXPECT_EQ(FloorToInt32(row.value), row.expected) << row.value;
  }
}

TEST(FloorToInt32, IsTheTruncatedFloorBetweenItsBounds) {
  for (double value = -70.0; value <= 70.0; value += 0.03125) {
    EXPECT_EQ(FloorToInt32(value), static_cast<std::int32_t>(std::floor(value))) << value;
  }
}

struct ToByteCase {
  float value;
  int expected;
};

TEST(TruncateToByte, ClampsToAByteAndAnswers0ForNan) {
  const ToByteCase cases[] = {
      {0.0F, 0},
      {-0.0F, 0},
      {0.99F, 0},
      {1.0F, 1},
      {127.999F, 127},
      {128.0F, 128},
      {254.0F, 254},
      {254.99998F, 254},
      {255.0F, 255},
      {255.5F, 255},
      {256.0F, 255},
      {1e30F, 255},
      {-0.5F, 0},
      {-1.0F, 0},
      {-1e30F, 0},
      {std::numeric_limits<float>::denorm_min(), 0},
      {std::numeric_limits<float>::infinity(), 255},
      {-std::numeric_limits<float>::infinity(), 0},
      {std::numeric_limits<float>::quiet_NaN(), 0},
  };
  for (const ToByteCase& row : cases) {
    EXPECT_EQ(TruncateToByte(row.value), row.expected) << row.value;
  }
}

struct PairCase {
  std::int32_t a, b, sum, difference, product;
};

TEST(WrappingIntegers, AddSubtractAndMultiplyModulo2To32) {
  const PairCase cases[] = {
      {2, 3, 5, -1, 6},
      {-7, 4, -3, -11, -28},
      {2147483647, 1, kLeast, 2147483646, 2147483647},
      {kLeast, 1, -2147483647, 2147483647, kLeast},
      {kLeast, -1, 2147483647, -2147483647, kLeast},
      {kLeast, kLeast, 0, 0, 0},
      {2147483647, 2147483647, -2, 0, 1},
      {2147483647, kLeast, -1, -1, kLeast},
      {0, kLeast, kLeast, kLeast, 0},
      {65536, 65536, 131072, 0, 0},
      {65537, 65537, 131074, 0, 131073},
      {46341, 46341, 92682, 0, -2147479015},
  };
  for (const PairCase& row : cases) {
    EXPECT_EQ(WrapAdd(row.a, row.b), row.sum) << row.a << ' ' << row.b;
    EXPECT_EQ(WrapSubtract(row.a, row.b), row.difference) << row.a << ' ' << row.b;
    EXPECT_EQ(WrapMultiply(row.a, row.b), row.product) << row.a << ' ' << row.b;
  }
}

TEST(WrappingIntegers, TheLeastIntegerIsItsOwnAbsoluteValue) {
  EXPECT_EQ(WrapAbs(0), 0);
  EXPECT_EQ(WrapAbs(5), 5);
  EXPECT_EQ(WrapAbs(-5), 5);
  EXPECT_EQ(WrapAbs(2147483647), 2147483647);
  EXPECT_EQ(WrapAbs(-2147483647), 2147483647);
  EXPECT_EQ(WrapAbs(kLeast), kLeast);
}

}  // namespace
