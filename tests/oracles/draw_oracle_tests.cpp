// Proves the drawing oracle: every expected word here is worked out by hand.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/oracles/draw_picture.h"
#include "tests/oracles/red_pictures.h"

namespace oracle {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Words Drawn(Image destination, const Image& source, double x, double y, double alpha) {
  EXPECT_TRUE(DrawPicture(destination, source, nullptr, x, y, alpha));
  return OpaqueReds(destination);
}

Words DrawnMasked(Image destination, const Image& source, const Image& mask, double x, double y,
                  double alpha) {
  EXPECT_TRUE(DrawPicture(destination, source, &mask, x, y, alpha));
  return OpaqueReds(destination);
}

// Only the lower-right weight is not 0, and it is 1.
TEST(DrawPicture, WholeOffsetsAtFullOpacityCopyTheSource) {
  Image destination = NewImage(3, 2, 1, 0x44332211);
  EXPECT_TRUE(DrawPicture(destination, {1, 1, 1, {0x00030201}}, nullptr, 1.0, 1.0, 1.0));
  EXPECT_EQ(destination.words,
            (Words{0xFF332211, 0xFF332211, 0xFF332211, 0xFF332211, 0xFF030201, 0xFF332211}));
}

TEST(DrawPicture, PartsOutsideTheDestinationAreLeftOut) {
  const Image source = Reds(2, 2, {1, 2, 3, 4});
  EXPECT_EQ(Drawn(Reds(2, 1, {8, 9}), source, -1.0, -1.0, 1.0), (Words{4, 9}));
  EXPECT_EQ(Drawn(Reds(2, 1, {8, 9}), source, 1.0, 0.0, 1.0), (Words{8, 1}));
  EXPECT_EQ(Drawn(Reds(2, 1, {8, 9}), source, 2.0, 0.0, 1.0), (Words{8, 9}));
  EXPECT_EQ(Drawn(Reds(2, 1, {8, 9}), source, 0.0, -2.0, 1.0), (Words{8, 9}));
}

// trunc(255 * 0.25) = 63 for each sample: one, two or four of them; nothing else to add on black.
// Weight of one sample 0.25: on 255 there remain 0.75, 0.5, 0 of it: 63 + 191, 126 + 127, 252.
TEST(DrawPicture, EverySampleIsTruncatedByItself) {
  const Image white = Reds(2, 2, {255, 255, 255, 255});
  EXPECT_EQ(Drawn(NewImage(3, 3, 1), white, 0.5, 0.5, 1.0),
            (Words{63, 126, 63, 126, 252, 126, 63, 126, 63}));
  EXPECT_EQ(Drawn(NewImage(3, 3, 1, 255), white, 0.5, 0.5, 1.0),
            (Words{254, 253, 254, 253, 252, 253, 254, 253, 254}));
  Image colours = NewImage(2, 2, 1);
  EXPECT_TRUE(DrawPicture(colours, NewImage(2, 2, 1, 0x00FEFFFD), nullptr, 0.5, 0.5, 1.0));
  EXPECT_EQ(colours.words, (Words{0xFF3F3F3F, 0xFF7E7E7E, 0xFF7E7E7E, 0xFFFCFCFC}));
}

// ax = 1/4, ay = 1/8: upper left 1/32, upper right 3/32, lower right 21/32, lower left 7/32. One
// source pixel of 160 is in turn the lower right, lower left, upper right and upper left sample.
TEST(DrawPicture, TheFourNeighboursAreWeightedByTheFractions) {
  EXPECT_EQ(Drawn(NewImage(2, 2, 1), Reds(1, 1, {160}), 0.25, 0.125, 1.0), (Words{105, 35, 15, 5}));
  // 32 * 1/32 + 64 * 3/32 + 96 * 7/32 + 128 * 21/32 = 1 + 6 + 21 + 84.
  EXPECT_EQ(Drawn(NewImage(2, 2, 1), Reds(2, 2, {32, 64, 96, 128}), 0.25, 0.125, 1.0).at(3), 112u);
}

// -2.5: shift -3, fraction 0.5: the first column lies between source columns 2 and 3.
TEST(DrawPicture, OffsetsAreSplitByFloor) {
  EXPECT_EQ(Drawn(NewImage(3, 1, 1), Reds(4, 1, {2, 4, 8, 16}), -2.5, 0.0, 1.0), (Words{12, 8, 0}));
  EXPECT_EQ(Drawn(NewImage(1, 3, 1), Reds(1, 4, {2, 4, 8, 16}), 0.0, -2.5, 1.0), (Words{12, 8, 0}));
}

TEST(DrawPicture, EveryPixelIsRewrittenOpaque) {
  struct Row {
    int format;
    std::uint32_t before, after;
  };
  for (const Row& row : std::vector<Row>{
           {1, 0x44332211, 0xFF332211},
           {2, 0x44332211, 0x443322FF},
           {3, 0x44332211, 0xFF332211},
           {4, 0x44332211, 0x443322FF},
           {5, 0x44332211, 0xFF332211},
           {6, 0x44332211, 0x443322FF},
           {8, 0x44332211, 0x00332211},
           {7, 0x44332211, 0x44332211},
           {0, 0x44332211, 0x44332211},
       }) {
    SCOPED_TRACE(FormatName(row.format));
    const Image white = NewImage(2, 1, 1, 0x00FFFFFF);
    Image covered = NewImage(2, 1, row.format, row.before);
    EXPECT_TRUE(DrawPicture(covered, white, nullptr, 0.3, 0.4, 0.0));
    EXPECT_EQ(covered.words, Words(2, row.after));
    Image elsewhere = NewImage(2, 1, row.format, row.before);
    EXPECT_TRUE(DrawPicture(elsewhere, white, nullptr, 5.0, 0.0, 1.0));
    EXPECT_EQ(elsewhere.words, Words(2, row.after));
  }
}

// Red 16, green 32, blue 48 in the source's own layout, half of them on black: 8, 16, 24. The
// source's fourth byte changes nothing. A format without pixels is black.
TEST(DrawPicture, FormatsOfBothPicturesAreObeyed) {
  struct Row {
    int from;
    std::uint32_t word;
    int to;
    std::uint32_t expected;
  };
  for (const Row& row : std::vector<Row>{
           {1, 0x00302010, 2, 0x181008FF},
           {2, 0x30201077, 8, 0x00081018},
           {8, 0x99102030, 3, 0xFF181008},
           {4, 0x30201000, 4, 0x181008FF},
           {5, 0xFF302010, 6, 0x181008FF},
           {6, 0x302010FF, 5, 0xFF181008},
           {8, 0x00102030, 8, 0x00081018},
           {7, 0xFFFFFFFF, 1, 0xFF000000},
       }) {
    SCOPED_TRACE(FormatName(row.from) + FormatName(row.to));
    Image destination = NewImage(1, 1, row.to);
    EXPECT_TRUE(DrawPicture(destination, {1, 1, row.from, {row.word}}, nullptr, 0.0, 0.0, 0.5));
    EXPECT_EQ(destination.words, Words{row.expected});
  }
}

// Alpha 2: rem = -1, the destination is not used: 2 * 100, 2 * 200 kept to 255.
// Alpha -1: rem = 2: -100 + 2 * 150; -200 + 2 * 50 = -100; -100 + 2 * 200 = 300.
// Alpha 0.3: rem = 0.7: 101 * 0.3 = 30.3, 51 * 0.7 = 35.7.
TEST(DrawPicture, OpacityIsNotKeptWithinBounds) {
  EXPECT_EQ(Drawn(Reds(2, 1, {50, 50}), Reds(2, 1, {100, 200}), 0.0, 0.0, 2.0), (Words{200, 255}));
  EXPECT_EQ(Drawn(Reds(3, 1, {150, 50, 200}), Reds(3, 1, {100, 200, 100}), 0.0, 0.0, -1.0),
            (Words{200, 0, 255}));
  EXPECT_EQ(Drawn(Reds(1, 1, {51}), Reds(1, 1, {101}), 0.0, 0.0, 0.3), (Words{65}));
}

// Every weight is 1e7. Samples of 2e9: two are 4e9 - 2^32 < 0, four 8e9 - 2 * 2^32 = -589934592.
// Samples of 1.4e9: two are 2.8e9 - 2^32 < 0, four 5.6e9 - 2^32 = 1305032704.
TEST(DrawPicture, SumsOfChannelsWrap) {
  EXPECT_EQ(Drawn(NewImage(2, 2, 1), NewImage(2, 2, 1, 200), 0.5, 0.5, 4e7), (Words{255, 0, 0, 0}));
  EXPECT_EQ(Drawn(NewImage(2, 2, 1), NewImage(2, 2, 1, 140), 0.5, 0.5, 4e7),
            (Words{255, 0, 0, 255}));
}

// 215 * 1e7 = 2.15e9 is above 2^31 - 1 = 2147483647 and gives -2^31; 214 * 1e7 does not.
// -1e7: 200 gives -2e9, and 255 * (1e7 + 1) of the destination gives -2^31: together
// -4147483648 + 2^32 = 147483648. 2^24 * 127 = 2130706432 fits, 2^24 * 128 = 2^31 does not.
TEST(DrawPicture, ProductsThatDoNotFitGiveTheSmallestInteger) {
  EXPECT_EQ(Drawn(NewImage(2, 1, 1), Reds(2, 1, {214, 215}), 0.0, 0.0, 1e7), (Words{255, 0}));
  EXPECT_EQ(Drawn(Reds(1, 1, {255}), Reds(1, 1, {200}), 0.0, 0.0, -1e7), (Words{255}));
  EXPECT_EQ(Drawn(NewImage(2, 1, 1), Reds(2, 1, {127, 128}), 0.0, 0.0, 16777216.0),
            (Words{255, 0}));
}

// One, two, two and four samples of -2^31 each: the wrapped sums are -2^31 or 0. rem is NaN or
// -infinity, so the destination's 9 is not used; where no sample lies it stays.
TEST(DrawPicture, AnOpacityThatIsNoNumberBlackensWhatTheSourceCovers) {
  for (const double alpha : {kNaN, kInfinity}) {
    EXPECT_EQ(Drawn(NewImage(3, 3, 1, 9), NewImage(2, 2, 1, 200), 1.0, 1.0, alpha),
              (Words{9, 9, 9, 9, 0, 0, 9, 0, 0}));
  }
}

// All these have the shift -2^31 or 2^31 - 1: source columns near -2^31 or 2^31, none of them
// there.
TEST(DrawPicture, OffsetsBeyondTheIntegersLeaveTheColours) {
  for (const double offset : {kNaN, kInfinity, -kInfinity, 1e300, -1e300, 2147483648.0,
                              -2147483648.0, -2147483649.0, 2147483647.5}) {
    SCOPED_TRACE(offset);
    const Words before = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(Drawn(Reds(3, 2, before), NewImage(2, 2, 1, 200), offset, 0.0, 1.0), before);
    EXPECT_EQ(Drawn(Reds(3, 2, before), NewImage(2, 2, 1, 200), 0.0, offset, 1.0), before);
  }
}

// One pixel of 16 under the upper-left weight. In units u = 2^-54: 0.7 is stored as 0.7 - 0.8 u;
// times 0.375 it is 0.2625 - 0.3 u, halfway between two doubles, and goes to 0.2625 - 0.8 u; times
// 5 1.3125 - 4 u, a double; 16 times that is less than 21. Opacity first would give 3.5 * 0.375
// * 16.
TEST(DrawPicture, WeightsAreMultipliedByTheOpacityLast) {
  EXPECT_EQ(Drawn(NewImage(2, 2, 1), Reds(1, 1, {16}), 0.375, 0.7, 5.0).at(3), 20u);
}

// Black on 5 and 25, ax = ay = 1/8, opacity 0.6. In units u = 2^-53, 0.6 is stored as 0.6 - 0.2 u;
// the weights, times 64: 0.6 - 0.2 u; 4.2 + 1.6 u; 29.4 - 12.8 u; 4.2 + 1.6 u. Subtracted in order
// from 1: 0.990625 - 0.2 u; 0.925 - 0.6 u; 0.465625 - 0.4 u; 0.4 - 0.3 u.
// 5 times: 2 - 1.5 u -> 2 - 2 u, so 1 (2 with the weights summed first).
// 25 times: 10 - 7.5 u -> 10 (with the last two exchanged, 0.4 - 0.8 u: 10 - 16 u, so 9).
TEST(DrawPicture, UsedWeightsAreSubtractedOneAtATime) {
  EXPECT_EQ(Drawn(NewImage(2, 2, 1, 5), NewImage(2, 2, 1), 0.125, 0.125, 0.6).at(3), 1u);
  EXPECT_EQ(Drawn(NewImage(2, 2, 1, 25), NewImage(2, 2, 1), 0.125, 0.125, 0.6).at(3), 10u);
}

// 255 removes the sample: 40 stays. 0 keeps it. 51: w = 204 / 255 = 0.8 (as stored, a little
// above): 200 * 0.8 = 160; rem = 0.2 (as stored, a little below): 41 * 0.2 = 8.2.
TEST(DrawPicture, TheMaskTakesWeightAway) {
  EXPECT_EQ(DrawnMasked(Reds(3, 1, {40, 40, 41}), Reds(3, 1, {200, 200, 200}),
                        Reds(3, 1, {255, 0, 51}), 0.0, 0.0, 1.0),
            (Words{40, 200, 168}));
  // All four samples removed; then three: 0.25 of 100, 0.75 of 80.
  EXPECT_EQ(DrawnMasked(NewImage(2, 2, 1, 80), NewImage(2, 2, 1, 100), NewImage(2, 2, 1, 255), 0.5,
                        0.5, 1.0),
            Words(4, 80));
  EXPECT_EQ(DrawnMasked(NewImage(2, 2, 1, 80), NewImage(2, 2, 1, 100),
                        Reds(2, 2, {255, 255, 255, 0}), 0.5, 0.5, 1.0)
                .at(3),
            85u);
}

// 15 * 0.75 / 255 = 3/68, stored above it (3 * 2^57 / 68 has the fraction 10/17, rounded up), and
// 136 times that is 6. Divided before multiplied, 15/255 = 1/17 is stored below and gives 5.
TEST(DrawPicture, TheMaskIsMultipliedBeforeItIsDivided) {
  EXPECT_EQ(DrawnMasked(NewImage(1, 1, 1), Reds(1, 1, {136}), Reds(1, 1, {240}), 0.0, 0.0, 0.75),
            (Words{6}));
}

// Red 0 draws, red 255 does not, whatever the other bytes hold. Without pixels it is 0.
TEST(DrawPicture, TheMasksFormatTellsItsRed) {
  struct Row {
    int format;
    std::uint32_t word, expected;
  };
  for (const Row& row : std::vector<Row>{
           {1, 0xFFFFFF00, 200},
           {1, 0x000000FF, 40},
           {2, 0xFFFF00FF, 200},
           {2, 0x0000FF00, 40},
           {8, 0xFF00FFFF, 200},
           {8, 0x00FF0000, 40},
           {7, 0xFFFFFFFF, 200},
       }) {
    SCOPED_TRACE(FormatName(row.format));
    EXPECT_EQ(DrawnMasked(Reds(1, 1, {40}), Reds(1, 1, {200}), {1, 1, row.format, {row.word}}, 0.0,
                          0.0, 1.0),
              Words{row.expected});
  }
}

// Mask 2 x 2, source 3 x 3: column 2 takes column 1, row 2 takes row 0. Source 7, destination 9.
TEST(DrawPicture, ASmallerMaskRepeatsItsLastColumnAndItsFirstRow) {
  const Image mask = Reds(2, 2, {255, 0, 0, 255});
  EXPECT_EQ(DrawnMasked(NewImage(3, 3, 1, 9), NewImage(3, 3, 1, 7), mask, 0.0, 0.0, 1.0),
            (Words{9, 7, 7, 7, 9, 9, 9, 7, 7}));
}

TEST(DrawPicture, ALargerMaskIsCutOff) {
  const Image mask = Reds(3, 2, {0, 255, 255, 255, 0, 255});
  EXPECT_EQ(DrawnMasked(NewImage(2, 1, 1, 9), NewImage(2, 1, 1, 7), mask, 0.0, 0.0, 1.0),
            (Words{7, 9}));
}

// The mask's column 1 lies at destination column 3, where the source's column 1 is drawn.
TEST(DrawPicture, TheMaskMovesWithTheSource) {
  EXPECT_EQ(
      DrawnMasked(NewImage(4, 1, 1, 9), NewImage(2, 1, 1, 7), Reds(2, 1, {255, 0}), 2.0, 0.0, 1.0),
      (Words{9, 9, 9, 7}));
}

TEST(DrawPicture, AMaskWithoutPixelsStopsTheDrawing) {
  Image destination = NewImage(1, 1, 1, 0x44332211);
  const Image mask = NewImage(0, 0, 1);
  EXPECT_FALSE(DrawPicture(destination, NewImage(1, 1, 1, 7), &mask, 0.0, 0.0, 1.0));
  EXPECT_EQ(destination.words, Words{0x44332211});
}

TEST(DrawPicture, ASourceWithoutPixelsLeavesTheColours) {
  EXPECT_EQ(Drawn(Reds(2, 1, {3, 4}), NewImage(0, 0, 1), 0.0, 0.0, 1.0), (Words{3, 4}));
}

// One to the right: column 1 takes column 0, and each further one what was just written. Down
// alike. One to the left reads what is not yet written.
TEST(DrawPictureIntoItself, ReadsSeeWhatWasWritten) {
  Image right = Reds(4, 1, {1, 2, 3, 4});
  EXPECT_TRUE(DrawPictureIntoItself(right, nullptr, 1.0, 0.0, 1.0));
  EXPECT_EQ(OpaqueReds(right), (Words{1, 1, 1, 1}));
  Image down = Reds(1, 4, {1, 2, 3, 4});
  EXPECT_TRUE(DrawPictureIntoItself(down, nullptr, 0.0, 1.0, 1.0));
  EXPECT_EQ(OpaqueReds(down), (Words{1, 1, 1, 1}));
  Image left = Reds(4, 1, {1, 2, 3, 4});
  EXPECT_TRUE(DrawPictureIntoItself(left, nullptr, -1.0, 0.0, 1.0));
  EXPECT_EQ(OpaqueReds(left), (Words{2, 3, 4, 4}));
}

// Column 0: half of 100, half of its own 100. Column 1: half of column 0, half of its own 0: 50.
// (rem is 0.5 at column 0 only: samples 0 and 1 use up the weight elsewhere.) Column 2: 25.
TEST(DrawPictureIntoItself, HalvesRunOn) {
  Image picture = Reds(3, 1, {100, 0, 0});
  EXPECT_TRUE(DrawPictureIntoItself(picture, nullptr, 0.5, 0.0, 1.0));
  EXPECT_EQ(OpaqueReds(picture), (Words{100, 50, 25}));
}

// Column 1 asks mask column 0, which is black: drawn. Column 2 asks column 1, now white: left out.
TEST(DrawPicture, AMaskThatIsTheDestinationIsReadAsWritten) {
  Image destination = Reds(3, 1, {0, 0, 0});
  const Image source = NewImage(3, 1, 1, 255);
  EXPECT_TRUE(DrawPicture(destination, source, &destination, 1.0, 0.0, 1.0));
  EXPECT_EQ(OpaqueReds(destination), (Words{0, 255, 0}));
}

}  // namespace
}  // namespace oracle
