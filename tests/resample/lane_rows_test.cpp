// Both passes in vector instructions: what they may forget, copy, and leave alone.
#include <gtest/gtest.h>

#include "tests/resample/lane_stage.h"
#include "tests/resample/tap_lists.h"

namespace {

using resample_tests::BuiltLists;
using resample_tests::Comparison;
using resample_tests::HandMadeLists;
using resample_tests::kBox;
using resample_tests::Kernel;
using resample_tests::kKernels;
using resample_tests::kTriangle;
using resample_tests::Levels;
using resample_tests::OpenCounts;
using resample_tests::Picture;
using resample_tests::Source;
using support::Random;

TEST(LanePasses, DoNotKeepTheListsOfTheColumns) {
  Random random(33104302);
  const Source source(20, 5, PixelLayout::kBlueFirst, Picture::kNoise, random);
  for (const Kernel& kernel : kKernels) {
    const BuiltLists rows(kernel, 5, 1, Axis::kDownColumns);
    for (const VectorLevel level : Levels()) {
      BuiltLists columns(kernel, 20, 9, Axis::kAlongRows);
      std::uint32_t image[9 * 5], kept[9], cleared[9];
      LanePasses first, second;
      ASSERT_TRUE(first.Prepare(source.reader, columns, image, 5, level));
      first.FilterRow(rows[0], PixelLayout::kRedFirst, kept);
      ASSERT_TRUE(second.Prepare(source.reader, columns, image, 5, level));
      columns.Clear();
      second.FilterRow(rows[0], PixelLayout::kRedFirst, cleared);
      EXPECT_EQ(std::memcmp(kept, cleared, sizeof kept), 0) << kernel.name;
    }
  }
}

// Lists of columns that memory was short for are empty, and those beside them are not.
TEST(LanePasses, AreThePassesAsDefinedWhereColumnsAreMissing) {
  Random random(33104307);
  OpenCounts counts;
  const Source source(400, 9, PixelLayout::kAlphaFirst, Picture::kNoise, random);
  for (const Kernel& kernel : kKernels) {
    const BuiltLists rows(kernel, 9, 12, Axis::kDownColumns);
    for (const int to : {200, 300, 400, 500}) {
      for (int round = 0; round < 8; ++round) {
        BuiltLists columns(kernel, 400, to, Axis::kAlongRows);
        const int first = random.Between(0, to - 1);
        const int last = round % 2 == 0 ? first : random.Between(first, to - 1);
        for (std::int32_t i = first; i <= last; ++i) {
          const_cast<ContributionList&>(columns[i]).count = 0;
          const_cast<ContributionList&>(columns[i]).total = 0.0F;
        }
        const Comparison comparison(source, columns, rows, 9, PixelLayout::kRedFirst, random);
        for (const VectorLevel level : Levels()) {
          ASSERT_EQ(comparison.FirstOtherRow(level, counts), Comparison::kSame)
              << kernel.name << ", 400 -> " << to << " without " << first << ".." << last
              << ", level " << static_cast<int>(level);
        }
      }
    }
  }
}

// Only what was written by the call before must still be there.
TEST(LanePasses, CopyNoRowThatMayBeGone) {
  Random random(33104308);
  OpenCounts counts;
  const Source source(40, 5, PixelLayout::kRedFirst, Picture::kNoise, random);
  const BuiltLists columns(kBox, 40, 80, Axis::kAlongRows);
  const HandMadeLists rows(
      {{1, {1.0F}}, {1, {0.5F, 0.5F}}, {1, {1.0F}}, {1, {1.0F}}, {1, {}}, {1, {1.0F}}});
  const Comparison comparison(source, columns, rows, 2, PixelLayout::kRedFirst, random);
  for (const VectorLevel level : Levels()) {
    EXPECT_EQ(comparison.FirstOtherRow(level, counts), Comparison::kSame);
  }
}

// A row that repeats is copied, but not from a row in another layout.
TEST(LanePasses, RepeatARowInEachLayout) {
  Random random(33104305);
  const Source source(9, 5, PixelLayout::kRedFirst, Picture::kNoise, random);
  const BuiltLists columns(kTriangle, 9, 9, Axis::kAlongRows);
  const HandMadeLists rows({{3, {1.0F}}});
  const PixelLayout layouts[] = {PixelLayout::kBlueFirst, PixelLayout::kAlphaFirst,
                                 PixelLayout::kAlphaFirst, PixelLayout::kRedFirst};
  for (const VectorLevel level : Levels()) {
    std::uint32_t image[9 * 5], result[std::size(layouts)][9];
    LanePasses lanes;
    ASSERT_TRUE(lanes.Prepare(source.reader, columns, image, 1, level));
    for (std::size_t i = 0; i < std::size(layouts); ++i) {
      lanes.FilterRow(rows[0], layouts[i], result[i]);
      for (std::int32_t x = 0; x < 9; ++x) {
        const Rgb colour = Decode(PixelLayout::kRedFirst, source.Row(3)[x]);
        EXPECT_EQ(result[i][x], EncodeOpaque(layouts[i], colour)) << i;
      }
    }
  }
}

TEST(LanePasses, WriteNothingWithoutALayout) {
  Random random(33104303);
  const Source source(20, 5, PixelLayout::kBlueFirst, Picture::kNoise, random);
  for (const Kernel& kernel : kKernels) {
    const BuiltLists rows(kernel, 5, 1, Axis::kDownColumns);
    const BuiltLists columns(kernel, 20, 9, Axis::kAlongRows);
    for (const VectorLevel level : Levels()) {
      std::uint32_t image[9 * 5];
      std::uint32_t result[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
      LanePasses lanes;
      ASSERT_TRUE(lanes.Prepare(source.reader, columns, image, 5, level));
      lanes.FilterRow(rows[0], PixelLayout::kNone, result);
      for (std::uint32_t x = 0; x < 9; ++x) EXPECT_EQ(result[x], x + 1);
    }
  }
}

}  // namespace
