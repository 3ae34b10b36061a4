// The divisions of the blur's sums are exact.
#include "effects/blur_division.h"

#include <gtest/gtest.h>

namespace {

// As 16-bit lanes do it: the sum is biased, multiplied, and the high half shifted on.
std::uint32_t NarrowQuotient(const BoxDivision& division, std::uint32_t sum) {
  const auto biased = static_cast<std::uint16_t>(sum + division.bias);
  return biased * division.multiplier >> 16 >> (division.shift - 16);
}

TEST(BlurDivision, NarrowQuotientsAreExactForEverySumOfEveryBox) {
  int biased = 0;
  for (std::int32_t box = 3; box <= kLargestNarrowBox; box += 2) {
    const BoxDivision division = NarrowDivision(box);
    ASSERT_LE(division.multiplier, 0xFFFFU) << box;
    ASSERT_GE(division.shift, 16) << box;
    const auto divisor = static_cast<std::uint32_t>(box);
    ASSERT_LE(255 * divisor, 0xFFFFU);
    if (division.bias != 0) ++biased;
    for (std::uint32_t sum = 0; sum <= 255 * divisor; ++sum) {
      ASSERT_EQ(NarrowQuotient(division, sum), sum / divisor) << sum << " / " << box;
    }
  }
  EXPECT_GT(biased, 0) << "no box needs the multiplier below";
}

// A quotient never falls as its sum grows: what is right on both sides of each multiple is right
// everywhere.
void ExpectExactAroundMultiples(std::int32_t box) {
  const BoxDivision division = WideDivision(box);
  ASSERT_EQ(division.bias, 0U);
  ASSERT_GE(division.shift, 32);
  ASSERT_LT(division.shift, 64);
  const std::uint64_t multiplier = division.multiplier;
  for (std::uint32_t mean = 1; mean <= 255; ++mean) {
    const std::uint64_t multiple = std::uint64_t{mean} * static_cast<std::uint64_t>(box);
    ASSERT_EQ(multiple * multiplier >> division.shift, mean) << box;
    ASSERT_EQ((multiple - 1) * multiplier >> division.shift, mean - 1) << box;
  }
}

TEST(BlurDivision, WideQuotientsAreExact) {
  constexpr std::int32_t kLargestBox = 2 * 1048574 + 1;
  for (std::int32_t box = 3; box < 20000; box += 2) ExpectExactAroundMultiples(box);
  for (std::int32_t box = 20001; box <= kLargestBox; box += 2 * 61) ExpectExactAroundMultiples(box);
  for (std::int32_t bits = 9; bits <= 20; ++bits) {
    ExpectExactAroundMultiples((1 << bits) - 1);
    ExpectExactAroundMultiples((1 << bits) + 1);
  }
  for (std::int32_t box = kLargestBox; box > kLargestBox - 2000; box -= 2) {
    ExpectExactAroundMultiples(box);
  }
}

}  // namespace
