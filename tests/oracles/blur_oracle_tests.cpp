// Proves the blur oracle: every expected word here is worked out by hand.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/oracles/blur.h"
#include "tests/oracles/red_pictures.h"

namespace oracle {
namespace {

Words BlurredReds(int width, int height, const Words& reds, double radius) {
  const BlurResult result = Blur(Reds(width, height, reds), radius, 1);
  EXPECT_EQ(result.outcome, BlurOutcome::kBlurred);
  return OpaqueReds(result.image);
}

// (0, 0, 255) / 3 and (0, 255, 255) / 3.
TEST(Blur, ARadiusOfOneAveragesThree) {
  EXPECT_EQ(BlurredReds(2, 1, {0, 255}, 1.0), (Words{85, 170}));
  EXPECT_EQ(BlurredReds(1, 2, {0, 255}, 1.0), (Words{85, 170}));
}

// Windows of five over (0, 90, 30): 0+0+0+90+30 = 120; 0+0+90+30+30 = 150; 0+90+30+30+30 = 180.
TEST(Blur, EdgePixelsAreRepeated) {
  EXPECT_EQ(BlurredReds(3, 1, {0, 90, 30}, 2.0), (Words{24, 30, 36}));
  EXPECT_EQ(BlurredReds(1, 3, {0, 90, 30}, 2.0), (Words{24, 30, 36}));
}

// Windows of three over (10, 20, 40, 80, 5): 40/3, 70/3, 140/3, 125/3, 90/3.
TEST(Blur, WindowsAreCentred) {
  EXPECT_EQ(BlurredReds(5, 1, {10, 20, 40, 80, 5}, 1.0), (Words{13, 23, 46, 41, 30}));
}

// Column means at the middle row: (0+2+3)/3 = 1, (2+2+1)/3 = 1, (1+1+0)/3 = 0; their mean 2/3 is 0,
// though the nine pixels have the mean 12/9.
// Top row: (0+0+2)/3 = 0, (2+2+2)/3 = 2, (1+1+1)/3 = 1: rows of three 2/3, 3/3, 4/3.
// Bottom row: (2+3+3)/3 = 2, (2+1+1)/3 = 1, (1+0+0)/3 = 0: 5/3, 3/3, 1/3.
// Middle row: 1, 1, 0: 3/3, 2/3, 1/3.
TEST(Blur, EachPassTruncates) {
  EXPECT_EQ(BlurredReds(3, 3, {0, 2, 1, 2, 2, 1, 3, 1, 0}, 1.0),
            (Words{0, 1, 1, 1, 0, 0, 1, 1, 0}));
}

TEST(Blur, OneColourStaysAndBecomesOpaque) {
  const BlurResult result = Blur(NewImage(4, 3, 2, 0x030201AA), 2.0, 2);
  EXPECT_EQ(result.outcome, BlurOutcome::kBlurred);
  EXPECT_EQ(result.image, NewImage(4, 3, 2, 0x030201FF));
  EXPECT_EQ(BlurredReds(3, 3, Words(9, 255), 3.0), Words(9, 255));
}

// Red 0, 30: (0+0+30)/3 = 10, (0+30+30)/3 = 20. Green 33, 3: 69/3 = 23, 39/3 = 13. Blue 1, 0: 2/3.
TEST(Blur, ChannelsAreIndependent) {
  const BlurResult result = Blur({2, 1, 1, {0x55012100, 0xAA00031E}}, 1.0, 5);
  EXPECT_EQ(result.image, (Image{2, 1, 5, {0xFF00170A, 0xFF000D14}}));
}

TEST(Blur, RadiiBelowOneGiveTheReceiver) {
  const Image source = Reds(2, 1, {0, 255});
  for (const double radius :
       {0.9, 0.0, -0.0, -1.0, -7.5, 2147483648.0, -2147483649.0, 1e300,
        std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    SCOPED_TRACE(radius);
    const BlurResult result = Blur(source, radius, 8);
    EXPECT_EQ(result.outcome, BlurOutcome::kReceiver);
    EXPECT_EQ(result.image, source);
  }
}

TEST(Blur, RadiiAreTruncated) {
  EXPECT_EQ(BlurredReds(2, 1, {0, 255}, 1.7), (Words{85, 170}));
  EXPECT_EQ(BlurredReds(3, 1, {0, 90, 30}, 2.999), (Words{24, 30, 36}));
  EXPECT_EQ(WholeRadius(2147483647.9), 2147483647);
  EXPECT_EQ(WholeRadius(-2147483648.9), std::numeric_limits<std::int32_t>::min());
}

TEST(Blur, SizesThatNoPictureCanHaveGiveNil) {
  EXPECT_EQ(Blur(NewImage(32768, 1, 1), 1.0, 1).outcome, BlurOutcome::kNil);
  EXPECT_EQ(Blur(NewImage(1, 32768, 1), 1.0, 1).outcome, BlurOutcome::kNil);
  EXPECT_EQ(Blur(NewImage(0, 0, 1), 1.0, 1).outcome, BlurOutcome::kNil);
  EXPECT_EQ(Blur(NewImage(32768, 1, 1), 2000000.0, 1).outcome, BlurOutcome::kNil);
  EXPECT_EQ(Blur(NewImage(32768, 1, 1), 0.5, 1).outcome, BlurOutcome::kReceiver);
  const BlurResult wide = Blur(NewImage(32767, 1, 1, 7), 1.0, 1);
  EXPECT_EQ(wide.outcome, BlurOutcome::kBlurred);
  EXPECT_EQ(wide.image, NewImage(32767, 1, 1, 0xFF000007));
}

// (2 * 1048574 + 2) * 1024 = 2147481600; one more radius is 2147483648, above 2^31 - 1.
TEST(Blur, ATableThatIsTooLargeLeavesTheNewPicture) {
  EXPECT_TRUE(BlurTableFits(1048574));
  EXPECT_FALSE(BlurTableFits(1048575));
  for (const double radius : {1048575.0, 2097151.0, 2097152.0, 2147483647.5}) {
    const BlurResult result = Blur(Reds(2, 1, {0, 255}), radius, 6, 0x12345678);
    EXPECT_EQ(result.outcome, BlurOutcome::kUnblurred);
    EXPECT_EQ(result.image, NewImage(2, 1, 6, 0x12345678));
  }
}

// r = 1048574: 255 r / (2r + 1) is just below 127.5, 255 (r + 1) / (2r + 1) just above.
TEST(Blur, TheLargestRadiusStillBlurs) {
  EXPECT_EQ(BlurredReds(2, 1, {0, 255}, 1048574.0), (Words{127, 127}));
}

// One pixel of red 10, green 20, blue 30 (0A, 14, 1E). The first pass writes it in the result's
// layout, the second reads that word in the source's. 1 -> 2: 1E140AFF read as FF, 0A, 14.
// 2 -> 1: FF1E140A as 14, 1E, FF. 8 -> 1: FF1E140A as 1E, 14, 0A. 1 -> 8: 000A141E as 1E, 14, 0A.
// 8 -> 2: 1E140AFF as 14, 0A, FF. 2 -> 8: 000A141E as 14, 0A, 00. Without pixels: black.
TEST(Blur, TheSecondPassReadsTheSourcesLayout) {
  struct Row {
    int from;
    std::uint32_t word;
    int to;
    std::uint32_t expected;
  };
  for (const Row& row : std::vector<Row>{
           {1, 0x001E140A, 3, 0xFF1E140A},
           {4, 0x1E140A00, 6, 0x1E140AFF},
           {8, 0x770A141E, 8, 0x000A141E},
           {1, 0x001E140A, 2, 0x140AFFFF},
           {3, 0x001E140A, 6, 0x140AFFFF},
           {2, 0x1E140A00, 1, 0xFFFF1E14},
           {6, 0x1E140A00, 5, 0xFFFF1E14},
           {8, 0x000A141E, 1, 0xFF0A141E},
           {5, 0x001E140A, 8, 0x001E140A},
           {8, 0x000A141E, 2, 0xFF0A14FF},
           {4, 0x1E140A00, 8, 0x00140A00},
           {7, 0xFFFFFFFF, 1, 0xFF000000},
           {7, 0xFFFFFFFF, 8, 0x00000000},
           {1, 0x001E140A, 7, 0x12345678},
           {7, 0xFFFFFFFF, 7, 0x12345678},
       }) {
    SCOPED_TRACE(FormatName(row.from) + FormatName(row.to));
    const BlurResult result = Blur({1, 1, row.from, {row.word}}, 1.0, row.to, 0x12345678);
    EXPECT_EQ(result.outcome, BlurOutcome::kBlurred);
    EXPECT_EQ(result.image, (Image{1, 1, row.to, {row.expected}}));
  }
}

// 1 -> 2 over reds 0, 255 and greens 9, 0. First pass: 000900FF, 0000FFFF. Read as format 1: reds
// 255, 255; greens 0, 255; blues 9, 0. Means: 255, 255; 85, 170; 6, 3.
TEST(Blur, ExchangedChannelsAreAveragedWhereTheyLand) {
  const BlurResult result = Blur({2, 1, 1, {0x00000900, 0x000000FF}}, 1.0, 2);
  EXPECT_EQ(result.image, (Image{2, 1, 2, {0x0655FFFF, 0x03AAFFFF}}));
}

// Both rows are (0, 255) after the first pass, and both are row 0: (85, 170), then again
// (85+85+170)/3 = 113, (85+170+170)/3 = 141. One column: rows 24, 30, 36; row 2 ends in row 0.
TEST(Blur, RowsBeyondTheResultLandOnRowZero) {
  const BlurResult twice = Blur(Reds(2, 2, {0, 255, 0, 255}), 1.0, 1, 0, 2, 1);
  EXPECT_EQ(OpaqueReds(twice.image), (Words{113, 141}));
  const BlurResult column = Blur(Reds(1, 3, {0, 90, 30}), 2.0, 1, 0, 1, 2);
  EXPECT_EQ(OpaqueReds(column.image), (Words{36, 30}));
}

TEST(Blur, ALargerResultKeepsItsRest) {
  const BlurResult result = Blur(Reds(2, 1, {0, 255}), 1.0, 1, 0xFF000009, 3, 2);
  EXPECT_EQ(OpaqueReds(result.image), (Words{85, 170, 9, 9, 9, 9}));
}

TEST(Blur, ANarrowerResultIsNil) {
  EXPECT_EQ(Blur(Reds(2, 1, {0, 255}), 1.0, 1, 0, 1).outcome, BlurOutcome::kNil);
  EXPECT_EQ(Blur(Reds(2, 1, {0, 255}), 2000000.0, 1, 0, 1).outcome, BlurOutcome::kNil);
  EXPECT_THROW(Blur(Reds(1, 1, {0}), 1.0, 1, 0, 1, 0), std::invalid_argument);
}

}  // namespace
}  // namespace oracle
