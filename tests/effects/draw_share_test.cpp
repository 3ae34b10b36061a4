// Products of channels and a weight in 16-bit integers, each checked against the conversion of the
// product in floating point.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "effects/draw_share.h"
#include "plugin/arithmetic.h"

namespace {

// In the arithmetic of the vectors: 16 bits that wrap.
int ProductOf(const FixedShare& share, std::uint32_t c) {
  std::uint32_t product = (c & share.whole) + (c * share.multiplier >> 16);
  for (int i = 0; i < share.patches; ++i) {
    if (share.value[i] == c) product += share.step[i];
  }
  return static_cast<std::uint16_t>(product);
}

// How many of the 256 products are wrong.
int WrongProducts(const FixedShare& share, double weight) {
  int wrong = 0;
  for (std::uint32_t c = 0; c < 256; ++c) {
    if (ProductOf(share, c) != TruncateToInt32(c * weight)) ++wrong;
  }
  return wrong;
}

TEST(FixedShare, GivesEveryProductOfAWeight) {
  std::mt19937 random(7);
  for (int i = 0; i < 20000; ++i) {
    const double weight = static_cast<double>(random()) / 4294967296.0 * (i % 2 == 0 ? 1 : 2);
    FixedShare share;
    ASSERT_TRUE(FindFixedShare(weight, share)) << weight;
    ASSERT_EQ(WrongProducts(share, weight), 0) << weight;
    EXPECT_EQ(share.weight, weight);
  }
}

// Just below, at and above a fraction, products come to lie around integers.
TEST(FixedShare, IsExactOrRefusedNextToFractions) {
  int refused = 0;
  int patched = 0;
  int cases = 0;
  for (int denominator = 1; denominator <= 255; ++denominator) {
    for (int numerator = 0; numerator < 2 * denominator; ++numerator) {
      double weight = static_cast<double>(numerator) / denominator;
      weight = std::nextafter(std::nextafter(weight, 0.0), 0.0);
      for (int step = -2; step <= 2; ++step, weight = std::nextafter(weight, 3.0)) {
        FixedShare share;
        ++cases;
        if (!FindFixedShare(weight, share)) {
          ++refused;
          continue;
        }
        if (share.patches > 0) ++patched;
        ASSERT_EQ(WrongProducts(share, weight), 0) << numerator << '/' << denominator << step;
      }
    }
  }
  EXPECT_GT(patched, cases / 100);
  EXPECT_GT(refused, 0);
  EXPECT_LT(refused, cases / 20);
}

TEST(FixedShare, KnowsWeightsThatRoundUnevenly) {
  FixedShare share;
  ASSERT_TRUE(FindFixedShare(0.7, share));  // 0.7 * 80 is 56, 0.7 * 90 is less than 63
  EXPECT_GT(share.patches, 0);
  EXPECT_EQ(ProductOf(share, 80), 56);
  EXPECT_EQ(ProductOf(share, 90), 62);
}

TEST(FixedShare, OfOneIsTheChannelAndOfZeroIsNothing) {
  FixedShare share;
  ASSERT_TRUE(FindFixedShare(1.0, share));
  EXPECT_EQ(share.patches, 0);
  EXPECT_EQ(ProductOf(share, 255), 255);
  EXPECT_FALSE(share.Nothing());
  ASSERT_TRUE(FindFixedShare(0.0, share));
  EXPECT_TRUE(share.Nothing());
  ASSERT_TRUE(FindFixedShare(1e-310, share));
  EXPECT_TRUE(share.Nothing());
}

TEST(FixedShare, RefusesWhatIsOutsideItsRange) {
  for (const double weight :
       {-1e-300, -1.0, 2.0, 1e300, std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    FixedShare share;
    EXPECT_FALSE(FindFixedShare(weight, share)) << weight;
  }
}

}  // namespace
