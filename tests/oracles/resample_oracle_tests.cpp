// Proves the resampling oracle's pictures: every expected value here is worked out by hand from the
// tap lists.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/oracles/image.h"
#include "tests/oracles/kernels.h"
#include "tests/oracles/red_pictures.h"
#include "tests/oracles/resample.h"

namespace oracle {
namespace {

// The red of every pixel of the result in format 1; the rest must be opaque black.
Words ResampledReds(int mode, const Image& source, int width, int height) {
  Words reds;
  for (const std::uint32_t word : Resample(source, mode, width, height, 1).words) {
    EXPECT_EQ(word & 0xFFFFFF00u, 0xFF000000u);
    reds.push_back(word & 255u);
  }
  return reds;
}

// The same line of pixels filtered along a row, then along a column.
void ExpectLine(int mode, const Words& reds, const Words& expected) {
  const int from = static_cast<int>(reds.size());
  const int to = static_cast<int>(expected.size());
  SCOPED_TRACE("mode " + std::to_string(mode));
  EXPECT_EQ(ResampledReds(mode, Reds(from, 1, reds), to, 1), expected) << "along a row";
  EXPECT_EQ(ResampledReds(mode, Reds(1, from, reds), 1, to), expected) << "along a column";
}

// (7.5 + 15 + 7.5)/1.75 = 17.14; (5 + 22.5 + 30)/1.75 = 32.86.
// Doubling: 7.5/.75 = 10; 7.5 + 5 = 12.5 -> 13; 2.5 + 15 = 17.5 -> 18; 20.
TEST(Resample, TriangleLines) {
  ExpectLine(1, {10, 20, 30, 40}, {17, 33});
  ExpectLine(1, {10, 20}, {10, 13, 18, 20});
  ExpectLine(1, {3, 255, 0}, {3, 255, 0});
}

// (10 + 21)/2 = 15.5 -> 16. (1 + 2)/2 = 1.5 -> 2; (2 + 4)/2 = 3. (10 + 20 + 33)/3 = 21;
// (33 + 44 + 56)/3 = 44.33. (1 + 2 + 3 + 5)/4 = 2.75 -> 3.
TEST(Resample, BoxLines) {
  ExpectLine(2, {10, 21}, {10, 16, 21});
  ExpectLine(2, {1, 2, 4}, {2, 3});
  ExpectLine(2, {10, 20, 33, 44, 56}, {21, 44});
  ExpectLine(2, {1, 2, 3, 5}, {3});
  ExpectLine(2, {7, 8, 255}, {7, 8, 255});
}

// Equal size: 180 * 8/9 = 160 in the middle; beside it (180/18)/(17/18) = 10.59.
TEST(Resample, MitchellBlursEvenAtEqualSize) { ExpectLine(5, {0, 180, 0}, {11, 160, 11}); }

// With a = 225/256, b = 67/256, c = -27/256, d = -9/256 and white = 255, black = 0:
// 255 255 0 0, doubled: 0: (a + c)/(a + c) -> 255; 1: (a + b)/(a + b + c) = 292/265 -> 255 clamped;
// 2: (b + a)/(b + a + c) -> 255 clamped; 3: c + a = 198/256 * 255 = 197.2; 4: d + b = 58/256 * 255
// = 57.8; 5: c/(a + b + c) -> below 0; 6: the same; 7: 0.
TEST(Resample, BicubicRingingIsClamped) {
  ExpectLine(6, {255, 255, 0, 0}, {255, 255, 255, 197, 58, 0, 0, 0});
}

// Index 4 of 6 to 9: 96 * 1/96 + 96 * 7/12 = 57; 192 * 7/12 = 112; -96 * 3/32 = -9 -> 0.
// Equal size gives the source: the neighbours weigh less than 1e-15.
TEST(Resample, SixPointCubicLines) {
  const auto middle = [](const Words& reds) {
    const Words row = ResampledReds(7, Reds(6, 1, reds), 9, 1);
    EXPECT_EQ(row, ResampledReds(7, Reds(1, 6, reds), 1, 9));
    return row.at(4);
  };
  EXPECT_EQ(middle({96, 0, 96, 0, 0, 0}), 57u);
  EXPECT_EQ(middle({0, 0, 0, 192, 0, 0}), 112u);
  EXPECT_EQ(middle({0, 96, 0, 0, 0, 0}), 0u);
  ExpectLine(7, {1, 2, 255, 0, 77, 9, 128}, {1, 2, 255, 0, 77, 9, 128});
}

// Equal size gives the source in the Lanczos modes too: the neighbours weigh about 1e-17.
// Two pixels to one: both at distance 1/4, so the mean.
TEST(Resample, LanczosLines) {
  for (const int mode : {3, 4}) {
    ExpectLine(mode, {1, 2, 255, 0, 77, 9, 128}, {1, 2, 255, 0, 77, 9, 128});
    ExpectLine(mode, {10, 20}, {15});
  }
}

// Rows first: (0 + 1)/2 = 0.5 -> 1 and 0; then (1 + 0)/2 -> 1, although the mean of all four is
// 0.25.
TEST(Resample, EachPassRoundsToWholeLevels) {
  EXPECT_EQ(ResampledReds(2, Reds(2, 2, {0, 1, 0, 0}), 1, 1), (Words{1}));
}

// Index 5 of 2 to 20: centre 0.55, weights 0.95 and 0.05, total 1. The float 0.95 is 0.2 * 2^-24
// too small: 10 * 0.95 = 9.5 - 2^-23 in double, 9 after rounding; the float product, whose last
// place is 2^-20 here, is 9.5, and gives 10.
TEST(Resample, ProductsAreDoubleAcrossAndSingleDown) {
  EXPECT_EQ(ResampledReds(1, Reds(2, 1, {10, 0}), 20, 1).at(5), 9u);
  EXPECT_EQ(ResampledReds(1, Reds(1, 2, {10, 0}), 1, 20).at(5), 10u);
}

// A 2 x 2 picture to 3 x 1 with the box: rows 10 15.5->16 21 and 40 55.5->56 71, then the means
// 25, 36, 46.
TEST(Resample, BothAxesAtOnce) {
  EXPECT_EQ(ResampledReds(2, Reds(2, 2, {10, 21, 40, 71}), 3, 1), (Words{25, 36, 46}));
}

TEST(Resample, OnePixelFillsAnySize) {
  for (int mode = kFirstMode; mode <= kLastMode; ++mode) {
    const Image result = Resample({1, 1, 1, {0x00FB8001}}, mode, 13, 9, 1);
    EXPECT_EQ(result.words, Words(13 * 9, 0xFFFB8001)) << mode;
  }
}

TEST(Resample, UniformPicturesStayUniform) {
  for (int mode = kFirstMode; mode <= kLastMode; ++mode) {
    for (const int to : {1, 2, 5, 7, 8, 11, 30}) {
      const Image source = NewImage(7, 6, 1, 0x00FF6401);
      const Words expected(static_cast<std::size_t>(to * (31 - to)), 0xFFFF6401);
      EXPECT_EQ(Resample(source, mode, to, 31 - to, 1).words, expected) << mode << " to " << to;
    }
  }
}

// Red 0x11, green 0x22, blue 0x33 and a fourth byte that is never read.
TEST(Resample, FormatsAreReadAndWrittenByTheirChannels) {
  for (const int from : {1, 2, 3, 4, 5, 6, 8}) {
    const Image source{1, 1, from, {Pack(from, 0x11, 0x22, 0x33, 0x44)}};
    const auto word = [&](int to) { return Resample(source, 2, 1, 1, to, 0xABCDEF01).At(0, 0); };
    for (const int to : {1, 3, 5}) EXPECT_EQ(word(to), 0xFF332211u) << from << " to " << to;
    for (const int to : {2, 4, 6}) EXPECT_EQ(word(to), 0x332211FFu) << from << " to " << to;
    EXPECT_EQ(word(8), 0x00112233u) << from;
    for (const int to : {0, 7, 9}) EXPECT_EQ(word(to), 0xABCDEF01u) << from << " to " << to;
  }
  EXPECT_EQ(Resample({1, 1, 7, {0xFFFFFFFF}}, 1, 1, 1, 1).words, (Words{0xFF000000}));
}

TEST(Resample, ASourceWithoutColumnsIsBlack) {
  EXPECT_EQ(Resample(NewImage(0, 2, 1), 4, 2, 1, 1).words, Words(2, 0xFF000000));
  EXPECT_EQ(Resample(NewImage(0, 2, 1), 4, 2, 1, 8, 7).words, Words(2, 0));
  EXPECT_THROW(Resample(NewImage(2, 0, 1), 1, 2, 1, 1), std::invalid_argument);
}

// Rows 2 and 3 land on row 0, the last one stays; a result with spare rows keeps them.
TEST(Resample, RowsBeyondTheResultLandOnItsFirst) {
  const Image source = Reds(1, 4, {1, 2, 3, 4});
  EXPECT_EQ(Resample(source, 2, 1, 4, 1, 9, 2).words, (Words{0xFF000004, 0xFF000002}));
  EXPECT_EQ(Resample(source, 2, 1, 4, 1, 9, 5).words,
            (Words{0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004, 9}));
}

// 2^29 - 1 = 536870911 words are just under 2^31 bytes. 178956970 heads of 12 bytes (134217727 of
// 16) just fit. 32768 * 16384 is 2^29; 2^31 - 1 columns of 2 rows are 16 GB, which wraps to
// 2^32 - 8 as a 32-bit number, and 1073741825 columns wrap to 4 bytes.
TEST(ScalingMethod, NilReasons) {
  const Image small = NewImage(3, 1, 1);
  const Image high = NewImage(0, 16384, 1);
  const Image empty = NewImage(3, 0, 1);
  const int heads = sizeof(void*) == 4 ? 178956970 : 134217727;
  struct Row {
    const Image* source;
    ScalingRequest request;
    NilReason reason;
  };
  int number = 0;
  for (const Row& row : std::vector<Row>{
           {&small, {1, 1, 1}, NilReason::kNone},
           {&small, {7, 5, 9}, NilReason::kNone},
           {nullptr, {1, 1, 1}, NilReason::kArguments},
           {&small, {0, 1, 1}, NilReason::kArguments},
           {&small, {8, 1, 1}, NilReason::kArguments},
           {&small, {-2147483647 - 1, 1, 1}, NilReason::kArguments},
           {&small, {1, 0, 1}, NilReason::kArguments},
           {&small, {1, 1, -1}, NilReason::kArguments},
           {&empty, {1, 1, 1}, NilReason::kIntermediate},
           {&high, {1, 32767, 1}, NilReason::kNone},
           {&high, {1, 32768, 1}, NilReason::kIntermediate},
           {&high, {1, 2147483647, 1, true}, NilReason::kIntermediate},
           {&small, {1, 536870912, 1, true}, NilReason::kIntermediate},
           {&small, {1, 1073741825, 1, true}, NilReason::kIntermediate},
           {&small, {1, 536870911, 1, true}, NilReason::kListHeads},
           {&small, {1, heads + 1, 1, true}, NilReason::kListHeads},
           {&small, {1, 1, heads + 1, true}, NilReason::kListHeads},
           {&small, {1, heads, 1, true}, NilReason::kNone},
           {&small, {1, heads, 1, false}, NilReason::kResult},
           {&small, {1, 32767, 32767}, NilReason::kNone},
           {&small, {1, 32768, 1}, NilReason::kResult},
           {&small, {1, 1, 32768}, NilReason::kResult},
           {&small, {1, 1, 32768, true}, NilReason::kNone},
           {&small, {1, 1, 1, true, 2011.04}, NilReason::kNone},
           {&small, {1, 1, 1, true, 2010.05}, NilReason::kResult},
           {&small, {1, 1, 1, false, 0.0}, NilReason::kNone},
       }) {
    EXPECT_EQ(WhyNil(row.source, row.request), row.reason) << "row " << number;
    ++number;
  }
}

TEST(ScalingMethod, GivesThePictureOrNil) {
  const Image source = Reds(4, 1, {10, 20, 30, 40});
  ScalingRequest request{1, 2, 1};
  request.resultFormat = 8;
  EXPECT_EQ(ScalingMethod(&source, request), (Image{2, 1, 8, {17 << 16, 33 << 16}}));
  request.mode = 9;
  EXPECT_EQ(ScalingMethod(&source, request), std::nullopt);
  EXPECT_EQ(ScalingMethod(nullptr, {1, 2, 1}), std::nullopt);
}

}  // namespace
}  // namespace oracle
