// Proves the kernels and tap lists of the resampling oracle: every expected value here is worked
// out by hand from the formulas.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/oracles/kernels.h"
#include "tests/oracles/resample.h"

namespace oracle {
namespace {

using List = std::vector<std::pair<int, double>>;

const double kInfinity = std::numeric_limits<double>::infinity();

struct ListRow {
  int mode, from, to, index;
  List taps;  // weights before they are rounded to float
  double total;
};

// Both passes must give the list, each weight and the total being the nearest float.
void ExpectLists(const std::vector<ListRow>& rows) {
  for (const ListRow& row : rows) {
    for (const bool firstPass : {true, false}) {
      SCOPED_TRACE("mode " + std::to_string(row.mode) + ", " + std::to_string(row.from) + " to " +
                   std::to_string(row.to) + ", index " + std::to_string(row.index) +
                   (firstPass ? ", first pass" : ", second pass"));
      const Taps list = TapsFor(row.mode, row.from, row.to, row.index, firstPass);
      std::vector<std::pair<int, float>> expected;
      for (const auto& [pixel, weight] : row.taps) {
        expected.emplace_back(pixel, static_cast<float>(weight));
      }
      EXPECT_EQ(list.taps, expected);
      EXPECT_EQ(list.total, static_cast<float>(row.total));
    }
  }
}

// Mode 5, first piece: t = 0: (16/3)/6 = 8/9; t = 1/2: (7/8 - 3 + 16/3)/6 = 77/144.
// Second piece: t = 1: (-7/3 + 12 - 20 + 32/3)/6 = 1/18; t = 3/2: (-63/8 + 27 - 30 + 32/3)/6 =
// -5/144.
// Mode 7: t = 1/2: 1/6 - 7/12 + 1 = 7/12; t = 3/2: -63/32 + 27/4 - 59/8 + 5/2 = -3/32;
// t = 5/2: 125/96 - 25/6 + 35/8 - 3/2 = 1/96.
// Modes 3 and 4 where the sines are known: sin(pi/2) = 1, sin(pi/6) = 1/2, sin(3 pi/2) = -1,
// sin(4 pi/3) = -sqrt(3)/2:
//   mode 3: t = 1/2: (2/pi)(3/pi); t = 3/2: (-2/(3 pi))(2/pi)
//   mode 4: t = 4/3: (-3 sqrt(3)/(8 pi))(3/pi); the window is 3/pi at t/8 = 1/6
TEST(Kernels, PointsOnTheirPieces) {
  const double pi = std::acos(-1.0);
  struct Row {
    int mode;
    double x, value;
  };
  for (const Row& row : std::vector<Row>{
           {1, 0.0, 1.0},
           {1, 0.25, 0.75},
           {1, 0.625, 0.375},
           {1, 1.5, 0.0},
           {2, 0.0, 1.0},
           {2, 0.25, 1.0},
           {2, 0.75, 0.0},
           {3, 0.0, 1.0},
           {3, 0.5, 6.0 / (pi * pi)},
           {3, 1.5, -4.0 / (3.0 * pi * pi)},
           {3, 3.5, 0.0},
           {4, 0.0, 1.0},
           {4, 4.0 / 3.0, -9.0 * std::sqrt(3.0) / (8.0 * pi * pi)},
           {4, 8.5, 0.0},
           {5, 0.0, 8.0 / 9.0},
           {5, 0.5, 77.0 / 144.0},
           {5, 1.0, 1.0 / 18.0},
           {5, 1.5, -5.0 / 144.0},
           {5, 2.5, 0.0},
           {6, 0.0, 1.0},
           {6, 0.5, 0.59375},
           {6, 1.5, -0.09375},
           {6, 3.5, 0.0},
           {7, 0.0, 1.0},
           {7, 0.5, 7.0 / 12.0},
           {7, 1.5, -3.0 / 32.0},
           {7, 2.5, 1.0 / 96.0},
           {7, 3.5, 0.0},
       }) {
    SCOPED_TRACE("mode " + std::to_string(row.mode) + " at " + std::to_string(row.x));
    EXPECT_NEAR(Kernel(row.mode, row.x), row.value, 1e-15);
    EXPECT_EQ(Kernel(row.mode, -row.x), Kernel(row.mode, row.x));
  }
}

// The dyadic points of modes 1, 2 and 6 are exact. Mode 6, t = 1: (3 - 6) + 3 = 0.
// Mode 7 rounds at its ends. In units in the last place, 4/3 is stored 1/3 * 2^-52 too small, 7/3
// 2/3 * 2^-52 too large: 4/3 - 7/3 + 1 = -2^-52. At 2: 8 * 7/12 is 1/3 * 2^-50 too large and makes
// the sum with 12 exact; 2 * 59/12 is 2/3 * 2^-50 too large: together -2^-50.
// At 3: 9 * 1/12 rounds to 3/4 and 9 * 2/3 to 6: 2.25 - 6 + 5.25 - 1.5 = 0.
TEST(Kernels, PieceBoundaries) {
  struct Row {
    int mode;
    double x, value;
  };
  for (const Row& row : std::vector<Row>{
           {1, 1.0, 0.0},
           {2, 0.5, 1.0},
           {3, 3.0, 0.0},
           {4, 8.0, 0.0},
           {5, 2.0, 0.0},
           {6, 1.0, 0.0},
           {6, 2.0, 0.0},
           {7, 1.0, -std::ldexp(1.0, -52)},
           {7, 2.0, -std::ldexp(1.0, -50)},
           {7, 3.0, 0.0},
       }) {
    SCOPED_TRACE("mode " + std::to_string(row.mode) + " at " + std::to_string(row.x));
    EXPECT_EQ(Kernel(row.mode, row.x), row.value);
    EXPECT_EQ(Kernel(row.mode, -row.x), row.value);
  }
  EXPECT_EQ(Kernel(2, std::nextafter(0.5, 1.0)), 0.0);
  EXPECT_EQ(Kernel(1, std::nextafter(1.0, 0.0)), std::ldexp(1.0, -53));
}

// sin(pi) of the stored pi is about 1e-16, not 0, and so is every whole multiple.
TEST(Kernels, LanczosIsTinyButNotZeroAtWholeDistances) {
  for (int t = 1; t <= 7; ++t) {
    EXPECT_NE(Kernel(4, t), 0.0) << t;
    EXPECT_NEAR(Kernel(4, t), 0.0, 1e-15) << t;
    if (t > 2) continue;
    EXPECT_NE(Kernel(3, t), 0.0) << t;
    EXPECT_NEAR(Kernel(3, t), 0.0, 1e-15) << t;
  }
}

TEST(Kernels, OtherModesAreRefused) {
  for (const int mode : {-1, 0, 8}) {
    EXPECT_THROW(Kernel(mode, 0.0), std::invalid_argument);
    EXPECT_THROW(SearchHalfWidth(mode), std::invalid_argument);
    EXPECT_THROW(EnlargingCapacity(mode, true), std::invalid_argument);
  }
}

// 2 * trunc(r) + 2 in the first pass, trunc(2r + 2) in the second: 1.25 -> 4, 4; 1.5 -> 4, 5.
// 2^31 - 1 bytes hold 2^28 - 1 entries of 8 bytes; 2^28 do not fit.
TEST(Kernels, ListCapacities) {
  EXPECT_EQ(ShrinkingCapacity(1.25, true), 4.0);
  EXPECT_EQ(ShrinkingCapacity(1.25, false), 4.0);
  EXPECT_EQ(ShrinkingCapacity(1.5, true), 4.0);
  EXPECT_EQ(ShrinkingCapacity(1.5, false), 5.0);
  EXPECT_EQ(EnlargingCapacity(2, true), 2);
  EXPECT_EQ(EnlargingCapacity(2, false), 3);
  EXPECT_EQ(EnlargingCapacity(4, false), 18);
  EXPECT_FALSE(ListCanBeAllocated(0.0));
  EXPECT_TRUE(ListCanBeAllocated(1.0));
  EXPECT_TRUE(ListCanBeAllocated(268435455.0));
  EXPECT_FALSE(ListCanBeAllocated(268435456.0));
  EXPECT_FALSE(ListCanBeAllocated(kInfinity));
}

// Doubling has centres at .25, .75, 1.25 ...; weights 3/4 and 1/4, and 3/4 alone at the edge.
// Halving has centres at 1, 3 and reaches 2 to both sides: distances 1/4, 1/4, 3/4 after scaling.
// Equal size: the neighbours at distance 1 weigh 0.
TEST(Taps, Triangle) {
  ExpectLists({
      {1, 2, 4, 0, {{0, 0.75}}, 0.75},
      {1, 2, 4, 1, {{0, 0.75}, {1, 0.25}}, 1.0},
      {1, 2, 4, 3, {{1, 0.75}}, 0.75},
      {1, 4, 2, 0, {{0, 0.75}, {1, 0.75}, {2, 0.25}}, 1.75},
      {1, 4, 2, 1, {{1, 0.25}, {2, 0.75}, {3, 0.75}}, 1.75},
      {1, 8, 4, 1, {{1, 0.25}, {2, 0.75}, {3, 0.75}, {4, 0.25}}, 2.0},
      {1, 5, 5, 2, {{2, 1.0}}, 1.0},
  });
}

// 2 to 3: centre 1 lies half-way between the pixels 0 and 1, which both count.
// 3 to 2: centres 0.75 and 2.25; pixel 1 lies 0.75 away, 0.5 after scaling, and counts for both.
// 5 to 2: centre 1.25; pixel 2 lies 1.25 away, 0.5 after scaling; so does pixel 2 of centre 3.75.
TEST(Taps, Box) {
  ExpectLists({
      {2, 2, 3, 0, {{0, 1.0}}, 1.0},
      {2, 2, 3, 1, {{0, 1.0}, {1, 1.0}}, 2.0},
      {2, 3, 2, 0, {{0, 1.0}, {1, 1.0}}, 2.0},
      {2, 3, 2, 1, {{1, 1.0}, {2, 1.0}}, 2.0},
      {2, 5, 2, 0, {{0, 1.0}, {1, 1.0}, {2, 1.0}}, 3.0},
      {2, 5, 2, 1, {{2, 1.0}, {3, 1.0}, {4, 1.0}}, 3.0},
      {2, 4, 1, 0, {{0, 1.0}, {1, 1.0}, {2, 1.0}, {3, 1.0}}, 4.0},
      {2, 1, 2, 1, {{0, 1.0}}, 1.0},
  });
}

// Equal size: 8/9 at distance 0, 1/18 at 1, 0 at 2. 4 to 6: centre 1 lies half-way, distances
// 1/2, 1/2, 3/2: 77/144 twice and -5/144 once (the fourth is outside): 149/144.
TEST(Taps, Mitchell) {
  ExpectLists({
      {5, 3, 3, 1, {{0, 1.0 / 18}, {1, 8.0 / 9}, {2, 1.0 / 18}}, 1.0},
      {5, 3, 3, 0, {{0, 8.0 / 9}, {1, 1.0 / 18}}, 17.0 / 18},
      {5, 1, 1, 0, {{0, 8.0 / 9}}, 8.0 / 9},
      {5, 4, 6, 1, {{0, 77.0 / 144}, {1, 77.0 / 144}, {2, -5.0 / 144}}, 149.0 / 144},
  });
}

// Distances 1/4, 3/4, 5/4, 7/4 in the kernel: 225/256, 67/256, -27/256, -9/256. All that lies
// between 2 and the search width of 4 weighs nothing.
TEST(Taps, Bicubic) {
  const double a = 0.87890625;
  const double b = 0.26171875;
  const double c = -0.10546875;
  const double d = -0.03515625;
  ExpectLists({
      {6, 4, 8, 3, {{0, c}, {1, a}, {2, b}, {3, d}}, 1.0},
      {6, 4, 8, 4, {{0, d}, {1, b}, {2, a}, {3, c}}, 1.0},
      {6, 4, 8, 0, {{0, a}, {1, c}}, 0.7734375},
      {6, 4, 8, 2, {{0, b}, {1, a}, {2, c}}, 1.03515625},
      {6, 9, 9, 4, {{4, 1.0}}, 1.0},
      {6, 2, 1, 0, {{0, 0.87890625}, {1, 0.87890625}}, 1.7578125},
  });
}

// Equal size: the rounded boundary values are stored as taps, the exact 0 at distance 3 is not.
// 6 to 9: centre 3 has distances 1/2, 3/2, 5/2 to both sides: 7/12, -3/32, 1/96, total 1.
TEST(Taps, SixPointCubic) {
  const double one = -std::ldexp(1.0, -52);
  const double two = -std::ldexp(1.0, -50);
  const double p = 7.0 / 12;
  const double q = -3.0 / 32;
  const double r = 1.0 / 96;
  ExpectLists({
      {7, 7, 7, 3, {{1, two}, {2, one}, {3, 1.0}, {4, one}, {5, two}}, 1.0},
      {7, 2, 2, 0, {{0, 1.0}, {1, one}}, 1.0},
      {7, 6, 9, 4, {{0, r}, {1, q}, {2, p}, {3, p}, {4, q}, {5, r}}, 1.0},
      {7, 2, 3, 1, {{0, p}, {1, p}}, 7.0 / 6},
  });
}

// Distances below 3 and 8 only: 2 and 7 pixels to both sides.
TEST(Taps, LanczosKeepsItsTinyWeights) {
  for (const bool firstPass : {true, false}) {
    const Taps three = TapsFor(3, 9, 9, 4, firstPass);
    ASSERT_EQ(three.taps.size(), 5u);
    EXPECT_EQ(three.taps.front().first, 2);
    EXPECT_EQ(three.taps.back().first, 6);
    EXPECT_EQ(three.taps[2], std::make_pair(4, 1.0f));
    EXPECT_EQ(three.total, 1.0f);
    const Taps eight = TapsFor(4, 21, 21, 10, firstPass);
    ASSERT_EQ(eight.taps.size(), 15u);
    EXPECT_EQ(eight.taps.front().first, 3);
    EXPECT_EQ(eight.taps.back().first, 17);
    EXPECT_EQ(eight.total, 1.0f);
  }
}

// One pixel of 2^24 in mode 4 reaches 2^27 to both sides: 2^28 + 2 taps, which is too many. A
// source without pixels has scale infinity, centre 0 and nothing in range.
TEST(Taps, ListsThatCannotBeMadeAreEmpty) {
  for (const bool firstPass : {true, false}) {
    const Taps tooLarge = TapsFor(4, 1 << 24, 1, 0, firstPass);
    EXPECT_TRUE(tooLarge.taps.empty());
    EXPECT_EQ(tooLarge.total, 0.0f);
    const Taps nothing = TapsFor(1, 0, 5, 2, firstPass);
    EXPECT_TRUE(nothing.taps.empty());
    EXPECT_EQ(nothing.total, 0.0f);
  }
  EXPECT_THROW(TapsFor(1, -1, 5, 2, true), std::invalid_argument);
  EXPECT_THROW(TapsFor(1, 5, 5, 5, true), std::invalid_argument);
  EXPECT_THROW(TapsFor(0, 5, 5, 0, true), std::invalid_argument);
}

// The first pass looks one pixel further out when enlarging; what it finds there weighs 0. No list
// of these sizes outgrows its capacity, which would throw.
TEST(Taps, BothPassesFindTheSameTaps) {
  for (int mode = kFirstMode; mode <= kLastMode; ++mode) {
    for (int from = 1; from <= 20; ++from) {
      for (int to = 1; to <= 20; ++to) {
        for (int i = 0; i < to; ++i) {
          const Taps list = TapsFor(mode, from, to, i, true);
          EXPECT_FALSE(list.taps.empty());
          EXPECT_EQ(list.taps, TapsFor(mode, from, to, i, false).taps)
              << mode << ": " << from << " to " << to << ", index " << i;
        }
      }
    }
  }
}

}  // namespace
}  // namespace oracle
