// DrawPictureFZVQ with positions and opacities that are no ordinary numbers.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/effects/drawing.h"
#include "tests/support/case_name.h"

namespace {

using oracle::Image;
using support::Words;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();

const double kFarPositions[] = {
    kNan,         -kNan,         kInfinity,     -kInfinity,    kLargest,      -kLargest,
    1e18,         -1e18,         4294967296.0,  -4294967296.0, 2147483648.0,  -2147483649.0,
    2147483647.5, -2147483648.0, -2147483647.5, 2147483647.0,  -2147483648.5, 4294967297.0,
    100.0,        -100.0,        4294967295.5,  -4294967295.0};

TEST(DrawPictureNumbers, FarPositionsKeepEveryColour) {
  const Image dest = Words(5, {{0x00030201, 0x11060504}, {0x22090807, 0x330C0B0A}});
  const Image kept = Words(5, {{0xFF030201, 0xFF060504}, {0xFF090807, 0xFF0C0B0A}});
  const Image source = oracle::NewImage(3, 3, 5, 0xFFFFFFFF);
  for (const double far : kFarPositions) {
    EXPECT_EQ(support::Difference(kept, Drawn(dest, source, {far, 0, 1})), "") << "x = " << far;
    EXPECT_EQ(support::Difference(kept, Drawn(dest, source, {0, far, 1})), "") << "y = " << far;
    EXPECT_EQ(support::Difference(kept, Drawn(dest, source, {far, far, 1})), "") << far;
    EXPECT_EQ(support::Difference(kept, Drawn(dest, source, {far, 0.5, kNan})), "") << far;
  }
}

TEST(DrawPictureNumbers, FarPositionsStayInsideAGuardedSourceAndMask) {
  for (const double far : kFarPositions) {
    for (const host::Guard guard : {host::Guard::kAfter, host::Guard::kBefore}) {
      support::LoadedPlugin plugin;
      host::Picture* dest = plugin.Host().NewPicture({.width = 3, .height = 2, .guard = guard});
      host::Picture* source = plugin.Host().NewPicture({.width = 2, .height = 3, .guard = guard});
      host::Picture* mask = plugin.Host().NewPicture({.width = 1, .height = 1, .guard = guard});
      plugin.Host().SetMask(source, mask);
      const host::CallReport report =
          plugin.Library().Call("DrawPictureFZVQ", dest, {source, far, far, 1.0, 0});
      EXPECT_TRUE(Flag(report)) << far;
      EXPECT_EQ(support::Complaints(report), "") << far;
    }
  }
}

// Zero of either sign, and the least positions around it, lie where zero lies.
TEST(DrawPictureNumbers, TinyPositionsAreWholeOrNearlySo) {
  const Image dest = Words(5, {{7, 7, 7}});
  const Image source = Words(5, {{200, 100}});
  const Image atZero = Words(5, {{0xFF0000C8, 0xFF000064, 0xFF000007}});
  EXPECT_EQ(support::Difference(atZero, Drawn(dest, source, {0.0, 0.0, 1})), "");
  EXPECT_EQ(support::Difference(atZero, Drawn(dest, source, {-0.0, -0.0, 1})), "");
  EXPECT_EQ(support::Difference(atZero, Drawn(dest, source, {kSmallest, kSmallest, 1})), "");
  // floor(-tiny) = -1 and the fraction rounds to 1: the left neighbour takes all, so the picture
  // lies at 0 all the same.
  EXPECT_EQ(support::Difference(atZero, Drawn(dest, source, {-kSmallest, 0, 1})), "");
}

struct OpacityCase {
  const char* name;
  double alpha;
  Image expected;
};

class DrawOpacity : public testing::TestWithParam<OpacityCase> {};

// A pixel of 100 drawn at column 1 of four pixels of 10; it also touches column 2, by a weight of
// 0·alpha.
TEST_P(DrawOpacity, GivesTheseWords) {
  EXPECT_EQ(
      support::Difference(GetParam().expected, Drawn(Words(5, {{10, 10, 10, 10}}),
                                                     Words(5, {{100}}), {1, 0, GetParam().alpha})),
      "");
}

Image Reds(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
  return Words(5, {{0xFF000000 | a, 0xFF000000 | b, 0xFF000000 | c, 0xFF000000 | d}});
}

const OpacityCase kOpacities[] = {
    // A product that is no number, or too large, becomes the least integer, which is black; where
    // the weight is 0·infinity, it is no number either.
    {"Nan", kNan, Reds(10, 0, 0, 10)},
    {"Infinity", kInfinity, Reds(10, 0, 0, 10)},
    {"MinusInfinity", -kInfinity, Reds(10, 0, 0, 10)},
    {"Largest", kLargest, Reds(10, 0, 10, 10)},
    {"MinusLargest", -kLargest, Reds(10, 0, 10, 10)},
    {"Million", 1e6, Reds(10, 255, 10, 10)},
    // 2.2e9 does not fit 32 bits, 2.1e9 does.
    {"JustTooLarge", 2.2e7, Reds(10, 0, 10, 10)},
    {"JustFitting", 2.1e7, Reds(10, 255, 10, 10)},
    {"Smallest", kSmallest, Reds(10, 10, 10, 10)},
    {"Three", 3, Reds(10, 255, 10, 10)},
    {"OneAndAHalf", 1.5, Reds(10, 150, 10, 10)},
    // 1 + 0.0625 times the old colour, trunc(10.625), less trunc(6.25).
    {"ALittleBelowZero", -0.0625, Reds(10, 4, 10, 10)},
    {"MinusZero", -0.0, Reds(10, 10, 10, 10)},
};

INSTANTIATE_TEST_SUITE_P(DrawPictureNumbers, DrawOpacity, testing::ValuesIn(kOpacities),
                         support::CaseName<OpacityCase>);

// Two shares of 2·10^9 sum up to 4·10^9, which as a 32-bit integer is negative; two of 10^9 are
// not.
TEST(DrawPictureNumbers, SumsOfChannelsWrap) {
  const Image result = Drawn(Words(5, {{10, 10}}), Words(5, {{0x0064C8, 0x0064C8}}), {0.5, 0, 2e7});
  EXPECT_EQ(result.At(1, 0), 0xFF00FF00) << "red wraps, green does not";
}

// Half of the old colour stays, whatever a mask leaves of an opacity above 1.
TEST(DrawPictureNumbers, AMaskLimitsAnOpacityAboveOne) {
  // 255 - 204 = 51: 51·2.5/255 = 0.5.
  const Image result = Drawn(Words(5, {{100}}), Words(5, {{60}}), {0, 0, 2.5}, Words(5, {{204}}));
  EXPECT_EQ(result.At(0, 0), 0xFF000050);
}

}  // namespace
