// Every variant of the drawing's rows that this machine has, against the scalar one, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "effects/draw_blend.h"
#include "effects/draw_rows.h"

namespace {

constexpr std::size_t kWidest = 70;
constexpr std::uint32_t kGuard = 0xA5C3F00D;
const PixelLayout kLayouts[] = {PixelLayout::kRedFirst, PixelLayout::kAlphaFirst,
                                PixelLayout::kBlueFirst};

using Row = std::vector<std::uint32_t>;

// Contents: noise, only extremes, all 0, all 255, long runs of 0 and 255.
Row Contents(std::mt19937& random, std::size_t count, unsigned sort) {
  Row row(count);
  std::uint32_t held = 0;
  for (auto& word : row) {
    word = static_cast<std::uint32_t>(random());
    if (sort % 5 == 1) {
      word = (word & 1 ? 0xFFU : 0) | (word & 2 ? 0xFF00U : 0) | (word & 4 ? 0xFF0000U : 0) |
             (word & 8 ? 0xFF000000U : 0);
    }
    if (sort % 5 == 2) word = 0;
    if (sort % 5 == 3) word = 0xFFFFFFFF;
    if (sort % 5 == 4) {
      if (word % 23 == 0) held = ~held;
      word = held;
    }
  }
  return row;
}

struct Rows {
  Row upper, lower;
  Rows(std::mt19937& random, std::size_t count, unsigned sort)
      : upper(Contents(random, count + 1, sort)), lower(Contents(random, count + 1, sort)) {}
  Neighbours At() const { return {upper.data(), lower.data()}; }
};

std::vector<VectorLevel> Levels() {
  std::vector<VectorLevel> levels;
  for (const VectorLevel level : {VectorLevel::kSse2, VectorLevel::kSse41, VectorLevel::kAvx2}) {
    if (level <= BestVectorLevel()) levels.push_back(level);
  }
  return levels;
}

const DrawRows& Scalar() { return DrawRowsFor(VectorLevel::kScalar); }

// Runs the drawing in a copy of dest with a guard behind it.
template <typename Function>
Row Written(const Row& dest, Function&& draw) {
  Row written = dest;
  written.push_back(kGuard);
  written.insert(written.begin(), kGuard);
  draw(written.data() + 1);
  return written;
}

TEST(DrawRows, OfEveryLevelAreItsOwn) {
  const std::vector<VectorLevel> levels = Levels();
  ASSERT_FALSE(levels.empty());
  for (const VectorLevel level : levels) {
    const DrawRows& rows = DrawRowsFor(level);
    EXPECT_NE(rows.blendFixed, Scalar().blendFixed);
    EXPECT_NE(rows.blendWeighted, Scalar().blendWeighted);
    EXPECT_NE(rows.makeOpaque, Scalar().makeOpaque);
    EXPECT_NE(rows.maskRun, Scalar().maskRun);
    const bool wide = level == VectorLevel::kAvx2;
    EXPECT_EQ(&rows == &DrawRowsFor(VectorLevel::kSse2), !wide);
  }
}

// Four samples' weights and the rest's.
const std::vector<std::vector<double>> kFixedWeights = {
    {0.0875, 0.0875, 0.2625, 0.2625, 0.3},
    {0.25, 0.25, 0.25, 0.25, 0},
    {0, 0, 1, 0, 0},
    {0, 0, 0.7, 0, 0.30000000000000004},
    {0.3, 0, 0.7, 0.1, 0.9},
    {1.9, 1.99, 1.7, 1.5, 1.0},
    {0.1, 0.2, 1.7, 0.3, 0.4},
    {0.1, 0.2, 0.3, 0.4, 1.7},
    {0.1, 0.2, 0.58, 0.3, 0.4},
    {0.1, 0.2, 0.3, 0.4, 0.58},
    {0, 0, 0, 0, 1},
    {0, 0, 0, 0, 0},
    {0.01, 0.9999999999999999, 0.3333333333333333, 1e-300, 0.5}};

TEST(DrawRows, BlendFixedWeightsAsTheScalarVariantDoes) {
  std::mt19937 random(1);
  unsigned patched = 0;
  for (const VectorLevel level : Levels()) {
    for (const auto& weights : kFixedWeights) {
      FixedBlend blend = {};
      for (int i = 0; i < kCorners; ++i) {
        ASSERT_TRUE(FindFixedShare(weights.at(static_cast<std::size_t>(i)), blend.corners[i]));
        if (blend.corners[i].patches > 0) ++patched;
      }
      ASSERT_TRUE(FindFixedShare(weights.at(4), blend.rest));
      for (std::size_t count = 1; count <= kWidest; ++count) {
        for (unsigned sort = 0; sort < 9; ++sort) {
          blend.source = kLayouts[sort % 3];
          blend.dest = kLayouts[sort / 3];
          const Rows source(random, count, sort + static_cast<unsigned>(count));
          const Row dest = Contents(random, count, random() % 4);
          const auto draw = [&](const DrawRows& rows) {
            return Written(
                dest, [&](std::uint32_t* d) { rows.blendFixed(d, blend, source.At(), count); });
          };
          ASSERT_EQ(draw(DrawRowsFor(level)), draw(Scalar()))
              << "level " << static_cast<int>(level) << ", " << count << " pixels, case " << sort;
        }
      }
    }
  }
  EXPECT_GT(patched, 0U);
}

double AnyWeight(std::mt19937& random, unsigned sort) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double strange[] = {infinity, -infinity, std::nan(""), 1e300, -1e7, 1e7, 16777216.0, -0.0};
  const double part = static_cast<double>(random()) / 4294967296.0;
  if (sort % 4 == 0) return part / 4;
  if (sort % 4 == 1) return part * 6 - 3;
  if (sort % 4 == 2) return part * 2.4e7 - 1.2e7;
  return strange[random() % 8];
}

