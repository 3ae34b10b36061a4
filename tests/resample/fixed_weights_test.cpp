// Integer weights: what their sums promise, against sums of the weights themselves in more digits.
#include "resample/fixed_weights.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/resample/fixed_checks.h"
#include "tests/resample/tap_lists.h"

namespace {

using resample_tests::BuiltLists;
using resample_tests::ChannelSums;
using resample_tests::FixedChecks;
using resample_tests::FixedList;
using resample_tests::FixedLists;
using resample_tests::FixedTally;
using resample_tests::HandMadeLists;
using resample_tests::kAllContents;
using resample_tests::kBox;
using resample_tests::Kernel;
using resample_tests::kKernels;
using resample_tests::kTriangle;
using resample_tests::Taps;
using support::Random;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(FixedWeights, KeepTheirPromisesForEveryKernelAtSmallSizes) {
  Random random(32104000);
  FixedTally tally;
  for (const Kernel& kernel : kKernels) {
    for (int source = 1; source <= 40; ++source) {
      for (int result = 1; result <= 40; ++result) {
        for (const Axis axis : {Axis::kAlongRows, Axis::kDownColumns}) {
          const BuiltLists lists(kernel, source, result, axis);
          ASSERT_EQ(FixedChecks(lists, source, true, random, tally).Fault(kAllContents), "")
              << kernel.name << ", " << source << " -> " << result;
        }
      }
    }
  }
  EXPECT_EQ(tally.lists, 7 * 40 * (40 * 41 / 2) * 2);
  EXPECT_GT(tally.exact, 0);
  EXPECT_GT(tally.means, 0);
  EXPECT_GT(tally.fine, 0);
  EXPECT_GT(tally.open, 0);
}

TEST(FixedWeights, KeepTheirPromisesForEveryKernelAtLargeSizes) {
  const int sizes[][2] = {{5000, 3},  {3, 5000},  {4000, 1}, {1, 4000},   {640, 480}, {480, 640},
                          {255, 256}, {256, 255}, {999, 37}, {1000, 125}, {512, 256}, {30000, 1}};
  Random random(32104001);
  FixedTally tally;
  for (const Kernel& kernel : kKernels) {
    for (const auto& [source, result] : sizes) {
      for (const Axis axis : {Axis::kAlongRows, Axis::kDownColumns}) {
        const BuiltLists lists(kernel, source, result, axis);
        ASSERT_EQ(FixedChecks(lists, source, true, random, tally).Fault(kAllContents), "")
            << kernel.name << ", " << source << " -> " << result;
      }
    }
  }
  EXPECT_GT(tally.fine, 0);
}

std::vector<float> Ones(std::size_t count) { return std::vector<float>(count, 1.0F); }

struct ListRow {
  const char* name;
  bool usual;
  Taps taps;
};

const ListRow kRows[] = {
    {"no taps", true, {0, {}}},
    {"no taps with a total", true, {0, {}, 3.0F}},
    {"one tap of 1", true, {5, {1.0F}}},
    {"one tap of 1/3", true, {0, {1.0F / 3}}},
    {"one tap below 0", true, {19, {-2.0F}}},
    {"one very light tap", true, {7, {1e-30F}}},
    {"one very heavy tap", true, {7, {1e30F}}},
    {"very different taps", true, {2, {1.0F, 1e-9F, -1e-17F, 0.125F, 1e-5F}}},
    {"gaps", true, {1, {0.5F, 0, 0, 0, 0, 0, 0.3F, 0.1F, 0, 0, 0.1F}}},
    {"ones with a gap", true, {3, {1, 1, 0, 1}}},
    {"halves", true, {4, {0.5F, 0.5F}}},
    {"halves of many digits", true, {4, {1.0F / 3, 1.0F / 3}}},
    {"quarters with another total", true, {4, {0.25F, 0.5F, 0.25F}, 0.75F}},
    {"a total below 0", true, {6, {-1.0F, 0.25F}}},
    {"weights of many digits", true, {8, {0.333333F, 0.7654321F, -0.1234567F}}},
    {"weights 50 times the total", true, {9, {1.0F, -0.96F}}},
    {"weights 60 times a total below 0", true, {9, {0.967F, -1.0F}}},
    {"weights 66 times the total", false, {9, {1.0F, -0.97F}}},
    {"weights 20000 times the total", false, {9, {1.0F, -0.9999F}}},
    {"weights 10^9 times the total", false, {9, {1.0F, -1.0F}, 1e-9F}},
    {"a total of 0", false, {10, {1.0F, -1.0F}}},
    {"a total of -0", false, {10, {1.0F, -1.0F}, -0.0F}},
    {"no number as total", false, {11, {0.5F, 0.5F}, kNan}},
    {"an infinite total", false, {12, {0.5F, 0.75F}, kInfinity}},
    {"an infinite total below 0", false, {12, {0.5F, 0.75F}, -kInfinity}},
};

TEST(FixedWeights, KeepTheirPromisesForListsByHand) {
  Random random(32104002);
  FixedTally tally;
  for (const ListRow& row : kRows) {
    const HandMadeLists lists({row.taps});
    for (int round = 0; round < 100; ++round) {
      ASSERT_EQ(FixedChecks(lists, 21, row.usual, random, tally).Fault(kAllContents), "")
          << row.name;
    }
  }
  EXPECT_EQ(tally.lists, 100 * static_cast<long>(std::size(kRows)));
}

// In groups of eight with others, and each in every place of the group.
TEST(FixedWeights, KeepTheirPromisesForListsByHandAmongOthers) {
  Random random(32104003);
  FixedTally tally;
  for (int round = 0; round < 2000; ++round) {
    std::vector<Taps> all;
    bool usual = true;
    for (int count = random.Between(2, 20); count > 0; --count) {
      const ListRow& row = kRows[random.Between(0, std::size(kRows) - 1)];
      usual = usual && row.usual;
      all.push_back(row.taps);
    }
    ASSERT_EQ(FixedChecks(HandMadeLists(all), 21, usual, random, tally).Fault(kAllContents), "")
        << "round " << round;
  }
}

// What 16 bits leave room for, the sums need not.
TEST(FixedWeights, KeepTheirPromisesForManyLargeWeights) {
  Random random(32104004);
  FixedTally tally;
  const struct {
    float weight;
    int taps, bits;  // of a total of 1
  } cases[] = {
      {0.24F, 40, 17}, {0.24F, 66, 17}, {0.24F, 68, 16}, {0.24F, 140, 15}, {0.45F, 140, 15}};
  for (const auto& c : cases) {
    std::vector<float> weights;
    for (int k = 0; k < c.taps; ++k) weights.push_back(k % 2 == 0 ? c.weight : -c.weight);
    const HandMadeLists lists({{3, weights, 1.0F}});
    EXPECT_EQ(FixedLists(lists, 160).fixed.heads[0].bits, c.bits) << c.weight << " x " << c.taps;
    ASSERT_EQ(FixedChecks(lists, 160, true, random, tally).Fault(kAllContents), "") << c.taps;
  }
}

// 2^23 fine weights of half a unit, times 255, are a sum of 30 bits without any fraction.
TEST(FixedWeights, HaveNoFractionsInTheLongestLists) {
  for (const std::int32_t taps : {1 << 23, (1 << 23) + 2}) {
    std::vector<Contribution> entries(2);
    entries[0] = {0.5F, 0};
    entries[1] = {0.5F, taps - 1};
    ContributionList list = {};
    list.entries = entries.data();
    list.count = 2;
    list.total = 1.0F;
    const FixedLists fixed(&list, 1, taps);
    EXPECT_EQ(fixed.fixed.pairs, taps / 2);
    EXPECT_EQ(fixed.fixed.fineBits, 0);
  }
}

TEST(FixedWeights, AreMeansOnlyWhenAllListsAre) {
  const struct {
    const char* name;
    std::vector<Taps> lists;
    bool areMeans;
  } cases[] = {
      {"ones", {{0, Ones(3)}, {2, Ones(1)}, {2, Ones(4)}}, true},
      {"ones and no taps", {{0, Ones(3)}, {0, {}}, {2, Ones(4)}}, true},
      {"no taps", {{0, {}}, {0, {}}}, true},
      {"single ones", {{0, Ones(1)}, {1, Ones(1)}}, true},
      {"ones of which all are halved and halved", {{0, Ones(2)}, {2, Ones(8)}}, false},
      {"a two", {{0, Ones(3)}, {2, {2.0F}}}, false},
      {"a gap", {{0, Ones(3)}, {2, {1, 0, 1}}}, false},
      {"nearly a one", {{0, {1.0F, 0.99999994F}}}, false},
      {"minus one", {{0, {-1.0F}}}, false},
  };
  for (const auto& c : cases) {
    const HandMadeLists lists(c.lists);
    const FixedLists fixed(lists, 21);
    EXPECT_EQ(fixed.fixed.areMeans, c.areMeans) << c.name;
    const bool isMean = RoundingOf(fixed.fixed, 0, lists.Count()) == Rounding::kMean;
    EXPECT_EQ(isMean, c.areMeans) << c.name;
  }
}

// From 2 on, numbers of pixels that are halved and halved need no means.
TEST(FixedWeights, AreMeansOfAtMost4096Pixels) {
  const struct {
    int count;
    Rounding rounding;
  } cases[] = {{1, Rounding::kMean},     {2, Rounding::kExact},      {3, Rounding::kMean},
               {1023, Rounding::kMean},  {1024, Rounding::kExact},   {4095, Rounding::kMean},
               {4096, Rounding::kExact}, {4097, Rounding::kChecked}, {5000, Rounding::kChecked}};
  for (const auto& c : cases) {
    const BuiltLists lists(kBox, c.count, 1, Axis::kAlongRows);
    EXPECT_EQ(RoundingOf(FixedLists(lists, c.count).fixed, 0, 1), c.rounding) << c.count;
  }
}

// For every number of pixels: the sums around which the mean changes.
TEST(FixedWeights, MeansAreRightAroundEveryChange) {
  for (std::int32_t count = 1; count <= 4096; ++count) {
    FixedHead head = {};
    head.total = static_cast<float>(count);
    head.reciprocal = 1.0F / head.total;
    FixedWeights fixed = {};
    fixed.heads = &head;
    const ContributionList none = {};
    const FixedList list(fixed, none, 0);
    for (std::int32_t channel = 0; channel <= 255; ++channel) {
      // The least sum whose mean, a half rounded up, is `channel`: sum·2 + count >=
      // channel·count·2.
      const std::int32_t least = std::max((count * (2 * channel - 1) + 1) / 2, 0);
      ChannelSums sums;
      sums.coarse = least;
      ASSERT_EQ(list.MeanChannel(sums), channel) << least << " / " << count;
      if (least == 0) continue;
      sums.coarse = least - 1;
      ASSERT_EQ(list.MeanChannel(sums), channel - 1) << least - 1 << " / " << count;
    }
  }
}

struct SimpleRow {
  const char* name;
  const Kernel& kernel;
  int source, result;
};

// Away from the borders, where lists are cut off.
TEST(FixedWeights, AreExactAtSimpleScales) {
  const SimpleRow rows[] = {{"triangle doubles", kTriangle, 32, 64},
                            {"triangle quadruples", kTriangle, 32, 128},
                            {"triangle halves", kTriangle, 64, 32},
                            {"bicubic doubles", resample_tests::kBicubic, 32, 64},
                            {"bicubic quadruples", resample_tests::kBicubic, 32, 128}};
  for (const SimpleRow& row : rows) {
    const BuiltLists lists(row.kernel, row.source, row.result, Axis::kAlongRows);
    const FixedLists fixed(lists, row.source);
    for (std::int32_t i = 8; i < row.result - 8; ++i) {
      ASSERT_EQ(RoundingOf(fixed.fixed, i, 1), Rounding::kExact) << row.name << ", " << i;
    }
  }
}

TEST(WidestList, CountsPairsOfPixels) {
  const struct {
    const char* name;
    std::vector<Taps> lists;
    std::int32_t pairs;
  } cases[] = {
      {"no taps", {{0, {}}, {0, {}}}, 1},
      {"an even pixel", {{4, Ones(1)}}, 1},
      {"an odd pixel", {{5, Ones(1)}}, 1},
      {"a pair", {{4, Ones(2)}}, 1},
      {"halves of two pairs", {{5, Ones(2)}}, 2},
      {"a gap between", {{5, {1, 0, 0, 0, 1}}}, 3},
      {"the widest of some", {{0, Ones(3)}, {0, {}}, {3, Ones(6)}, {8, Ones(1)}}, 4},
  };
  for (const auto& c : cases) {
    const HandMadeLists lists(c.lists);
    EXPECT_EQ(WidestList(&lists[0], lists.Count()), c.pairs) << c.name;
  }
}

TEST(AreTwins, HaveTheSameWeightsAnEvenNumberOfPixelsApart) {
  const Taps taps = {2, {0.5F, 0.25F, 0.25F}};
  const struct {
    const char* name;
    Taps other;
    bool areTwins;
  } cases[] = {
      {"itself", taps, true},
      {"further on", {6, {0.5F, 0.25F, 0.25F}}, true},
      {"before", {0, {0.5F, 0.25F, 0.25F}}, true},
      {"an odd number of pixels on", {3, {0.5F, 0.25F, 0.25F}}, false},
      {"fewer taps", {2, {0.5F, 0.5F}}, false},
      {"no taps", {2, {}}, false},
      {"another total", {2, {0.5F, 0.25F, 0.25F}, 2.0F}, false},
      {"no number as total", {2, {0.5F, 0.25F, 0.25F}, kNan}, false},
      {"another weight", {2, {0.5F, 0.25F, 0.125F}, 1.0F}, false},
      {"a gap", {2, {0.5F, 0.25F, 0.0F, 0.25F}}, false},
  };
  for (const auto& c : cases) {
    const HandMadeLists lists({taps, c.other});
    EXPECT_EQ(AreTwins(lists[0], lists[1]), c.areTwins) << c.name;
    EXPECT_EQ(AreTwins(lists[1], lists[0]), c.areTwins) << c.name;
  }
  const HandMadeLists none({{2, {}}, {4, {}}});
  EXPECT_FALSE(AreTwins(none[0], none[1]));
}

}  // namespace
