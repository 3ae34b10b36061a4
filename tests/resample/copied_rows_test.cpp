// Rows that only take over pixels: which lists those are, what is copied, and when rows repeat.
#include "resample/copied_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "tests/resample/lane_stage.h"
#include "tests/resample/tap_lists.h"
#include "tests/support/allocation_faults.h"

namespace {

using host::PixelMemory;
using resample_tests::Bytes;
using resample_tests::HandMadeLists;
using resample_tests::kLayouts;
using resample_tests::Levels;
using resample_tests::Picture;
using resample_tests::Source;
using resample_tests::Taps;
using resample_tests::Words;
using support::AllocationWatch;
using support::Random;

std::vector<Taps> Copies(const std::vector<std::int32_t>& pixels) {
  std::vector<Taps> all;
  for (const std::int32_t pixel : pixels) all.push_back({pixel, {1.0F}});
  return all;
}

std::vector<std::int32_t> Neighbours(int count) {
  std::vector<std::int32_t> pixels(static_cast<std::size_t>(count));
  std::iota(pixels.begin(), pixels.end(), 0);
  return pixels;
}

TEST(CopiedRows, TakeOverPixelsInAllLayouts) {
  Random random(39104000);
  const HandMadeLists rows(Copies({0, 2, 4}));
  for (int count = 8; count <= 48; ++count) {
    std::vector<std::int32_t> pixels = {random.Between(0, 9)};
    const int steps = random.Between(0, 4);  // of four
    while (static_cast<int>(pixels.size()) < count) {
      pixels.push_back(pixels.back() + (random.Between(1, 4) <= steps ? 1 : 0));
    }
    const HandMadeLists columns(Copies(pixels));
    const int least = std::max(pixels.back() + 1, 8);
    const int width = least + (random.Coin() ? 0 : random.Between(1, 9));
    for (const PixelLayout from : kLayouts) {
      const Source source(width, 5, from, Picture::kNoise, random);
      for (const PixelLayout to : kLayouts) {
        for (const VectorLevel level : Levels()) {
          CopiedRows copies;
          ASSERT_TRUE(copies.Prepare(source.reader, columns, level));
          ASSERT_TRUE(static_cast<bool>(copies));
          std::vector<PixelMemory> results;
          for (std::int32_t y = 0; y < rows.Count(); ++y) {
            results.emplace_back(Bytes(count), random.AnyGuard());
            std::uint32_t* const result = Words(results.back());
            ASSERT_TRUE(copies.CopyRow(rows[y], to, result));
            for (int x = 0; x < count; ++x) {
              const auto pixel = static_cast<std::size_t>(pixels[static_cast<std::size_t>(x)]);
              const std::uint32_t word = source.Row(rows[y].entries[0].pixel)[pixel];
              ASSERT_EQ(result[x], EncodeOpaque(to, Decode(from, word))) << x << " of " << count;
            }
          }
        }
      }
    }
  }
}

struct ColumnsRow {
  const char* name;
  std::int32_t place;  // of the list among copies of neighbouring columns
  Taps list;
};

const ColumnsRow kNoCopies[] = {
    {"two taps at first", 0, {0, {0.5F, 0.5F}}},
    {"two taps", 5, {5, {0.5F, 0.5F}}},
    {"two taps at last", 10, {10, {0.5F, 0.5F}}},
    {"no taps", 5, {5, {}}},
    {"no taps at last", 10, {5, {}}},
    {"another total", 5, {5, {1.0F}, 2.0F}},
    {"a total of the other sign", 5, {5, {1.0F}, -1.0F}},
    {"another weight", 5, {5, {0.5F}, 1.0F}},
    {"a weight of the other sign", 5, {5, {-1.0F}, 1.0F}},
    {"a column left out", 10, {11, {1.0F}}},
    {"columns left out", 10, {18, {1.0F}}},
    {"back", 10, {8, {1.0F}}},
};

TEST(CopiedRows, AreNothingUnlessEachListTakesOverAPixel) {
  Random random(39104001);
  const Source source(20, 5, PixelLayout::kRedFirst, Picture::kNoise, random);
  const HandMadeLists rows(Copies({1}));
  for (const ColumnsRow& row : kNoCopies) {
    std::vector<Taps> all = Copies(Neighbours(11));
    all[static_cast<std::size_t>(row.place)] = row.list;
    const HandMadeLists columns(all);
    for (const VectorLevel level : Levels()) {
      const AllocationWatch watch;
      CopiedRows copies;
      EXPECT_FALSE(copies.Prepare(source.reader, columns, level)) << row.name;
      EXPECT_FALSE(static_cast<bool>(copies)) << row.name;
      EXPECT_EQ(watch.LiveBlocks(), 0) << row.name;
    }
  }
}

TEST(CopiedRows, AreNothingWithoutVectorInstructionsALayoutOrMemory) {
  Random random(39104002);
  Source source(20, 5, PixelLayout::kRedFirst, Picture::kNoise, random);
  const HandMadeLists columns(Copies(Neighbours(12)));
  CopiedRows scalar;
  EXPECT_FALSE(scalar.Prepare(source.reader, columns, VectorLevel::kScalar));
  EXPECT_FALSE(static_cast<bool>(scalar));
  for (const VectorLevel level : Levels()) {
    {
      const AllocationWatch watch(1);
      CopiedRows copies;
      EXPECT_FALSE(copies.Prepare(source.reader, columns, level));
      EXPECT_FALSE(static_cast<bool>(copies));
      EXPECT_EQ(watch.Calls(), 1);
    }
    const std::int32_t format = source.reader.pixelFormat;
    for (const std::int32_t none : {0, 7, 9}) {
      source.reader.pixelFormat = none;
      CopiedRows copies;
      EXPECT_FALSE(copies.Prepare(source.reader, columns, level));
      EXPECT_FALSE(static_cast<bool>(copies));
    }
    source.reader.pixelFormat = format;
  }
}

TEST(CopiedRows, AreNothingUnlessBothSidesAreEightPixelsWide) {
  Random random(39104005);
  for (int width = 1; width <= 10; ++width) {
    const Source source(width, 5, PixelLayout::kRedFirst, Picture::kNoise, random);
    for (int count = 1; count <= 10; ++count) {
      std::vector<std::int32_t> pixels = Neighbours(count);
      for (std::int32_t& pixel : pixels) pixel = std::min(pixel, width - 1);
      const HandMadeLists columns(Copies(pixels));
      for (const VectorLevel level : Levels()) {
        CopiedRows copies;
        EXPECT_EQ(copies.Prepare(source.reader, columns, level), width >= 8 && count >= 8)
            << width << " -> " << count;
      }
    }
  }
}

TEST(CopiedRows, GiveBackTheirBlock) {
  Random random(39104003);
  const Source source(20, 5, PixelLayout::kRedFirst, Picture::kNoise, random);
  const HandMadeLists columns(Copies(Neighbours(12)));
  for (const VectorLevel level : Levels()) {
    const AllocationWatch watch;
    {
      CopiedRows copies;
      ASSERT_TRUE(copies.Prepare(source.reader, columns, level));
      EXPECT_EQ(watch.LiveBlocks(), 1);
    }
    EXPECT_EQ(watch.LiveBlocks(), 0);
  }
}

constexpr int kWidth = 12;

// All twelve columns of noise, one after the other.
class NoiseInCopiedRows : public testing::Test {
 protected:
  NoiseInCopiedRows() : source_(kWidth, 5, PixelLayout::kBlueFirst, Picture::kNoise, random_) {
    columns_ = Copies(Neighbours(kWidth));
  }

