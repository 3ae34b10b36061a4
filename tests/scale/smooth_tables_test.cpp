// The smooth enlarger's tables: indexes, weights, padding, sizes.
#include "scale/smooth_tables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/support/allocation_faults.h"

namespace {

TEST(SmoothTables, WeightsOfTheOuterNeighboursAreNothing) {
  for (int i = 0; i < 1000; ++i) {
    const TapWeights weights = WeightsFor(static_cast<float>(i) / 1000.0F);
    EXPECT_EQ(weights.entry[0], 0.0F);
    EXPECT_EQ(weights.entry[3], 0.0F);
  }
}

struct WeightRow {
  float t, after, here;
};

TEST(SmoothTables, WeightsAreTheSmoothstepAndItsComplement) {
  // Exact in single precision: t² and t³ of these fractions have few bits.
  const WeightRow rows[] = {{0.0F, 0.0F, 1.0F},
                            {0.25F, 0.15625F, 0.84375F},
                            {0.5F, 0.5F, 0.5F},
                            {0.75F, 0.84375F, 0.15625F}};
  for (const WeightRow& row : rows) {
    const TapWeights weights = WeightsFor(row.t);
    EXPECT_EQ(weights.entry[1], row.after) << row.t;
    EXPECT_EQ(weights.entry[2], row.here) << row.t;
  }
}

TEST(SmoothTables, WeightsOfThreeTenthsRoundInTheirOrder) {
  // t = 0.3 as a float; each step rounded to a float, left to right.
  const float t = 0.3F;
  const float t2 = t * t;
  const float t3 = t2 * t;
  const TapWeights weights = WeightsFor(t);
  EXPECT_EQ(weights.entry[1], 3.0F * t2 - 2.0F * t3);
  EXPECT_EQ(weights.entry[2], (2.0F * t3 - 3.0F * t2) + 1.0F);
}

// What lets blends go without clamping, and without one of the two weights.
TEST(SmoothTables, WeightsAreWithinAMillionthOfTheSmoothstep) {
  constexpr std::uint32_t kBitsOfOne = 0x3F800000;
  const auto check = [](std::uint32_t bits) {
    float t = 0.0F;
    std::memcpy(&t, &bits, sizeof(t));
    const double exact = (3.0 - 2.0 * t) * t * t;
    const TapWeights weights = WeightsFor(t);
    const bool close = std::abs(weights.entry[1] - exact) < 0x1p-20 &&
                       std::abs(weights.entry[2] - (1 - exact)) < 0x1p-20;
    const bool complements = weights.entry[2] == 1.0F - weights.entry[1];
    return close && complements && weights.entry[1] >= 0 && !std::signbit(weights.entry[1]);
  };
  for (std::uint32_t bits = 0; bits < kBitsOfOne; bits += 997) ASSERT_TRUE(check(bits)) << bits;
  for (std::uint32_t below = 1; below < 1000000; ++below) {
    ASSERT_TRUE(check(kBitsOfOne - below)) << below;
  }
}

TEST(SmoothTables, WeightsSetApartAreThoseOfThePixelAndTheNext) {
  SmoothTables whole(5, 2, 9, 3), apart(5, 2, 9, 3);
  whole.FillColumnWeights();
  apart.FillColumnWeights();
  apart.SetColumnWeightsApart();
  for (int i = 0; i < 9; ++i) {
    EXPECT_EQ(apart.HereWeights()[i], whole.ColumnWeights(i).entry[2]);
    EXPECT_EQ(apart.NextWeights()[i], whole.ColumnWeights(i).entry[1]);
  }
}

TEST(SmoothTables, IndexesAreTheTruncatedPositions) {
  SmoothTables tables(3, 2, 7, 5);
  ASSERT_TRUE(tables.Complete());
  tables.FillIndexes();
  const int columns[] = {0, 0, 0, 1, 1, 2, 2};  // i·3 / 7
  const int rows[] = {0, 0, 0, 1, 1};           // j·2 / 5
  for (int i = 0; i < 7; ++i) EXPECT_EQ(tables.Column(i), columns[i]);
  for (int j = 0; j < 5; ++j) EXPECT_EQ(tables.Row(j), rows[j]);
}

TEST(SmoothTables, IndexesDoNotWrapWhenProductsExceed32Bits) {
  SmoothTables tables(70000, 1, 70001, 2);
  ASSERT_TRUE(tables.Complete());
  tables.FillIndexes();
  tables.FillColumnWeights();
  EXPECT_EQ(tables.Column(70000), 69999);  // 70000·70000 = 4.9e9
  EXPECT_EQ(tables.ColumnWeights(70000).entry[1], WeightsFor(1.0F / 70001.0F).entry[1]);
}

TEST(SmoothTables, WeightsRepeatUpToTheLargerSide) {
  SmoothTables tables(2, 2, 3, 8);
  ASSERT_TRUE(tables.Complete());
  tables.FillColumnWeights();
  tables.FillRowWeights();
  tables.PadWeights();
  for (int i = 3; i < 8; ++i) {
    EXPECT_EQ(tables.ColumnWeights(i).entry[1], tables.ColumnWeights(i % 3).entry[1]);
  }
}

TEST(SmoothTables, AMaskWiderThanItsPictureStillFitsTheRowBuffer) {
  const support::AllocationWatch watch;
  const SmoothTables tables(100, 2, 7, 8);
  EXPECT_TRUE(tables.Complete());
  EXPECT_EQ(watch.Sizes().back(), 100U * 4 + 20);
}

TEST(SmoothTables, SizesBeyondTheRuleAreNotRequested) {
  const support::AllocationWatch watch;
  // 2^29 entries of 4 bytes and 20 spare ones are more than 2^31 - 1 bytes, and 2^33 do not wrap
  // to 20.
  const SmoothTables tables(1, 1, 1 << 29, 1);
  EXPECT_FALSE(tables.Complete());
  EXPECT_EQ(watch.Calls(), 0);
}

}  // namespace
