// How many channels integer weights leave open, as it is foretold.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "resample/fixed_weights.h"
#include "tests/resample/tap_lists.h"

namespace {

using resample_tests::BuiltLists;
using resample_tests::FixedLists;
using resample_tests::HandMadeLists;
using resample_tests::Kernel;
using resample_tests::kKernels;
using resample_tests::Taps;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// The window by what one channel takes, of the list alone.
TEST(FixedWeights, LeaveAsManyOpenAsTheirWindowsAreWide) {
  long fine = 0;
  for (const Kernel& kernel : kKernels) {
    for (int source = 1; source <= 20; ++source) {
      for (int result = 1; result <= 20; ++result) {
        const BuiltLists lists(kernel, source, result, Axis::kAlongRows);
        for (std::int32_t i = 0; i < lists.Count(); ++i) {
          const FixedLists alone(&lists[i], 1, source);
          if (alone.fixed.areMeans) continue;
          const FixedHead& head = alone.fixed.heads[0];
          const double unit = 1 << head.bits;
          ASSERT_NEAR(ShareLeftOpen(lists[i]), std::min(head.window / unit, 1.0), 0.0005)
              << kernel.name << ", " << source << " -> " << result << ", " << i;
          if (head.window != 0) ++fine;
        }
      }
    }
  }
  EXPECT_GT(fine, 10000);
}

TEST(FixedWeights, LeaveNothingOpenWhereTheyAreExact) {
  for (const Taps& taps : {Taps(3, {1.0F}), Taps(3, {0.5F, 0.5F}), Taps(4, {0.25F, 0.5F, 0.25F})}) {
    EXPECT_LT(ShareLeftOpen(HandMadeLists({taps})[0]), 1e-5) << taps.weights.size();
  }
}

TEST(FixedWeights, LeaveManyOpenForLanczosAtFactorsOfTwo) {
  for (const auto& [source, result] : {std::pair(64, 32), std::pair(32, 64)}) {
    const BuiltLists lists(resample_tests::kLanczos3, source, result, Axis::kAlongRows);
    for (std::int32_t i = 8; i < result - 8; ++i) {
      EXPECT_GT(ShareLeftOpen(lists[i]), 0.002) << source << " -> " << result;
      EXPECT_LT(ShareLeftOpen(lists[i]), 0.05) << source << " -> " << result;
    }
  }
}

TEST(FixedWeights, LeaveAllOpenForListsThatNoIntegersComeNearTo) {
  for (const Taps& taps : {Taps(9, {1.0F, -0.97F}), Taps(9, {1.0F, -1.0F}, 1e-9F),
                           Taps(10, {1.0F, -1.0F}), Taps(11, {0.5F, 0.5F}, kNan)}) {
    EXPECT_EQ(ShareLeftOpen(HandMadeLists({taps})[0]), 1.0) << taps.weights[1];
  }
}

}  // namespace