  bool Prepare(CopiedRows& copies, VectorLevel level) {
    const HandMadeLists lists(columns_);  // which it need not keep
    return copies.Prepare(source_.reader, lists, level);
  }
  // As the source's row is in that layout.
  bool IsRow(const std::uint32_t* result, int row, PixelLayout layout) const {
    for (int x = 0; x < kWidth; ++x) {
      const Rgb colour = Decode(PixelLayout::kBlueFirst, source_.Row(row)[x]);
      if (result[x] != EncodeOpaque(layout, colour)) return false;
    }
    return true;
  }

  Random random_{39104004};
  Source source_;
  std::vector<Taps> columns_;
  HandMadeLists rows_{Copies({1, 1, 3})};
};

// A row that has been changed since shows that it is the copy of one made before.
TEST_F(NoiseInCopiedRows, RepeatTheRowMadeBefore) {
  for (const VectorLevel level : Levels()) {
    CopiedRows copies;
    ASSERT_TRUE(Prepare(copies, level));
    std::uint32_t result[3][kWidth];
    ASSERT_TRUE(copies.CopyRow(rows_[0], PixelLayout::kRedFirst, result[0]));
    ASSERT_TRUE(IsRow(result[0], 1, PixelLayout::kRedFirst));
    for (int x = 0; x < kWidth; ++x) result[0][x] = static_cast<std::uint32_t>(100 + x);
    ASSERT_TRUE(copies.CopyRow(rows_[1], PixelLayout::kRedFirst, result[1]));
    EXPECT_EQ(std::memcmp(result[1], result[0], sizeof result[0]), 0);
    // And now of that one.
    for (int x = 0; x < kWidth; ++x) result[1][x] = static_cast<std::uint32_t>(200 + x);
    ASSERT_TRUE(copies.CopyRow(rows_[0], PixelLayout::kRedFirst, result[2]));
    EXPECT_EQ(std::memcmp(result[2], result[1], sizeof result[1]), 0);
  }
}

TEST_F(NoiseInCopiedRows, RepeatNoOtherRowAndNoOtherLayout) {
  const struct {
    int list, row;
    PixelLayout layout;
  } calls[] = {{0, 1, PixelLayout::kRedFirst},  {2, 3, PixelLayout::kRedFirst},
               {0, 1, PixelLayout::kRedFirst},  {0, 1, PixelLayout::kAlphaFirst},
               {1, 1, PixelLayout::kBlueFirst}, {2, 3, PixelLayout::kAlphaFirst},
               {0, 1, PixelLayout::kAlphaFirst}};
  for (const VectorLevel level : Levels()) {
    CopiedRows copies;
    ASSERT_TRUE(Prepare(copies, level));
    std::uint32_t results[std::size(calls)][kWidth];
    for (std::size_t i = 0; i < std::size(calls); ++i) {
      ASSERT_TRUE(copies.CopyRow(rows_[calls[i].list], calls[i].layout, results[i]));
      ASSERT_TRUE(IsRow(results[i], calls[i].row, calls[i].layout)) << i;
      for (std::uint32_t& word : results[i]) word ^= 0xFFFFFFFF;
    }
  }
}

// Row 0 in the layout of value 0, as nothing made before looks.
TEST_F(NoiseInCopiedRows, RepeatNothingAtFirst) {
  const HandMadeLists rows(Copies({0}));
  for (const VectorLevel level : Levels()) {
    for (const PixelLayout layout : kLayouts) {
      CopiedRows copies;
      ASSERT_TRUE(Prepare(copies, level));
      std::uint32_t result[kWidth];
      ASSERT_TRUE(copies.CopyRow(rows[0], layout, result));
      EXPECT_TRUE(IsRow(result, 0, layout));
    }
  }
}

TEST_F(NoiseInCopiedRows, WriteNothingForListsThatTakeOverNoRow) {
  const HandMadeLists others({{1, {0.5F, 0.5F}},
                              {1, {}},
                              {1, {}, 1.0F},
                              {1, {1.0F}, 2.0F},
                              {1, {0.5F}, 1.0F},
                              {1, {-1.0F}, 1.0F},
                              {1, {1.0F}, -1.0F}});
  for (const VectorLevel level : Levels()) {
    CopiedRows copies;
    ASSERT_TRUE(Prepare(copies, level));
    std::uint32_t made[kWidth];
    ASSERT_TRUE(copies.CopyRow(rows_[0], PixelLayout::kRedFirst, made));
    for (std::int32_t i = 0; i < others.Count(); ++i) {
      std::uint32_t result[kWidth] = {1, 2, 3};
      EXPECT_FALSE(copies.CopyRow(others[i], PixelLayout::kRedFirst, result)) << i;
      const std::uint32_t untouched[kWidth] = {1, 2, 3};
      EXPECT_EQ(std::memcmp(result, untouched, sizeof result), 0) << i;
    }
  }
}

TEST_F(NoiseInCopiedRows, WriteNothingWithoutALayout) {
  for (const VectorLevel level : Levels()) {
    CopiedRows copies;
    ASSERT_TRUE(Prepare(copies, level));
    for (int round = 0; round < 2; ++round) {
      std::uint32_t result[kWidth] = {1, 2, 3}, made[kWidth];
      EXPECT_FALSE(copies.CopyRow(rows_[0], PixelLayout::kNone, result));
      const std::uint32_t untouched[kWidth] = {1, 2, 3};
      EXPECT_EQ(std::memcmp(result, untouched, sizeof result), 0);
      ASSERT_TRUE(copies.CopyRow(rows_[0], PixelLayout::kRedFirst, made));
      EXPECT_TRUE(IsRow(made, 1, PixelLayout::kRedFirst));
    }
  }
}

}  // namespace
