// Proves the oracles: every expected word here is worked out by hand from the definitions.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/oracles/fast_scale.h"
#include "tests/oracles/image.h"
#include "tests/oracles/red_pictures.h"
#include "tests/oracles/scale_method.h"
#include "tests/oracles/smooth_enlarge.h"

namespace oracle {
namespace {

Words FastReds(int width, int height, const Words& reds, int newWidth, int newHeight) {
  return OpaqueReds(FastScale(Reds(width, height, reds), newWidth, newHeight, 1));
}

Words SmoothWords(int width, int height, const Words& words, int newWidth, int newHeight) {
  return SmoothEnlarge(Reds(width, height, words), newWidth, newHeight, 1).words;
}

TEST(Image, ChannelsLieWhereTheFormatSays) {
  struct Row {
    int format, red, green, blue, fourth;
  };
  const std::uint32_t word = 0x44332211;
  for (const Row& row : std::vector<Row>{
           {0, 0, 0, 0, 0},
           {1, 0x11, 0x22, 0x33, 0x44},
           {2, 0x22, 0x33, 0x44, 0x11},
           {3, 0x11, 0x22, 0x33, 0x44},
           {4, 0x22, 0x33, 0x44, 0x11},
           {5, 0x11, 0x22, 0x33, 0x44},
           {6, 0x22, 0x33, 0x44, 0x11},
           {7, 0, 0, 0, 0},
           {8, 0x33, 0x22, 0x11, 0x44},
           {9, 0, 0, 0, 0},
       }) {
    SCOPED_TRACE(FormatName(row.format) + std::to_string(row.format));
    EXPECT_EQ(Red(word, row.format), row.red);
    EXPECT_EQ(Green(word, row.format), row.green);
    EXPECT_EQ(Blue(word, row.format), row.blue);
    EXPECT_EQ(Fourth(word, row.format), row.fourth);
    const std::uint32_t packed = Pack(row.format, row.red, row.green, row.blue, row.fourth);
    EXPECT_EQ(packed, IsStorable(row.format) ? word : 0u);
  }
}

TEST(Image, OpaquePixelsCarry255OrTheHostsTopByte) {
  EXPECT_EQ(PackOpaque(1, 1, 2, 3), 0xFF030201u);
  EXPECT_EQ(PackOpaque(2, 1, 2, 3), 0x030201FFu);
  EXPECT_EQ(PackOpaque(8, 1, 2, 3), 0x00010203u);
  EXPECT_EQ(PackOpaque(8, 1, 2, 3, 255), 0xFF010203u);
  EXPECT_EQ(PackOpaque(6, 1, 2, 3, 77), 0x030201FFu);
}

TEST(Image, StepsOutsideAreRefused) {
  const Image image = NewImage(2, 3, 1, 5);
  EXPECT_EQ(image.words, Words(6, 5));
  EXPECT_THROW(image.At(2, 0), std::out_of_range);
  EXPECT_THROW(image.At(0, 3), std::out_of_range);
  EXPECT_THROW(image.At(-1, 0), std::out_of_range);
}

TEST(FastScale, DoublingOnePixelGivesFourOpaqueCopies) {
  EXPECT_EQ(FastScale({1, 1, 1, {0x00030201}}, 2, 2, 1).words, Words(4, 0xFF030201));
}

// Steps 2, 2; block 2 x 2, count 4; row 0 is added twice:
// (0.5 + 2*(10+20))/4 = 15.125; (0.5 + 2*(30+41))/4 = 35.625. Row 2 gives the second result row:
// (0.5 + 2*(1+2))/4 = 1.625; (0.5 + 2*(3+4))/4 = 3.625. The 255s never count.
TEST(FastScale, HalvingIgnoresOddRows) {
  const Words rows = {10, 20, 30, 41, 255, 255, 255, 255, 1, 2, 3, 4, 255, 255, 255, 255};
  EXPECT_EQ(FastReds(4, 4, rows, 2, 2), (Words{15, 35, 1, 3}));
}

// Block 3: (0.5 + 2)/3 = 0.83 -> 0 although 2/3 is nearer to 1; (0.5 + 3)/3 = 1.17 -> 1.
// Block 2: (0.5 + 1)/2 = 0.75 -> 0.
TEST(FastScale, TheHalfIsAddedOnce) {
  EXPECT_EQ(FastReds(3, 1, {1, 1, 0}, 1, 1), (Words{0}));
  EXPECT_EQ(FastReds(3, 1, {1, 1, 1}, 1, 1), (Words{1}));
  EXPECT_EQ(FastReds(2, 1, {0, 1}, 1, 1), (Words{0}));
}

// Step 2.5, block 3, starts 0 and trunc(2.5) = 2: column 2 counts for both.
// (0.5 + 60)/3 = 20.17; (0.5 + 120)/3 = 40.17.
TEST(FastScale, BlocksOfAFractionalShrinkOverlap) {
  EXPECT_EQ(FastReds(5, 1, {10, 20, 30, 40, 50}, 2, 1), (Words{20, 40}));
}

// Step 2.5, block height 3, first rows 0 and 2, each three times:
// (0.5 + 3*10)/3 = 10.17; (0.5 + 3*30)/3 = 30.17.
TEST(FastScale, OnlyTheFirstRowOfABlockIsRead) {
  EXPECT_EQ(FastReds(1, 5, {10, 20, 30, 40, 50}, 1, 2), (Words{10, 30}));
}

// Step 0.6: starts 0, 0.6, 1.2, 1.8, 2.4 -> 0 0 1 1 2. Block 1: (0.5 + p)/1 -> p.
TEST(FastScale, EnlargingTakesTheTruncatedNeighbour) {
  EXPECT_EQ(FastReds(3, 1, {7, 8, 255}, 5, 1), (Words{7, 7, 8, 8, 255}));
  EXPECT_EQ(FastReds(1, 3, {7, 8, 255}, 1, 5), (Words{7, 7, 8, 8, 255}));
}

// Wider and lower at once: x step 2/4 -> columns 0 0 1 1; y step 4/2 -> rows 0 and 2, block height
// 2, count 1*2: (0.5 + 2*p)/2 = p + 0.25.
TEST(FastScale, DirectionsAreIndependent) {
  EXPECT_EQ(FastReds(2, 4, {1, 2, 3, 4, 5, 6, 7, 8}, 4, 2), (Words{1, 1, 2, 2, 5, 5, 6, 6}));
}

// Step 2/98 = 1/49 in doubles is a little less than 1/49; 49 times it rounds to 1 - 2^-53, so
// column 49 still starts at 0, where exact arithmetic would start at 1.
TEST(FastScale, ColumnsStartWhereDoublesSay) {
  Words expected(98, 20);
  for (std::size_t i = 0; i < 50; ++i) expected[i] = 10;
  EXPECT_EQ(FastReds(2, 1, {10, 20}, 98, 1), expected);
  EXPECT_EQ(FastReds(1, 2, {10, 20}, 1, 98), expected);
}

// (0.5 + 9*255)/9 = 255.06 -> 255.
TEST(FastScale, WhiteStaysWhite) {
  const Image white = NewImage(3, 3, 3, 0xFFFFFFFF);
  EXPECT_EQ(FastScale(white, 1, 1, 4).words, Words{0xFFFFFFFF});
  EXPECT_EQ(FastScale(white, 1, 1, 8).words, Words{0x00FFFFFF});
}

// Red 1, green 2, blue 3 in each source family, fourth byte 0x80, into each result family.
TEST(FastScale, FormatsConvert) {
  for (const Image& source :
       {Image{1, 1, 5, {0x80030201}}, Image{1, 1, 6, {0x03020180}}, Image{1, 1, 8, {0x80010203}}}) {
    SCOPED_TRACE(FormatName(source.format));
    for (const int format : {1, 3, 5}) {
      EXPECT_EQ(FastScale(source, 1, 2, format).words, Words(2, 0xFF030201));
    }
    for (const int format : {2, 4, 6}) {
      EXPECT_EQ(FastScale(source, 1, 2, format).words, Words(2, 0x030201FF));
    }
    EXPECT_EQ(FastScale(source, 1, 2, 8).words, Words(2, 0x00010203));
  }
}

// (0.5 + 0)/1 -> 0 in every channel.
TEST(FastScale, SourcesOfNoPixelFormatReadAsBlack) {
  for (const int format : {0, 7, 9}) {
    EXPECT_EQ(FastScale({1, 1, format, {0x12345678}}, 1, 2, 1).words, Words(2, 0xFF000000));
  }
}

TEST(FastScale, ResultsOfNoPixelFormatAreNotWritten) {
  for (const int format : {0, 7, 9}) {
    EXPECT_EQ(FastScale(Reds(1, 1, {9}), 2, 1, format, 0xABCDEF01).words, Words(2, 0xABCDEF01));
  }
}

// Block 0 x 0: 0.5/0 is infinite, which converts to -2^31, of which the low byte is 0.
TEST(FastScale, AnEmptySourceGivesBlack) {
  EXPECT_EQ(FastScale(NewImage(0, 0, 1), 1, 1, 1).words, Words{0xFF000000});
  EXPECT_EQ(FastScale(NewImage(0, 0, 8), 1, 1, 8, 0x55555555).words, Words{0});
}

// Rows 2 and 3 land on row 0, the last one stays. Two spare rows keep the word they had.
TEST(FastScale, RowsBeyondTheResultLandOnRowZero) {
  const Image source = Reds(1, 4, {1, 2, 3, 4});
  EXPECT_EQ(FastScale(source, 1, 4, 1, 0, 2).words, (Words{0xFF000004, 0xFF000002}));
  EXPECT_EQ(FastScale(source, 1, 2, 1, 5, 4).words, (Words{0xFF000001, 0xFF000003, 5, 5}));
  EXPECT_EQ(FastScale(source, 1, 4, 1, 0, 2).height, 2);
}

TEST(FastScale, SizesBelowOneAreRefused) {
  EXPECT_THROW(FastScale(Reds(1, 1, {1}), 0, 1, 1), std::invalid_argument);
  EXPECT_THROW(FastScale(Reds(1, 1, {1}), 1, -1, 1), std::invalid_argument);
}

// t = 1/2: t^2 = 1/4, t^3 = 1/8: 3/4 - 2/8 = 1/2. t = 1/4: 3/16 - 2/64 = 5/32. t = 3/4: 27/16 -
// 54/64 = 27/32. All of them, and their complements, are exact.
TEST(SmoothWeights, TheMiddleTapsAreASmoothstepAndTheOuterOnesZero) {
  EXPECT_EQ(SmoothWeights(0.0f), (std::array<float, 4>{0, 0, 1, 0}));
  EXPECT_EQ(SmoothWeights(0.25f), (std::array<float, 4>{0, 0.15625f, 0.84375f, 0}));
  EXPECT_EQ(SmoothWeights(0.5f), (std::array<float, 4>{0, 0.5f, 0.5f, 0}));
  EXPECT_EQ(SmoothWeights(0.75f), (std::array<float, 4>{0, 0.84375f, 0.15625f, 0}));
}

// In units of 2^-24: t = 15099494, t^2 = 13589544, t^3 = 12230589, 3t^2 = 40768632, 2t^3 =
// 24461178; entry 1 = 16307454, entry 2 = -16307454 + 16777216 = 469762.
TEST(SmoothWeights, NineTenthsIsRoundedAtEveryStep) {
  EXPECT_EQ(SmoothWeights(0.9f),
            (std::array<float, 4>{0, 16307454.0f / 16777216.0f, 469762.0f / 16777216.0f, 0}));
}

TEST(SmoothEnlarge, OnePixelGivesFourCopiesOfItsBytes) {
  EXPECT_EQ(SmoothWords(1, 1, {0x80FE0102}, 2, 2), Words(4, 0x80FE0102));
}

// t = 0, 1/2, 0, 1/2; positions 0 0 1 1: 0.5 + 5 + 10.5 = 16; the last column blends 21 with
// itself.
TEST(SmoothEnlarge, DoublingCopiesAndAveragesToNearest) {
  EXPECT_EQ(SmoothWords(2, 1, {10, 21}, 4, 1), (Words{10, 16, 21, 21}));
  EXPECT_EQ(SmoothWords(1, 2, {10, 21}, 1, 4), (Words{10, 16, 21, 21}));
}

// Rows 0/1 blended: 25, 150. Row 0: 50 + .5. Row 1: 25; 12.5 + 75 + .5 = 88; 150. Row 2: 50; 125.5;
// 200.
TEST(SmoothEnlarge, DoublingBothWaysBlendsFourPixels) {
  EXPECT_EQ(SmoothWords(2, 2, {0, 100, 50, 200}, 4, 4),
            (Words{0, 50, 100, 100, 25, 88, 150, 150, 50, 125, 200, 200, 50, 125, 200, 200}));
}

// Four columns per pixel, entry 1 = 0, 5/32, 1/2, 27/32: of 64 these are 0, 10, 32, 54.
TEST(SmoothEnlarge, QuadruplingFollowsTheSmoothstep) {
  EXPECT_EQ(SmoothWords(2, 1, {0, 64}, 8, 1), (Words{0, 10, 32, 54, 64, 64, 64, 64}));
  EXPECT_EQ(SmoothWords(2, 1, {64, 0}, 8, 1), (Words{64, 54, 32, 10, 0, 0, 0, 0}));
}

// Indices 0, 2/3 -> 0, 4/3 -> 1; t = 0, 2/3, 1/3. Entry 1 of 2/3 = 12/9 - 16/27 = 20/27: of 54 it
// is 40.
TEST(SmoothEnlarge, AFractionalEnlargementTakesTheRemainderAsFraction) {
  EXPECT_EQ(SmoothWords(2, 1, {0, 54}, 3, 1), (Words{0, 40, 54}));
}

// Byte by byte, lowest first: (0, 255) -> 0 + 127.5 + .5 = 128; (255, 0) -> 128; (1, 2) -> 2; (255,
// 1)
// -> 128.5 -> 128, the fourth byte like the others.
TEST(SmoothEnlarge, EveryByteIsInterpolated) {
  EXPECT_EQ(SmoothWords(2, 1, {0xFF01FF00, 0x010200FF}, 4, 1),
            (Words{0xFF01FF00, 0x80028080, 0x010200FF, 0x010200FF}));
}

TEST(SmoothEnlarge, FormatsAreNotConsulted) {
  for (const int from : {0, 2, 7, 8}) {
    for (const int to : {0, 1, 6, 7, 8}) {
      const Image result =
          SmoothEnlarge({2, 1, from, {0xFF01FF00, 0x010200FF}}, 4, 1, to, 0x77777777);
      EXPECT_EQ(result, (Image{4, 1, to, {0xFF01FF00, 0x80028080, 0x010200FF, 0x010200FF}}));
    }
  }
}

// Column 9 of 20 over 2: t = 18/20. In units of 2^-24: 125 * 469762 = 58720250, a tie that rounds
// to 58720248; adding a half gives 67108856, less than 4.0 = 67108864. Exactly it would be 4.
TEST(SmoothEnlarge, SumsAreSinglePrecision) {
  EXPECT_EQ(SmoothWords(2, 1, {125, 0}, 20, 1).at(9), 3u);
  EXPECT_EQ(SmoothWords(1, 2, {125, 0}, 1, 20).at(9), 3u);
}

// Along a row, in units of 2^-24: the half comes first. 126 * 469762 = 59190012; + 8388608 =
// 67578620, a tie that rounds to 67578624; + 16307454 = 83886078, which rounds to 83886080 = 5.0.
// Down a column it comes last: 59190012 + 16307454 = 75497466, rounded to 75497464; + 8388608 =
// 83886072, less than 5.0.
TEST(SmoothEnlarge, TheHalfComesWithTheFirstHorizontalTap) {
  EXPECT_EQ(SmoothWords(2, 1, {126, 1}, 20, 1).at(9), 5u);
  EXPECT_EQ(SmoothWords(1, 2, {126, 1}, 1, 20).at(9), 4u);
}

// Along a row, in units of 2^-24: 130 * 469762 = 61069060; + 8388608 = 69457668 -> 69457664;
// 5 * 16307454 = 81537270 -> 81537272; together 150994936, a tie that rounds to 150994944 = 9.0.
// Fused, the sum would be 150994934, rounded to 150994928: 8.
// Down a column: 137 * 469762 = 64357394 -> 64357392; 12 * 16307454 = 195689448 -> 195689440;
// together 260046832; + 8388608 = 268435440, less than 16.0 = 268435456. Fused, 260046840 ->
// 260046848: 16.
TEST(SmoothEnlarge, ProductsAreRoundedBeforeTheyAreAdded) {
  EXPECT_EQ(SmoothWords(2, 1, {130, 5}, 20, 1).at(9), 9u);
  EXPECT_EQ(SmoothWords(1, 2, {137, 12}, 1, 20).at(9), 15u);
}

// Column 9 of 31 over 2: t = 18/31. In units of 2^-25: t = 19483218, t^2 = 11312836, 3t^2 =
// 33938508, 2t^3 = 13137487. Their difference -20801021 is a tie that rounds to -20801020; +
// 33554432 = 12753412. 246 times that is 3137339352, rounded to 3137339392 = 93.5; with the half
// exactly 94. As (1 - 3t^2) + 2t^3 the entry would be 12753411, the product less than 93.5 and the
// byte 93.
TEST(SmoothEnlarge, EntryTwoSubtractsBeforeItAddsOne) {
  EXPECT_EQ(SmoothWords(2, 1, {246, 0}, 31, 1).at(9), 94u);
}

// Indices 0 and 2, fractions 0: the columns themselves, as for a mask wider than its picture.
TEST(SmoothEnlarge, ALargerSourceIsSampled) {
  EXPECT_EQ(SmoothWords(4, 1, {1, 2, 3, 4}, 2, 1), (Words{1, 3}));
  EXPECT_EQ(SmoothWords(1, 4, {1, 2, 3, 4}, 1, 2), (Words{1, 3}));
}

// Rows 1 and 2 quadrupled: 1.5 -> 1; 1 + 5/32 + .5 -> 1; 1.5 + .5 = 2; 1 + 27/32 + .5 -> 2;
// then 2.5 -> 2 four times. Of three rows, row 0 ends as the last one written. A spare row keeps
// the word it had.
TEST(SmoothEnlarge, RowsBeyondTheResultLandOnRowZero) {
  const Image source = Reds(1, 2, {1, 2});
  EXPECT_EQ(SmoothEnlarge(source, 1, 8, 1).words, (Words{1, 1, 2, 2, 2, 2, 2, 2}));
  EXPECT_EQ(SmoothEnlarge(source, 1, 8, 1, 0, 3).words, (Words{2, 1, 2}));
  EXPECT_EQ(SmoothEnlarge(source, 1, 2, 1, 9, 3).words, (Words{1, 2, 9}));
}

TEST(SmoothEnlarge, SizesBelowOneAreRefused) {
  EXPECT_THROW(SmoothEnlarge(Reds(1, 1, {1}), 1, 0, 1), std::invalid_argument);
  EXPECT_THROW(SmoothEnlarge(NewImage(0, 0, 1), 1, 1, 1), std::invalid_argument);
}

// 134217726 * 16 + 20 = 2147483636; one more is 2147483652, above 2147483647.
// 536870906 * 4 + 20 = 2147483644; one more is 2147483648.
TEST(SmoothEnlarge, TablesKeepTheAllocationLimit) {
  EXPECT_TRUE(SmoothTablesFit(1, 134217726, 1));
  EXPECT_FALSE(SmoothTablesFit(1, 134217727, 1));
  EXPECT_FALSE(SmoothTablesFit(1, 1, 134217727));
  EXPECT_TRUE(SmoothTablesFit(536870906, 1, 1));
  EXPECT_FALSE(SmoothTablesFit(536870907, 1, 1));
}

TEST(ScaleMethod, TheSizesChooseTheBranch) {
  struct Row {
    int sourceWidth, sourceHeight, width, height;
    Branch plain, antiAliased;
  };
  for (const Row& row : std::vector<Row>{
           {4, 3, 4, 3, Branch::kSame, Branch::kSame},
           {0, 0, 0, 0, Branch::kSame, Branch::kSame},
           {4, 3, 5, 4, Branch::kFast, Branch::kSmooth},
           {4, 3, 5, 3, Branch::kFast, Branch::kFast},
           {4, 3, 4, 4, Branch::kFast, Branch::kFast},
           {4, 3, 5, 2, Branch::kFast, Branch::kFast},
           {4, 3, 3, 2, Branch::kFast, Branch::kFast},
           {4, 3, 3, 4, Branch::kFast, Branch::kFast},
           {1, 1, 134217727, 2, Branch::kFast, Branch::kFast},
       }) {
    SCOPED_TRACE(std::to_string(row.width) + "x" + std::to_string(row.height));
    EXPECT_EQ(ChooseBranch(row.sourceWidth, row.sourceHeight, row.width, row.height, false),
              row.plain);
    EXPECT_EQ(ChooseBranch(row.sourceWidth, row.sourceHeight, row.width, row.height, true),
              row.antiAliased);
  }
}

TEST(ScaleMethod, OnlyAnAlphaChannelLiftsTheUpperLimit) {
  EXPECT_TRUE(ResultCanBeMade(32767, 32767, false));
  EXPECT_FALSE(ResultCanBeMade(32768, 1, false));
  EXPECT_FALSE(ResultCanBeMade(1, 32768, false));
  EXPECT_TRUE(ResultCanBeMade(32768, 1, true));
  EXPECT_FALSE(ResultCanBeMade(0, 1, true));
  EXPECT_FALSE(ResultCanBeMade(1, 0, false));
}

// 1 x 2 of reds 10, 21 doubled. Smooth: columns t = 0 and 1/2 of one column, rows 10, 16, 21, 21,
// the fourth byte left 0. Fast: rows 0 0 1 1, opaque.
TEST(ScaleMethod, GivesThePictureOfItsBranch) {
  const Image source = Reds(1, 2, {10, 21});
  const auto same = ScaleMethod(source, {.width = 1, .height = 2, .resultFormat = 8});
  ASSERT_TRUE(same.has_value());
  EXPECT_EQ(same->branch, Branch::kSame);
  EXPECT_EQ(same->image, source);

  ScaleRequest request = {.width = 2, .height = 4, .antiAlias = true, .resultFormat = 1};
  const auto smooth = ScaleMethod(source, request);
  ASSERT_TRUE(smooth.has_value());
  EXPECT_EQ(smooth->branch, Branch::kSmooth);
  EXPECT_EQ(smooth->image, (Image{2, 4, 1, {10, 10, 16, 16, 21, 21, 21, 21}}));

  request.antiAlias = false;
  const auto fast = ScaleMethod(source, request);
  ASSERT_TRUE(fast.has_value());
  EXPECT_EQ(fast->branch, Branch::kFast);
  EXPECT_EQ(OpaqueReds(fast->image), (Words{10, 10, 10, 10, 21, 21, 21, 21}));
}

TEST(ScaleMethod, SizesThatNoPictureCanHaveGiveNothing) {
  const Image source = Reds(1, 1, {1});
  EXPECT_FALSE(ScaleMethod(source, {.width = 0, .height = 1, .resultFormat = 1}).has_value());
  EXPECT_FALSE(ScaleMethod(source, {.width = 32768, .height = 1, .resultFormat = 1}).has_value());
  const auto wide =
      ScaleMethod(source, {.width = 32768, .height = 1, .resultFormat = 1, .hasAlpha = true});
  ASSERT_TRUE(wide.has_value());
  EXPECT_EQ(wide->image.words, Words(32768, 0xFF000001));
}

}  // namespace
}  // namespace oracle
