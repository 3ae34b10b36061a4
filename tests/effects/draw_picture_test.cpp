// DrawPictureFZVQ through the loaded plug-in: results worked out by hand, masks, pixel formats.
#include <gtest/gtest.h>

#include "tests/effects/drawing.h"
#include "tests/support/case_name.h"

namespace {

using oracle::Image;
using support::Words;

constexpr auto kDesktop = host::ApplicationKind::kDesktop;
constexpr auto kConsole = host::ApplicationKind::kConsole;

struct DrawCase {
  const char* name;
  host::ApplicationKind kind;
  Image dest, source;
  std::optional<Image> mask;
  Placement at;
  Image expected;
};

class DrawByHand : public testing::TestWithParam<DrawCase> {};

TEST_P(DrawByHand, GivesTheseWords) {
  const DrawCase& c = GetParam();
  EXPECT_EQ(support::Difference(c.expected, Drawn(c.dest, c.source, c.at, c.mask, c.kind)), "");
}

const Image kWhite3 = oracle::NewImage(3, 3, 5, 0xFFFFFFFF);

// clang-format off
const DrawCase kCases[] = {
    // One weight of 1: the source's colour exactly, from red-first to alpha-first, opaque; the rest keeps its colour.
    {"WholePixelsTakeTheSourceExactly", kDesktop, Words(6, {{0x03020100, 0x06050400, 0x09080700}}),
     Words(1, {{0x00C0B0A0}}), {}, {1, 0, 1}, Words(6, {{0x030201FF, 0xC0B0A0FF, 0x090807FF}})},
    // Each of four samples gives trunc(255/4) = 63: 252 inside, 126 along the edges, 63 in the corners.
    {"HalvesOfWhiteOnBlackLoseThree", kDesktop, oracle::NewImage(4, 4, 5, 0), oracle::NewImage(3, 3, 5, 0xFF), {},
     {0.5, 0.5, 1},
     Words(5, {{0xFF00003F, 0xFF00007E, 0xFF00007E, 0xFF00003F}, {0xFF00007E, 0xFF0000FC, 0xFF0000FC, 0xFF00007E},
               {0xFF00007E, 0xFF0000FC, 0xFF0000FC, 0xFF00007E}, {0xFF00003F, 0xFF00007E, 0xFF00007E, 0xFF00003F}})},
    // The same on white: corners 63 + trunc(255·0.75) = 254, edges 126 + trunc(127.5) = 253, inside nothing is left.
    {"HalvesOfWhiteOnWhiteAreFilledUp", kDesktop, oracle::NewImage(4, 4, 5, 0xFF), oracle::NewImage(3, 3, 5, 0xFF), {},
     {0.5, 0.5, 1},
     Words(5, {{0xFF0000FE, 0xFF0000FD, 0xFF0000FD, 0xFF0000FE}, {0xFF0000FD, 0xFF0000FC, 0xFF0000FC, 0xFF0000FD},
               {0xFF0000FD, 0xFF0000FC, 0xFF0000FC, 0xFF0000FD}, {0xFF0000FE, 0xFF0000FD, 0xFF0000FD, 0xFF0000FE}})},
    // Weights 3/16, 9/16, 3/16, 1/16; at (1, 1) all four: 3 + 18 + 24 + 4 = 49. At (0, 0) only the lower right: 16·3/16 = 3;
    // (1, 0): right below 32·3/16 = 6, left below 16/16 = 1; (0, 1): 16·9/16 = 9, 64·3/16 = 12.
    {"UnequalFractionsWeighByArea", kDesktop, oracle::NewImage(2, 2, 5, 0), Words(5, {{16, 32}, {64, 128}}), {},
     {0.25, 0.75, 1}, Words(5, {{0xFF000003, 0xFF000007}, {0xFF000015, 0xFF000031}})},
    // trunc(50.5) + trunc(5.5) = 55, though the sum of both is 56.
    {"EachShareIsTruncatedByItself", kDesktop, Words(5, {{11}}), Words(5, {{101}}), {}, {0, 0, 0.5},
     Words(5, {{0xFF000037}})},
    // floor(-2.5) = -3, fraction 1/2: columns 2 and 3, 16 + 32; then 32 with half of the old 10; then the old 10.
    {"NegativePositionsAreFloored", kDesktop, Words(5, {{10, 10, 10}}), Words(5, {{8, 16, 32, 64}}), {}, {-2.5, 0, 1},
     Words(5, {{0xFF000030, 0xFF000025, 0xFF00000A}})},
    // The same down a column.
    {"NegativePositionsAreFlooredDownToo", kDesktop, Words(5, {{10}, {10}, {10}}), Words(5, {{8}, {16}, {32}, {64}}), {},
     {0, -2.5, 1}, Words(5, {{0xFF000030}, {0xFF000025}, {0xFF00000A}})},
    // Mask 51 keeps 204/255 = 0.8: trunc(80) + trunc(100·0.19999…) = 99.
    {"AGreyMaskKeepsAPart", kDesktop, Words(5, {{100}}), Words(5, {{100}}), Words(5, {{51}}), {0, 0, 1},
     Words(5, {{0xFF000063}})},
    // 250·0.3/255·17 is 5; with 250/255 formed first it falls just short of it.
    {"AMaskIsMultipliedBeforeItIsDivided", kDesktop, Words(5, {{0}}), Words(5, {{17}}), Words(5, {{5}}), {0, 0, 0.3},
     Words(5, {{0xFF000005}})},
    // Black keeps, white removes; only the mask's red counts.
    {"BlackKeepsAndWhiteRemoves", kDesktop, Words(5, {{1, 2, 3}}), Words(5, {{70, 80, 90}}),
     Words(5, {{0x00FFFF00, 0x000000FF, 0xFFFFFFFF}}), {0, 0, 1}, Words(5, {{0xFF000046, 0xFF000002, 0xFF000003}})},
    // Halves of two pixels, the left one masked away: 100; 60/2 + 100/2; 60/2 + 100/2.
    {"MaskedSamplesLeaveTheirShare", kDesktop, Words(5, {{100, 100, 100}}), Words(5, {{60, 60}}), Words(5, {{255, 0}}),
     {0.5, 0, 1}, Words(5, {{0xFF000064, 0xFF000050, 0xFF000050}})},
    // Removed altogether, the old colours stay.
    {"AWhiteMaskRemovesThePicture", kDesktop, Words(2, {{0x01020304, 0x05060708}}), Words(2, {{0x99999999, 0x88888888}}),
     Words(2, {{0xFFFFFFFF, 0xFFFFFFFF}}), {0.5, 0.5, 1}, Words(2, {{0x010203FF, 0x050607FF}})},
    // Host buffers: blue lowest, a top byte of 0 on drawn and on kept pixels.
    {"HostBuffersGetATopByteOfZero", kConsole, Words(8, {{0x55010203, 0x66040506}}), Words(8, {{0x77A0B0C0}}), {},
     {1, 0, 1}, Words(8, {{0x00010203, 0x00A0B0C0}})},
    // Channel by channel: red 200·0.25 + 4·0.75, green 100·0.25 + 8·0.75, blue 40·0.25 + 12·0.75.
    {"ChannelsKeepTheirMeaningAcrossFormats", kDesktop, Words(3, {{0x110C0804}}), Words(4, {{0x2864C822}}), {},
     {0, 0, 0.25}, Words(3, {{0xFF131F35}})},
    {"AnOpacityOfZeroKeepsEveryColour", kDesktop, Words(5, {{0x00332211, 0x80665544}}), kWhite3, {}, {0.3, 0.7, 0},
     Words(5, {{0xFF332211, 0xFF665544}})},
    // Nothing is left for the old colour and channels saturate: 2·100, 2·200.
    {"AnOpacityAboveOneSaturates", kDesktop, Words(5, {{90, 90}}), Words(5, {{100, 200}}), {}, {0, 0, 2},
     Words(5, {{0xFF0000C8, 0xFF0000FF}})},
    // The old colour counts twice: 2·80 - 100, 2·20 - 100, 2·200 - 100.
    {"ANegativeOpacitySubtracts", kDesktop, Words(5, {{80, 20, 200}}), Words(5, {{100, 100, 100}}), {}, {0, 0, -1},
     Words(5, {{0xFF00003C, 0xFF000000, 0xFF0000FF}})},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(DrawPicture, DrawByHand, testing::ValuesIn(kCases),
                         support::CaseName<DrawCase>);

// A pixel of each picture, in every combination of formats; the mask's green and blue say the
// opposite of its red.
void ExpectFormats(int destFormat, int sourceFormat, int maskFormat, host::ApplicationKind kind) {
  const auto pixel = [](int format, int r, int g, int b, int fourth) {
    return Words(format, {{oracle::Pack(format, r, g, b, fourth)}});
  };
  const Image dest = pixel(destFormat, 10, 20, 30, 77);
  const Image source = pixel(sourceFormat, 200, 150, 50, 3);
  const Image kept = Drawn(dest, source, {}, pixel(maskFormat, 0, 255, 255, 255), kind);
  const Image removed = Drawn(dest, source, {}, pixel(maskFormat, 255, 0, 0, 0), kind);
  EXPECT_EQ(kept.At(0, 0), oracle::PackOpaque(destFormat, 200, 150, 50))
      << sourceFormat << ", " << maskFormat << " -> " << destFormat;
  EXPECT_EQ(removed.At(0, 0), oracle::PackOpaque(destFormat, 10, 20, 30))
      << sourceFormat << ", " << maskFormat << " -> " << destFormat;
}

TEST(DrawPicture, EveryFormatMeetsEveryOther) {
  for (int dest = 1; dest <= 6; ++dest) {
    for (int source = 1; source <= 6; ++source) {
      for (int mask = 1; mask <= 6; ++mask) ExpectFormats(dest, source, mask, kDesktop);
    }
  }
  ExpectFormats(8, 8, 8, kConsole);
  ExpectFormats(8, 8, 8, host::ApplicationKind::kWeb);
}

TEST(DrawPicture, AnAlphaChannelDoesNotWeigh) {
  for (int format : {1, 2}) {
    support::LoadedPlugin plugin;
    const Image clear = Words(format, {{oracle::Pack(format, 90, 60, 30, 0)}});
    host::Picture* source = support::PictureOf(plugin.Host(), clear, {.hasAlphaChannel = true});
    host::Picture* dest =
        support::PictureOf(plugin.Host(), Words(format, {{0, 0}}), {.hasAlphaChannel = true});
    const host::CallReport report =
        plugin.Library().Call("DrawPictureFZVQ", dest, {source, 0, 0, 1.0, 0});
    EXPECT_TRUE(Flag(report));
    EXPECT_EQ(support::Complaints(report), "");
    EXPECT_EQ(dest->Word(0, 0), oracle::PackOpaque(format, 90, 60, 30));
    EXPECT_EQ(dest->Word(1, 0), oracle::PackOpaque(format, 0, 0, 0)) << "a kept pixel is opaque";
  }
}

struct MaskCase {
  const char* name;
  Image mask;
};

class DrawMaskSize : public testing::TestWithParam<MaskCase> {};

// A 3×3 source of 200 over 10; the mask repeats its last column and its first row where it ends.
TEST_P(DrawMaskSize, StaysInsideTheMask) {
  const Image expected = Words(5, {{0xFF0000C8, 0xFF00000A, 0xFF00000A},
                                   {0xFF00000A, 0xFF0000C8, 0xFF0000C8},
                                   {0xFF0000C8, 0xFF00000A, 0xFF00000A}});
  for (const host::Guard guard : {host::Guard::kAfter, host::Guard::kBefore}) {
    support::LoadedPlugin plugin;
    const DrawnPictures pictures(plugin.Host(), oracle::NewImage(3, 3, 5, 10),
                                 oracle::NewImage(3, 3, 5, 200), GetParam().mask, {.guard = guard});
    const host::CallReport report =
        plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 1.0, 0});
    EXPECT_TRUE(Flag(report));
    EXPECT_EQ(support::Complaints(report), "");
    EXPECT_EQ(support::Difference(expected, support::ImageOf(*pictures.dest)), "");
  }
}

