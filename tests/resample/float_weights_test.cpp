// Weights in single precision: what their sums promise, against sums of the lists' own weights in
// more digits.
#include "resample/float_weights.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/resample/float_checks.h"
#include "tests/resample/tap_lists.h"

namespace {

using resample_tests::AnyAxis;
using resample_tests::BuiltLists;
using resample_tests::FloatChecks;
using resample_tests::FloatTally;
using resample_tests::HandMadeLists;
using resample_tests::kAllColours;
using resample_tests::Kernel;
using resample_tests::kKernels;
using resample_tests::Taps;
using support::Random;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kHeaviest = 1.3e36F;  // times 255 is a number
constexpr float kMillionth = 1.0F / (1 << 20);
constexpr float kLightest = std::numeric_limits<float>::denorm_min();

constexpr std::int32_t kChannel = 1 << kFloatBits;  // one channel value, in sums

constexpr std::int32_t kNarrowWindow = kChannel / 200;

TEST(FloatWeights, KeepTheirPromisesForEveryKernelAtSmallSizes) {
  Random random(36104000);
  FloatTally tally;
  for (const Kernel& kernel : kKernels) {
    for (int source = 1; source <= 40; ++source) {
      for (int result = 1; result <= 40; ++result) {
        for (const Axis axis : {Axis::kAlongRows, Axis::kDownColumns}) {
          const BuiltLists lists(kernel, source, result, axis);
          ASSERT_EQ(FloatChecks(lists, source, axis, random, tally).Fault(kAllColours), "")
              << kernel.name << ", " << source << " -> " << result;
        }
      }
    }
  }
  EXPECT_EQ(tally.lists, 7 * 40 * (40 * 41 / 2) * 2);
  EXPECT_GT(tally.exact, 10000);
  EXPECT_GT(tally.moved, 10000);
  EXPECT_GT(tally.twins, 10000);
  EXPECT_GT(tally.known, 1000000);
  EXPECT_GT(tally.open, 1000);
  EXPECT_EQ(tally.alwaysOpen, 0);
}

// Those that the passes may take single precision for.
TEST(FloatWeights, HaveNarrowWindowsForFewTaps) {
  const int sizes[][2] = {{640, 480}, {480, 640}, {255, 256}, {256, 255}, {999, 700}, {300, 100},
                          {512, 256}, {256, 512}, {100, 899}, {3, 500},   {500, 500}, {1000, 999}};
  Random random(36104001);
  int narrow = 0;
  for (const Kernel& kernel : kKernels) {
    for (const auto& [source, result] : sizes) {
      for (const Axis axis : {Axis::kAlongRows, Axis::kDownColumns}) {
        FloatTally tally;
        const BuiltLists lists(kernel, source, result, axis);
        FloatChecks checks(lists, source, axis, random, tally);
        ASSERT_EQ(checks.Fault(kAllColours), "")
            << kernel.name << ", " << source << " -> " << result;
        if (checks.Floats().taps > 18) continue;
        ++narrow;
        EXPECT_EQ(tally.alwaysOpen, 0);
        EXPECT_LT(tally.largestWindow, kNarrowWindow)
            << kernel.name << ", " << source << " -> " << result;
      }
    }
  }
  EXPECT_GT(narrow, 100);
}

struct ListRow {
  const char* name;
  enum Sums { kExact, kNarrow, kAny, kAlwaysOpen } sums;
  Taps taps;
};

const ListRow kRows[] = {
    {"no taps", ListRow::kAny, {0, {}}},
    {"no taps with a total", ListRow::kAny, {0, {}, 3.0F}},
    {"one tap of 1", ListRow::kExact, {5, {1.0F}}},
    {"one tap of 1/3", ListRow::kNarrow, {0, {1.0F / 3}}},
    {"one tap below 0", ListRow::kExact, {19, {-2.0F}}},
    {"one tap of half the total", ListRow::kExact, {3, {1.0F}, 2.0F}},
    {"one tap of twice the total", ListRow::kExact, {3, {1.0F}, 0.5F}},
    {"one tap of a third of the total", ListRow::kNarrow, {3, {1.0F}, 3.0F}},
    {"one very light tap", ListRow::kNarrow, {7, {1e-30F}}},
    {"one very heavy tap", ListRow::kNarrow, {7, {1e30F}}},
    {"the lightest tap", ListRow::kAny, {7, {kLightest}}},
    {"light taps", ListRow::kAny, {7, {3 * kLightest, 5 * kLightest, 1e-39F}}},
    {"the heaviest tap", ListRow::kNarrow, {7, {kHeaviest}}},
    {"heaviest taps", ListRow::kNarrow, {7, {kHeaviest, kHeaviest, -kHeaviest}}},
    {"heavy taps beside light ones", ListRow::kNarrow, {7, {kHeaviest, 1e-37F, kHeaviest}}},
    {"very different taps", ListRow::kNarrow, {2, {1.0F, 1e-9F, -1e-17F, 0.125F, 1e-5F}}},
    {"gaps", ListRow::kNarrow, {1, {0.5F, 0, 0, 0, 0, 0, 0.3F, 0.1F, 0, 0, 0.1F}}},
    {"ones", ListRow::kNarrow, {3, {1, 1, 1}}},
    {"four ones", ListRow::kExact, {3, {1, 1, 1, 1}}},
    {"ones with a gap", ListRow::kNarrow, {3, {1, 1, 0, 1}}},
    {"halves", ListRow::kExact, {4, {0.5F, 0.5F}}},
    {"halves of many digits", ListRow::kNarrow, {4, {1.0F / 3, 1.0F / 3}}},
    {"quarters", ListRow::kExact, {4, {0.25F, 0.5F, 0.25F}}},
    {"quarters with another total", ListRow::kNarrow, {4, {0.25F, 0.5F, 0.25F}, 0.75F}},
    {"sixteenths", ListRow::kExact, {9, {-0.0625F, 0.5625F, 0.5625F, -0.0625F}}},
    {"a millionth", ListRow::kNarrow, {9, {0.0625F - kMillionth, kMillionth, 0.9375F}}},
    {"sums of 25 bits",
     ListRow::kNarrow,
     {9, {1.5F - 32 * kMillionth, 0.9375F - 32 * kMillionth, 64 * kMillionth - 1.4375F}}},
    {"a total below 0", ListRow::kNarrow, {6, {-1.0F, 0.25F}}},
    {"weights of many digits", ListRow::kNarrow, {8, {0.333333F, 0.7654321F, -0.1234567F}}},
    {"weights 1.7 times the total", ListRow::kNarrow, {8, {1.0F, -0.33F, 0.25F}}},
    {"weights 4 times the total", ListRow::kAny, {8, {1.0F, -0.75F, 0.25F}}},
    {"weights 7 times the total", ListRow::kAny, {9, {1.0F, -0.75F}}},
    {"weights 7.8 times the total", ListRow::kAny, {9, {1.0F, -0.7725F}}},
    {"weights 8.1 times the total", ListRow::kAny, {9, {1.0F, -0.780F}}},
    {"weights 50 times the total", ListRow::kAlwaysOpen, {9, {1.0F, -0.96F}}},
    {"weights 60 times a total below 0", ListRow::kAlwaysOpen, {9, {0.967F, -1.0F}}},
    {"weights 20000 times the total", ListRow::kAlwaysOpen, {9, {1.0F, -0.9999F}}},
    {"weights 10^9 times the total", ListRow::kAlwaysOpen, {9, {1.0F, -1.0F}, 1e-9F}},
    {"weights 2^40 times the total", ListRow::kAlwaysOpen, {9, {1099511627776.0F}, 1.0F}},
    {"a total of 0", ListRow::kAlwaysOpen, {10, {1.0F, -1.0F}}},
    {"a total of -0", ListRow::kAlwaysOpen, {10, {1.0F, -1.0F}, -0.0F}},
    {"no number as total", ListRow::kAny, {11, {0.5F, 0.5F}, kNan}},
    {"an infinite total", ListRow::kAny, {12, {0.5F, 0.75F}, kInfinity}},
    {"an infinite total below 0", ListRow::kAny, {12, {0.5F, 0.75F}, -kInfinity}},
    {"a weight that is no number", ListRow::kAny, {12, {0.5F, kNan, 0.75F}, 1.0F}},
    {"an infinite weight", ListRow::kAny, {12, {0.5F, kInfinity}, 1.0F}},
    {"an infinite weight below 0", ListRow::kAny, {12, {0.5F, -kInfinity}, 1.0F}},
    {"an infinite weight in an infinite total", ListRow::kAny, {12, {0.5F, kInfinity}}},
};

std::string WindowFault(const ListRow& row, std::int32_t window) {
  switch (row.sums) {
    case ListRow::kExact:
      return window == 0 ? "" : "not exact";
    case ListRow::kNarrow:
      return window > 0 && window < kNarrowWindow ? "" : "not narrow: " + std::to_string(window);
    case ListRow::kAlwaysOpen:
      return window >= kChannel ? "" : "not open";
    case ListRow::kAny:
      break;
  }
  return "";
}

TEST(FloatWeights, KeepTheirPromisesForListsByHand) {
  Random random(36104002);
  FloatTally tally;
  for (const ListRow& row : kRows) {
    const HandMadeLists lists({row.taps});
    for (int round = 0; round < 100; ++round) {
      const Axis axis = AnyAxis(random);
      FloatChecks checks(lists, 21, axis, random, tally);
      ASSERT_EQ(checks.Fault(kAllColours), "") << row.name;
      ASSERT_EQ(WindowFault(row, checks.Floats().heads[0].window), "") << row.name;
    }
  }
  EXPECT_EQ(tally.lists, 100 * static_cast<long>(std::size(kRows)));
  EXPECT_GT(tally.exact, 0);
  EXPECT_GT(tally.alwaysOpen, 0);
}

// With others before and behind, and more room than each needs alone.
TEST(FloatWeights, KeepTheirPromisesForListsByHandAmongOthers) {
  Random random(36104003);
  FloatTally tally;
  for (int round = 0; round < 2000; ++round) {
    std::vector<Taps> all;
    std::vector<const ListRow*> rows;
    for (int count = random.Between(2, 20); count > 0; --count) {
      rows.push_back(&kRows[random.Between(0, std::size(kRows) - 1)]);
      all.push_back(rows.back()->taps);
    }
    const HandMadeLists lists(all);
    const Axis axis = AnyAxis(random);
    FloatChecks checks(lists, 21, axis, random, tally);
    ASSERT_EQ(checks.Fault(kAllColours), "") << "round " << round;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      ASSERT_EQ(WindowFault(*rows[i], checks.Floats().heads[i].window), "") << rows[i]->name;
    }
  }
  EXPECT_GT(tally.twins, 0);
  EXPECT_GT(tally.moved, 0);
}

// Weights of any digits, up to as many times the total as sums have room for.
TEST(FloatWeights, KeepTheirPromisesForAnyWeights) {
  Random random(36104004);
  FloatTally tally;
  for (int round = 0; round < 6000; ++round) {
    std::vector<float> weights;
    const int taps = random.Between(1, 20);
    while (static_cast<int>(weights.size()) < taps) {
      const double weight = random.Between(-1000000, 2000000) / 999983.0;
      weights.push_back(static_cast<float>(std::ldexp(weight, -random.Between(0, 12))));
    }
    const HandMadeLists lists({Taps(random.Between(0, 4), weights)});
    ASSERT_EQ(FloatChecks(lists, 24, AnyAxis(random), random, tally).Fault(kAllColours), "")
        << "round " << round;
  }
  EXPECT_GT(tally.known, 10000);
  EXPECT_GT(tally.alwaysOpen, 0);
}

}  // namespace
