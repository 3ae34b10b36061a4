// Both passes in vector instructions, at every level that the processor has, against the passes as
// defined: bit for bit, with inaccessible memory next to sources and results.
#include "resample/lane_passes.h"

#include <gtest/gtest.h>

#include "tests/resample/lane_stage.h"
#include "tests/resample/tap_lists.h"

namespace {

using resample_tests::BuiltLists;
using resample_tests::Comparison;
using resample_tests::kBicubic;
using resample_tests::kBox;
using resample_tests::Kernel;
using resample_tests::kKernels;
using resample_tests::kLanczos3;
using resample_tests::kLanczos8;
using resample_tests::kLayouts;
using resample_tests::kMitchell;
using resample_tests::kPictures;
using resample_tests::kTriangle;
using resample_tests::Levels;
using resample_tests::OpenCounts;
using resample_tests::Picture;
using resample_tests::Source;
using support::Random;

struct Size {
  int width, height;
};

struct LaneCase {
  const Kernel& kernel;
  Size from, to;
  Picture picture = Picture::kNoise;
  PixelLayout sourceLayout = PixelLayout::kRedFirst;
  PixelLayout resultLayout = PixelLayout::kRedFirst;

  std::string Text() const {
    return std::string(kernel.name) + ", " + std::to_string(from.width) + "x" +
           std::to_string(from.height) + " -> " + std::to_string(to.width) + "x" +
           std::to_string(to.height) + ", picture " + std::to_string(static_cast<int>(picture)) +
           ", layouts " + std::to_string(static_cast<int>(sourceLayout)) + " -> " +
           std::to_string(static_cast<int>(resultLayout));
  }
};

// Compares at all levels. Empty, or where the first difference is.
std::string Difference(const LaneCase& c, Random& random, OpenCounts& counts) {
  const Source source(c.from.width, c.from.height, c.sourceLayout, c.picture, random);
  const BuiltLists columns(c.kernel, c.from.width, c.to.width, Axis::kAlongRows);
  const BuiltLists rows(c.kernel, c.from.height, c.to.height, Axis::kDownColumns);
  const TapSearch search = c.kernel.search(c.from.height, c.to.height, Axis::kDownColumns);
  const Comparison comparison(source, columns, rows, search.Span(c.from.height), c.resultLayout,
                              random);
  for (const VectorLevel level : Levels()) {
    const int row = comparison.FirstOtherRow(level, counts);
    if (row == Comparison::kSame) continue;
    return c.Text() + ", level " + std::to_string(static_cast<int>(level)) + ", row " +
           std::to_string(row);
  }
  return "";
}

class LanePassesOf : public testing::TestWithParam<int> {
 protected:
  const Kernel& Subject() const { return kKernels[GetParam()]; }
};

// Every pair of widths, and of heights.
TEST_P(LanePassesOf, AreThePassesAsDefinedForEverySizeUpTo40) {
  Random random(static_cast<std::uint32_t>(33104000 + GetParam()));
  OpenCounts counts;
  int cases = 0;
  for (int from = 1; from <= 40; ++from) {
    for (int to = 1; to <= 40; ++to) {
      // Heights take all pairs, too: multiplied by 3 and 7, which 41 does not divide.
      const Size source = {from, from * 3 % 41};
      const Size result = {to, to * 7 % 41};
      const LaneCase c = {
          Subject(),          source, result, kPictures[cases % 8], kLayouts[cases / 3 % 3],
          kLayouts[cases % 3]};
      ASSERT_EQ(Difference(c, random, counts), "");
      ++cases;
    }
  }
  EXPECT_EQ(cases, 40 * 40);
}

TEST_P(LanePassesOf, AreThePassesAsDefinedForLargerSizes) {
  const Size sizes[][2] = {{{257, 130}, {64, 33}}, {{64, 33}, {257, 130}}, {{1, 500}, {3, 7}},
                           {{500, 1}, {7, 3}},     {{2, 2}, {300, 300}},   {{300, 300}, {2, 2}},
                           {{128, 64}, {64, 32}},  {{64, 32}, {128, 64}},  {{33, 9}, {1100, 4}},
                           {{1100, 4}, {33, 9}},   {{90, 60}, {30, 20}},   {{30, 20}, {90, 60}},
                           {{70, 70}, {70, 70}},   {{100, 90}, {99, 91}}};
  Random random(static_cast<std::uint32_t>(33104100 + GetParam()));
  OpenCounts counts;
  int cases = 0;
  for (const auto& [from, to] : sizes) {
    for (const Picture picture : kPictures) {
      const LaneCase c = {
          Subject(), from, to, picture, kLayouts[cases % 3], kLayouts[cases / 3 % 3]};
      ASSERT_EQ(Difference(c, random, counts), "");
      ++cases;
    }
  }
  // The box has only means. The others need their fine weights, and the definition.
  const bool onlyMeans = &Subject() == &kBox;
  EXPECT_EQ(counts.along.coarse == 0, onlyMeans);
  EXPECT_EQ(counts.along.fine == 0, onlyMeans);
  EXPECT_EQ(counts.down.coarse == 0, onlyMeans);
  EXPECT_EQ(counts.down.fine == 0, onlyMeans);
}

INSTANTIATE_TEST_SUITE_P(Kernels, LanePassesOf, testing::Range(0, 7));

TEST(LanePasses, ConvertBetweenAllLayouts) {
  Random random(33104200);
  OpenCounts counts;
  for (const PixelLayout from : kLayouts) {
    for (const PixelLayout to : kLayouts) {
      for (const Kernel& kernel : kKernels) {
        for (const Picture picture : {Picture::kNoise, Picture::kBlackOrWhite}) {
          const LaneCase c = {kernel, {37, 23}, {51, 17}, picture, from, to};
          ASSERT_EQ(Difference(c, random, counts), "");
        }
      }
    }
  }
}

// Where all weights are multiples of a power of two, nothing is ever open.
TEST(LanePasses, LeaveNothingOpenWhereIntegersAreExact) {
  const LaneCase cases[] = {{kTriangle, {40, 30}, {40, 30}},  {kTriangle, {40, 30}, {80, 60}},
                            {kTriangle, {40, 30}, {160, 60}}, {kBicubic, {40, 30}, {40, 30}},
                            {kBox, {40, 30}, {80, 60}},       {kBox, {40, 30}, {13, 11}},
                            {kBox, {40, 30}, {20, 15}},       {kBox, {40, 30}, {51, 37}}};
  Random random(33104300);
  for (const LaneCase& row : cases) {
    for (const Picture picture : kPictures) {
      const LaneCase c = {row.kernel, row.from, row.to, picture};
      OpenCounts counts;
      ASSERT_EQ(Difference(c, random, counts), "");
      EXPECT_EQ(counts.along.coarse + counts.along.fine, 0) << c.Text();
      EXPECT_EQ(counts.down.coarse + counts.down.fine, 0) << c.Text();
    }
  }
}

// The mean of black and white is half of 255, which rounds up: no sum is near enough to tell.
TEST(LanePasses, AskTheDefinitionWhereSumsCannotTell) {
  Random random(33104301);
  for (const Picture picture : {Picture::kColumns, Picture::kRows}) {
    OpenCounts counts;
    const LaneCase c = {kLanczos3, {128, 128}, {64, 64}, picture};
    ASSERT_EQ(Difference(c, random, counts), "");
    const bool alongRows = picture == Picture::kColumns;
    const OpenChannels& open = alongRows ? counts.along : counts.down;
    EXPECT_GT(open.fine, 1000);
    EXPECT_GE(open.coarse, open.fine);
  }
}

struct WayRow {
  const Kernel& kernel;
  Size from, to;
  bool isFloat;  // where there is single precision
};

// Integers leave some channels to finer sums that single precision leaves to the definition.
TEST(LanePasses, TakeSinglePrecisionForFewTapsThatIntegersLeaveOpen) {
  const WayRow rows[] = {
      {kLanczos3, {300, 200}, {150, 100}, false}, {kLanczos3, {150, 100}, {300, 200}, true},
      {kMitchell, {300, 200}, {150, 100}, true},  {kLanczos8, {150, 100}, {300, 200}, true},
      {kLanczos3, {160, 110}, {170, 120}, true},  {kLanczos3, {900, 600}, {90, 60}, false},
      {kLanczos8, {300, 200}, {150, 100}, false}, {kLanczos3, {300, 600}, {150, 30}, false}};
  Random random(33104306);
  for (const WayRow& row : rows) {
    const Source source(row.from.width, row.from.height, PixelLayout::kRedFirst, Picture::kNoise,
                        random);
    const BuiltLists columns(row.kernel, row.from.width, row.to.width, Axis::kAlongRows);
    const BuiltLists lists(row.kernel, row.from.height, row.to.height, Axis::kDownColumns);
    const TapSearch search = row.kernel.search(row.from.height, row.to.height, Axis::kDownColumns);
    const Comparison comparison(source, columns, lists, search.Span(row.from.height),
                                PixelLayout::kBlueFirst, random);
    for (const VectorLevel level : Levels()) {
      OpenCounts counts;
      ASSERT_EQ(comparison.FirstOtherRow(level, counts), Comparison::kSame);
      const bool isFloat = row.isFloat && level >= VectorLevel::kAvx2;
      const std::string text =
          std::string(row.kernel.name) + ", " + std::to_string(row.from.width) + " -> " +
          std::to_string(row.to.width) + ", level " + std::to_string(static_cast<int>(level));
      for (const OpenChannels& open : {counts.along, counts.down}) {
        EXPECT_GT(open.coarse, 0) << text;
        EXPECT_EQ(open.coarse == open.fine, isFloat) << text;
      }
    }
  }
}

// Means of many pixels that are halves, which round up, and those just below.
TEST(LanePasses, RoundHalvesUpInMeansOfManyPixels) {
  constexpr int kOthers = 9;  // rows or columns beside each other
  Random random(33104304);
  OpenCounts counts;
  for (int pixels = 2; pixels <= 4096; pixels += pixels < 400 ? 2 : 154) {
    for (const bool alongRows : {true, false}) {
      const Size from = alongRows ? Size{pixels, kOthers} : Size{kOthers, pixels};
      const Size to = alongRows ? Size{1, kOthers} : Size{kOthers, 1};
      const Source source(from.width, from.height, PixelLayout::kRedFirst, Picture::kBlack, random);
      for (int other = 0; other < kOthers; ++other) {
        // Half of the pixels one below the others; blue falls short of that by one.
        const auto level = static_cast<std::uint32_t>(random.Between(1, 255));
        for (int k = 0; k < pixels; ++k) {
          const std::uint32_t value = level - (k % 2 != 0 ? 1 : 0);
          const std::uint32_t blue = k == 0 ? value - 1 : value;
          const std::uint32_t word = value | value << 8 | blue << 16;
          (alongRows ? source.Row(other)[k] : source.Row(k)[other]) = word;
        }
      }
      const BuiltLists columns(kBox, from.width, to.width, Axis::kAlongRows);
      const BuiltLists rows(kBox, from.height, to.height, Axis::kDownColumns);
      const Comparison comparison(source, columns, rows, from.height, PixelLayout::kRedFirst,
                                  random);
      for (const VectorLevel level : Levels()) {
        ASSERT_EQ(comparison.FirstOtherRow(level, counts), Comparison::kSame)
            << pixels << (alongRows ? " along rows" : " down columns");
      }
    }
  }
}

}  // namespace