const MaskCase kMaskCases[] = {
    {"Own", Words(5, {{0, 255, 255}, {255, 0, 0}, {0, 255, 255}})},
    {"NarrowerAndShorter", Words(5, {{0, 255}, {255, 0}})},
    {"Narrower", Words(5, {{0, 255}, {255, 0}, {0, 255}})},
    {"Shorter", Words(5, {{0, 255, 255}, {255, 0, 0}})},
    {"Larger", Words(5, {{0, 255, 255, 0}, {255, 0, 0, 255}, {0, 255, 255, 0}, {7, 7, 7, 7}})},
};

INSTANTIATE_TEST_SUITE_P(DrawPicture, DrawMaskSize, testing::ValuesIn(kMaskCases),
                         support::CaseName<MaskCase>);

TEST(DrawPicture, AMaskOfOnePixelCountsForAll) {
  EXPECT_EQ(
      Drawn(oracle::NewImage(3, 2, 5, 10), oracle::NewImage(3, 2, 5, 200), {}, Words(5, {{255}})),
      oracle::NewImage(3, 2, 5, 0xFF00000A));
  EXPECT_EQ(
      Drawn(oracle::NewImage(3, 2, 5, 10), oracle::NewImage(3, 2, 5, 200), {}, Words(5, {{0}})),
      oracle::NewImage(3, 2, 5, 0xFF0000C8));
}

