// What is said of tap lists.
#include "resample/list_facts.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/resample/tap_lists.h"

namespace {

using resample_tests::HandMadeLists;
using resample_tests::Taps;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(ListFacts, AreTheFirstAndTheLastPixel) {
  const HandMadeLists lists({{3, {0.5F, 0, 0, 0.5F}}, {7, {1.0F}}});
  EXPECT_EQ(FirstPixel(lists[0]), 3);
  EXPECT_EQ(LastPixel(lists[0]), 6);
  EXPECT_EQ(FirstPixel(lists[1]), 7);
  EXPECT_EQ(LastPixel(lists[1]), 7);
}

TEST(ListFacts, ArePowersOfTwo) {
  for (std::int32_t exponent = 0; exponent <= 62; ++exponent) {
    EXPECT_EQ(PowerOfTwo(exponent), std::ldexp(1.0, exponent));
  }
}

TEST(ListFacts, AreRoundedToTheNearestInteger) {
  for (const double integer : {0.0, 1.0, -1.0, 255.0, 1048576.0, -1048577.0, 1125899906842623.0}) {
    EXPECT_EQ(Rounded(integer), integer);
    if (std::abs(integer) > 1e12) continue;
    EXPECT_EQ(Rounded(integer + 0.499), integer);
    EXPECT_EQ(Rounded(integer - 0.499), integer);
    EXPECT_EQ(Rounded(integer + 0.501), integer + 1);
    EXPECT_EQ(Rounded(integer - 0.501), integer - 1);
  }
}

TEST(ListFacts, AreReciprocalsInDoubles) {
  const HandMadeLists lists({{0, {3.0F}}, {0, {-0.1F}}});
  EXPECT_EQ(ReciprocalOf(lists[0]), 1.0 / 3.0);
  EXPECT_EQ(ReciprocalOf(lists[1]), 1.0 / static_cast<double>(-0.1F));
}

TEST(ListFacts, AreTheExtremesOfWeightsByTheTotal) {
  const struct {
    const char* name;
    Taps taps;
    double weight, sum;
  } cases[] = {
      {"one", {0, {1.0F}}, 1.0, 1.0},
      {"no taps", {0, {}, 1.0F}, 0.0, 0.0},
      {"halves", {0, {0.5F, 0.5F}}, 0.5, 1.0},
      {"weights below 0", {0, {-0.25F, 1.5F, -0.25F}}, 1.5, 2.0},
      {"the largest is below 0", {0, {0.5F, -1.0F}, 0.25F}, 4.0, 6.0},
      {"a total below 0", {0, {0.5F, -1.0F}}, 2.0, 3.0},
      {"another total", {0, {0.5F, 0.25F}, 0.25F}, 2.0, 3.0},
      {"gaps", {0, {0.5F, 0, 0, 0.5F}}, 0.5, 1.0},
  };
  for (const auto& c : cases) {
    const HandMadeLists lists({c.taps});
    const Extremes extremes = ExtremesOf(lists[0]);
    EXPECT_DOUBLE_EQ(extremes.weight, c.weight) << c.name;
    EXPECT_DOUBLE_EQ(extremes.sum, c.sum) << c.name;
  }
}

TEST(ListFacts, AreExactUpToSoManyBits) {
  constexpr int kNever = 21;
  constexpr float kMillionth = 1.0F / (1 << 20);
  const struct {
    const char* name;
    Taps taps;
    int bits;  // the least
  } cases[] = {
      {"one", {0, {1.0F}}, 0},
      {"one of another weight", {0, {-4.0F}}, 0},
      {"twice the total", {0, {1.0F}, 0.5F}, 0},
      {"halves", {0, {0.5F, 0.5F}}, 1},
      {"ones", {0, {1.0F, 1.0F}}, 1},
      {"quarters", {0, {0.25F, 0.5F, 0.25F}}, 2},
      {"quarters with another total", {0, {0.25F, 0.5F, 0.25F}, 2.0F}, 3},
      {"sixteenths", {0, {-0.0625F, 0.5625F, 0.5625F, -0.0625F}}, 4},
      {"a total below 0", {0, {-0.5F, -0.5F}}, 1},
      {"a millionth", {0, {0.0625F - kMillionth, kMillionth, 0.9375F}}, 20},
      {"half a millionth", {0, {0.03125F - kMillionth / 2, kMillionth / 2, 0.96875F}}, kNever},
      {"16 binary digits", {0, {2.0F - 1.0F / (1 << 15)}}, 0},
      {"17 binary digits, which 255 makes 25", {0, {2.0F - 1.0F / (1 << 16)}}, kNever},
      {"thirds", {0, {1.0F, 1.0F, 1.0F}}, kNever},
      {"a third of the total", {0, {1.0F}, 3.0F}, kNever},
      {"halves of many digits", {0, {1.0F / 3, 1.0F / 3}}, kNever},
      {"one of many digits", {0, {1.0F / 3}}, kNever},
      {"many digits", {0, {0.3F, 0.7F}}, kNever},
      {"a total of 0", {0, {1.0F, -1.0F}}, kNever},
      {"no number as total", {0, {0.5F, 0.5F}, kNan}, kNever},
      {"a weight that is no number", {0, {0.5F, kNan}, 1.0F}, kNever},
  };
  for (const auto& c : cases) {
    const HandMadeLists lists({c.taps});
    for (int bits = 0; bits <= 20; ++bits) {
      EXPECT_EQ(IsExact(lists[0], bits), bits >= c.bits) << c.name << ", " << bits;
    }
  }
}

TEST(ListFacts, AreMeansWhereAllListsAre) {
  const std::vector<float> ones3(3, 1.0F), ones4(4, 1.0F);
  const struct {
    const char* name;
    std::vector<Taps> lists;
    bool areMeans;
  } cases[] = {
      {"ones", {{0, ones3}, {2, {1.0F}}, {2, ones4}}, true},
      {"ones and no taps", {{0, ones3}, {0, {}}, {2, ones4}}, true},
      {"a two", {{0, ones3}, {2, {2.0F}}}, false},
      {"a gap", {{0, ones3}, {2, {1, 0, 1}}}, false},
      {"a gap at first", {{2, {1, 0, 1}}, {0, ones3}}, false},
      {"nearly a one", {{0, {1.0F, 0.99999994F}}}, false},
      {"minus one", {{0, {-1.0F}}}, false},
      {"another total", {{0, ones3, 2.0F}}, false},
  };
  for (const auto& c : cases) {
    const HandMadeLists lists(c.lists);
    EXPECT_EQ(AreMeans(&lists[0], lists.Count()), c.areMeans) << c.name;
  }
}

TEST(ListFacts, AreAlikeWhereverTheyLie) {
  const Taps taps = {2, {0.5F, 0.25F, 0.25F}};
  const struct {
    const char* name;
    Taps other;
    bool areAlike;
  } cases[] = {
      {"itself", taps, true},
      {"an even number of pixels on", {6, {0.5F, 0.25F, 0.25F}}, true},
      {"an odd number of pixels on", {3, {0.5F, 0.25F, 0.25F}}, true},
      {"before", {0, {0.5F, 0.25F, 0.25F}}, true},
      {"fewer taps", {2, {0.5F, 0.5F}}, false},
      {"fewer taps with that total", {2, {0.5F, 0.25F}, 1.0F}, false},
      {"another total", {2, {0.5F, 0.25F, 0.25F}, 2.0F}, false},
      {"no number as total", {2, {0.5F, 0.25F, 0.25F}, kNan}, false},
      {"another first weight", {2, {0.25F, 0.25F, 0.25F}, 1.0F}, false},
      {"another last weight", {2, {0.5F, 0.25F, 0.125F}, 1.0F}, false},
      {"a gap", {2, {0.5F, 0.25F, 0.0F, 0.25F}}, false},
      {"a gap before", {2, {0.5F, 0.0F, 0.25F, 0.25F}}, false},
  };
  for (const auto& c : cases) {
    const HandMadeLists lists({taps, c.other});
    EXPECT_EQ(AreAlike(lists[0], lists[1]), c.areAlike) << c.name;
    EXPECT_EQ(AreAlike(lists[1], lists[0]), c.areAlike) << c.name;
  }
  const HandMadeLists same({{2, {0.5F}, kNan}, {2, {0.5F}, kNan}});
  EXPECT_FALSE(AreAlike(same[0], same[1])) << "totals that are no numbers";
}

TEST(ListFacts, AreTwinsOfTheNearestThatMayHaveOne) {
  const Taps a(2, {0.5F, 0.25F}), b(3, {0.25F, 0.5F}), moved(7, {0.5F, 0.25F});
  const HandMadeLists lists({a, b, moved, a, b, b, b, b, a, b, b, b, b, b, moved});
  const auto all = [](std::int32_t) { return true; };
  const std::int32_t expected[] = {0, 0, 2, 1, 3, 1, 1, 1, 0, 2, 1, 1, 1, 1, 0};
  for (std::int32_t i = 0; i < lists.Count(); ++i) {
    EXPECT_EQ(TwinOf(&lists[0], i, all), expected[i]) << i;
  }
  EXPECT_EQ(TwinOf(&lists[0], 3, [](std::int32_t i) { return i != 2; }), 3);
  EXPECT_EQ(TwinOf(&lists[0], 3, [](std::int32_t i) { return i == 1; }), 0);
}

TEST(ListFacts, AreNoTwinsMoreThanFourListsBefore) {
  const Taps a(2, {0.5F, 0.25F}), b(3, {0.25F, 0.5F});
  const auto all = [](std::int32_t) { return true; };
  EXPECT_EQ(TwinOf(&HandMadeLists({a, b, b, b, a})[0], 4, all), 4);
  EXPECT_EQ(TwinOf(&HandMadeLists({a, b, b, b, b, a})[0], 5, all), 0);
}

}  // namespace
