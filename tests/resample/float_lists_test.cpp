// Weights in single precision: where their lists lie, which are alike, and which are exact.
#include "resample/float_weights.h"

#include <gtest/gtest.h>

#include "tests/resample/float_checks.h"
#include "tests/resample/tap_lists.h"

namespace {

using resample_tests::AnyAxis;
using resample_tests::BuiltLists;
using resample_tests::FloatChecks;
using resample_tests::FloatList;
using resample_tests::FloatLists;
using resample_tests::FloatTally;
using resample_tests::HandMadeLists;
using resample_tests::kBicubic;
using resample_tests::kBox;
using resample_tests::Kernel;
using resample_tests::kKernels;
using resample_tests::kLanczos3;
using resample_tests::kTriangle;
using resample_tests::Taps;
using support::Random;

// As memory that is short leaves them. The lists beside them still move on.
TEST(FloatWeights, MoveOnWhereListsAreMissing) {
  Random random(36104005);
  FloatTally tally;
  for (const Kernel& kernel : kKernels) {
    for (int missing = 0; missing < 60; ++missing) {
      for (const int first : {0, missing}) {
        BuiltLists lists(kernel, 90, 60, Axis::kAlongRows);
        for (std::int32_t i = first; i <= missing; ++i) {
          const_cast<ContributionList&>(lists[i]).count = 0;
          const_cast<ContributionList&>(lists[i]).total = 0.0F;
        }
        ASSERT_EQ(FloatChecks(lists, 90, AnyAxis(random), random, tally).Fault({}), "")
            << kernel.name << ", " << first << ".." << missing;
      }
    }
  }
  EXPECT_EQ(tally.lists, 7 * 60 * 2 * 60);
}

struct SimpleRow {
  const char* name;
  const Kernel& kernel;
  int source, result;
  int period;  // so many lists on, weights are the same again
};

// Away from the borders, where lists are cut off.
TEST(FloatWeights, AreExactAtSimpleScales) {
  const SimpleRow rows[] = {{"triangle doubles", kTriangle, 32, 64, 2},
                            {"triangle quadruples", kTriangle, 32, 128, 4},
                            {"triangle halves", kTriangle, 64, 32, 1},
                            {"box halves", kBox, 64, 32, 1},
                            {"box doubles", kBox, 32, 64, 2},
                            {"bicubic doubles", kBicubic, 32, 64, 2},
                            {"bicubic quadruples", kBicubic, 32, 128, 4}};
  for (const SimpleRow& row : rows) {
    for (const Axis axis : {Axis::kAlongRows, Axis::kDownColumns}) {
      const BuiltLists lists(row.kernel, row.source, row.result, axis);
      const FloatLists fixed(lists, row.source, axis);
      for (std::int32_t i = 8; i < row.result - 8; ++i) {
        ASSERT_EQ(fixed.floats.heads[i].window, 0) << row.name << ", " << i;
      }
      EXPECT_EQ(RoundingOf(fixed.floats, 8, row.result - 16), Rounding::kExact) << row.name;
    }
  }
}

TEST(FloatWeights, FindTwinsAtSimpleScales) {
  const SimpleRow rows[] = {{"Lanczos halves", kLanczos3, 64, 32, 1},
                            {"Lanczos thirds", kLanczos3, 96, 32, 1},
                            {"Lanczos two thirds", kLanczos3, 96, 64, 2},
                            {"triangle doubles", kTriangle, 32, 64, 2},
                            {"bicubic quadruples", kBicubic, 32, 128, 4}};
  for (const SimpleRow& row : rows) {
    const BuiltLists lists(row.kernel, row.source, row.result, Axis::kAlongRows);
    const FloatLists fixed(lists, row.source, Axis::kAlongRows);
    for (std::int32_t i = 12; i < row.result - 12; ++i) {
      ASSERT_EQ(fixed.floats.heads[i].twin, row.period) << row.name << ", " << i;
    }
    EXPECT_EQ(fixed.floats.heads[0].twin, 0) << row.name;
  }
}

TEST(FloatWeights, AreRoundedAsAllListsOfARangeAre) {
  const Taps exact(4, {0.5F, 0.5F}), checked(4, {0.3F, 0.7F}), open(4, {1.0F, -1.0F});
  const HandMadeLists lists({exact, exact, checked, exact, open, exact, exact});
  const FloatLists fixed(lists, 21, Axis::kAlongRows);
  for (std::int32_t first = 0; first < lists.Count(); ++first) {
    for (std::int32_t count = 1; first + count <= lists.Count(); ++count) {
      const auto covers = [&](std::int32_t i) { return first <= i && i < first + count; };
      EXPECT_EQ(RoundingOf(fixed.floats, first, count),
                covers(2) || covers(4) ? Rounding::kChecked : Rounding::kExact)
          << first << ", " << count;
    }
  }
}

// Halves of 255 are exact ties: no sum can tell them.
TEST(FloatWeights, LeaveTiesOpen) {
  for (const Axis axis : {Axis::kAlongRows, Axis::kDownColumns}) {
    const BuiltLists lists(kLanczos3, 64, 32, axis);
    const FloatLists fixed(lists, 64, axis);
    for (std::int32_t i = 4; i < 28; ++i) {
      const FloatList list(fixed.floats, lists[i], i, axis);
      std::vector<std::uint8_t> channels;
      for (std::int32_t tap = 0; tap < list.Taps(); ++tap) {
        channels.push_back(tap % 2 != 0 ? 255 : 0);
      }
      EXPECT_TRUE(list.IsOpen(list.Sum(channels))) << i;
    }
  }
}

TEST(FloatWeights, HaveRoomForTheWidestList) {
  const std::vector<float> ones3(3, 1.0F), ones6(6, 1.0F);
  const struct {
    const char* name;
    std::vector<Taps> lists;
    std::int32_t pixels;
  } cases[] = {
      {"no taps", {{0, {}}, {0, {}}}, 1},
      {"one pixel", {{4, {1.0F}}}, 1},
      {"two pixels", {{5, {1.0F, 1.0F}}}, 2},
      {"a gap between", {{5, {1, 0, 0, 0, 1}}}, 5},
      {"the widest of some", {{0, ones3}, {0, {}}, {3, ones6}, {8, {1.0F}}}, 6},
  };
  for (const auto& c : cases) {
    const HandMadeLists lists(c.lists);
    EXPECT_EQ(WidestListInPixels(&lists[0], lists.Count()), c.pixels) << c.name;
  }
}

}  // namespace