// Read as it is written: each pixel takes its already drawn left neighbour.
TEST(DrawPicture, APictureDrawnIntoItselfSmearsItsFirstPixels) {
  support::LoadedPlugin plugin;
  const Image image = Words(5, {{10, 20, 30}, {40, 50, 60}});
  host::Picture* across = support::PictureOf(plugin.Host(), image);
  host::CallReport report =
      plugin.Library().Call("DrawPictureFZVQ", across, {across, 1, 0, 1.0, 0});
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(support::Difference(Words(5, {{0xFF00000A, 0xFF00000A, 0xFF00000A},
                                          {0xFF000028, 0xFF000028, 0xFF000028}}),
                                support::ImageOf(*across)),
            "");
  host::Picture* down = support::PictureOf(plugin.Host(), image);
  report = plugin.Library().Call("DrawPictureFZVQ", down, {down, 0, 1, 1.0, 0});
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(support::Difference(Words(5, {{0xFF00000A, 0xFF000014, 0xFF00001E},
                                          {0xFF00000A, 0xFF000014, 0xFF00001E}}),
                                support::ImageOf(*down)),
            "");
  EXPECT_EQ(down->CacheClears(), 1);
}

// Halves: 0 + half of itself, then half of the new left neighbour and half of itself.
TEST(DrawPicture, APictureDrawnIntoItselfByHalvesReadsWhatItWrote) {
  support::LoadedPlugin plugin;
  host::Picture* picture = support::PictureOf(plugin.Host(), Words(5, {{100, 0, 0, 200}}));
  const host::CallReport report =
      plugin.Library().Call("DrawPictureFZVQ", picture, {picture, 0.5, 0, 1.0, 0});
  EXPECT_EQ(support::Complaints(report), "");
  // 50 + 50; 0 + 50; 0 + 25; 100 + 12.
  EXPECT_EQ(support::Difference(Words(5, {{0xFF000064, 0xFF000032, 0xFF000019, 0xFF000070}}),
                                support::ImageOf(*picture)),
            "");
}

}  // namespace