TEST(DrawRows, BlendAnyWeightsAsTheScalarVariantDoes) {
  std::mt19937 random(2);
  static double tables[kCorners][256];
  for (const VectorLevel level : Levels()) {
    for (std::size_t count = 1; count <= kWidest; ++count) {
      for (unsigned sort = 0; sort < 216; ++sort) {
        for (auto& table : tables) {
          const double weight = AnyWeight(random, sort);
          for (std::uint32_t red = 0; red < 256; ++red) table[red] = MaskedWeight(red, weight);
        }
        const WeightedBlend blend = {kLayouts[sort % 3], kLayouts[sort / 3 % 3],
                                     kLayouts[sort / 9 % 3], sort / 27 % 2 == 0, tables};
        const Rows source(random, count, random() % 5);
        const Rows mask(random, count, random() % 5);
        const Neighbours maskRows = blend.masked ? mask.At() : Neighbours();
        const Row dest = Contents(random, count, random() % 4);
        const auto draw = [&](const DrawRows& rows) {
          return Written(dest, [&](std::uint32_t* d) {
            rows.blendWeighted(d, blend, source.At(), maskRows, count);
          });
        };
        ASSERT_EQ(draw(DrawRowsFor(level)), draw(Scalar()))
            << "level " << static_cast<int>(level) << ", " << count << " pixels, case " << sort;
      }
    }
  }
}

TEST(DrawRows, MakePixelsOpaqueAsTheScalarVariantDoes) {
  std::mt19937 random(3);
  for (const VectorLevel level : Levels()) {
    for (const PixelLayout layout : kLayouts) {
      for (std::size_t count = 0; count <= kWidest; ++count) {
        for (unsigned sort = 0; sort < 5; ++sort) {
          Row dest = Contents(random, count, sort);
          // Opaque ones but for few are left alone in the whole.
          for (auto& word : dest) {
            if (random() % 40 != 0) word = EncodeOpaque(layout, Decode(layout, word));
          }
          const auto draw = [&](const DrawRows& rows) {
            return Written(dest, [&](std::uint32_t* d) { rows.makeOpaque(d, layout, count); });
          };
          ASSERT_EQ(draw(DrawRowsFor(level)), draw(Scalar())) << count;
        }
      }
    }
  }
}

// One channel's or one pixel's difference must be seen: flat rows with one word changed.
TEST(DrawRows, FindMaskRunsAsTheScalarVariantDoes) {
  std::mt19937 random(4);
  unsigned seen[3] = {};
  for (const VectorLevel level : Levels()) {
    for (const PixelLayout layout : kLayouts) {
      for (std::size_t count = 1; count <= kWidest; ++count) {
        for (unsigned sort = 0; sort < 40; ++sort) {
          Rows mask(random, count, sort % 4 + 1);
          if (sort % 3 == 0) {
            Row& row = sort % 2 == 0 ? mask.upper : mask.lower;
            row.at(random() % (count + 1)) ^= 1U << random() % 32;
          }
          MaskRun expected{}, found{};
          const std::size_t run = Scalar().maskRun(mask.At(), layout, count, expected);
          ASSERT_EQ(DrawRowsFor(level).maskRun(mask.At(), layout, count, found), run) << count;
          ASSERT_EQ(found, expected) << count;
          ++seen[static_cast<int>(found)];
        }
      }
    }
  }
  for (const unsigned times : seen) EXPECT_GT(times, 100U);
}

}  // namespace
