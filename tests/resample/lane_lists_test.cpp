// Both passes in vector instructions by lists that no kernel has: as the passes are defined, bit
// for bit, whatever the weights and totals.
#include <gtest/gtest.h>

#include <limits>

#include "tests/resample/lane_stage.h"
#include "tests/resample/tap_lists.h"

namespace {

using resample_tests::BuiltLists;
using resample_tests::Comparison;
using resample_tests::HandMadeLists;
using resample_tests::kBicubic;
using resample_tests::kPictures;
using resample_tests::kTriangle;
using resample_tests::Levels;
using resample_tests::OpenCounts;
using resample_tests::Picture;
using resample_tests::Source;
using resample_tests::Taps;
using support::Random;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

struct ListRow {
  const char* name;
  std::vector<float> weights;
  float total;  // 0: that of the weights
};

const ListRow kRows[] = {
    {"none", {}, 0},
    {"none with a total", {}, 2.0F},
    {"one", {1}, 0},
    {"ones", {1, 1, 1, 1, 1}, 0},
    {"ones and a gap", {1, 1, 0, 1}, 0},
    {"below 0", {-1, -1}, 0},
    {"total below 0", {0.25F, -1.0F}, 0},
    {"halves of many digits", {1.0F / 3, 1.0F / 3}, 0},
    {"gaps", {0.5F, 0, 0, 0, 0, 0.3F, 0.1F, 0, 0.2F}, 0},
    {"many digits", {-0.1234567F, 0.7654321F, 0.4567891F}, 0},
    {"light", {1e-30F}, 0},
    {"heavy", {1e30F, 1e29F}, 0},
    {"nearly no total", {1.0F, -0.97F}, 0},
    {"less", {1.0F, -0.9999F}, 0},
    {"least", {1.0F, -1.0F, 1e-7F}, 0},
    {"next to nothing", {1.0F, -1.0F}, 1e-38F},
    {"total of -0", {1.0F, -1.0F}, -0.0F},
    {"total of 10^9", {1.0F, 2.0F}, 1e9F},
    {"no number", {0.5F, 0.5F}, kNan},
    {"infinite", {0.5F, 0.5F}, kInfinity},
    {"infinite below 0", {0.5F, 0.5F}, -kInfinity},
};

Taps AnyTaps(const ListRow& row, std::int32_t first) {
  const bool isOwn = row.total != 0.0F || std::signbit(row.total);
  return isOwn ? Taps(first, row.weights, row.total) : Taps(first, row.weights);
}

// As many lists, by any rows of the table, none reaching back before the one before it.
std::vector<Taps> AnyLists(Random& random, std::int32_t sourceSize, int count) {
  std::vector<Taps> lists;
  for (int i = 0; i < count; ++i) {
    const ListRow& row = kRows[random.Between(0, std::size(kRows) - 1)];
    const auto width = static_cast<std::int32_t>(row.weights.size());
    const std::int32_t first = sourceSize * i / count;
    if (first + width > sourceSize) {
      lists.push_back(Taps(first, {1.0F}));
    } else {
      lists.push_back(AnyTaps(row, first));
    }
  }
  return lists;
}

constexpr std::int32_t kSpan = 9;  // of the widest row of the table

TEST(LanePasses, AreThePassesAsDefinedByAnyListAlongRows) {
  Random random(34104000);
  OpenCounts counts;
  const BuiltLists rows(kTriangle, 9, 5, Axis::kDownColumns);
  for (const ListRow& row : kRows) {
    for (const int count : {1, 3, 8, 13}) {
      const HandMadeLists columns(
          std::vector<Taps>(static_cast<std::size_t>(count), AnyTaps(row, 11)));
      for (const Picture picture : kPictures) {
        const Source source(24, 9, PixelLayout::kBlueFirst, picture, random);
        const Comparison comparison(source, columns, rows, 9, PixelLayout::kRedFirst, random);
        for (const VectorLevel level : Levels()) {
          ASSERT_EQ(comparison.FirstOtherRow(level, counts), Comparison::kSame)
              << row.name << ", " << count << " columns, level " << static_cast<int>(level);
        }
      }
    }
  }
}

TEST(LanePasses, AreThePassesAsDefinedByAnyListDownColumns) {
  Random random(34104001);
  OpenCounts counts;
  const BuiltLists columns(kTriangle, 24, 21, Axis::kAlongRows);
  for (const ListRow& row : kRows) {
    const HandMadeLists rows({AnyTaps(row, 6), AnyTaps(row, 7)});
    for (const Picture picture : kPictures) {
      const Source source(24, 16, PixelLayout::kAlphaFirst, picture, random);
      const Comparison comparison(source, columns, rows, kSpan, PixelLayout::kAlphaFirst, random);
      for (const VectorLevel level : Levels()) {
        ASSERT_EQ(comparison.FirstOtherRow(level, counts), Comparison::kSame)
            << row.name << ", level " << static_cast<int>(level);
      }
    }
  }
}

TEST(LanePasses, AreThePassesAsDefinedByMixedLists) {
  Random random(34104002);
  OpenCounts counts;
  for (int round = 0; round < 1500; ++round) {
    const int width = random.Between(1, 40), height = random.Between(1, 40);
    const HandMadeLists columns(AnyLists(random, width, random.Between(1, 70)));
    const HandMadeLists rows(AnyLists(random, height, random.Between(1, 40)));
    const Source source(width, height, PixelLayout::kRedFirst, kPictures[round % 8], random);
    const Comparison comparison(source, columns, rows, kSpan, PixelLayout::kBlueFirst, random);
    for (const VectorLevel level : Levels()) {
      ASSERT_EQ(comparison.FirstOtherRow(level, counts), Comparison::kSame)
          << "round " << round << ", level " << static_cast<int>(level);
    }
  }
  EXPECT_GT(counts.along.fine, 0);
  EXPECT_GT(counts.down.fine, 0);
}

// Single pixels, moving on by 0 or 1 columns, or by more.
TEST(LanePasses, AreThePassesAsDefinedWhereListsAreCopies) {
  Random random(34104004);
  OpenCounts counts;
  for (int round = 0; round < 600; ++round) {
    const int steps = round % 4;
    std::vector<Taps> columns = {{random.Between(0, 3), {1.0F}}};
    for (int count = random.Between(1, 40); count > 1; --count) {
      columns.push_back({columns.back().firstPixel + random.Between(0, steps), {1.0F}});
    }
    const int width = columns.back().firstPixel + random.Between(1, 9);
    const Source source(width, 5, PixelLayout::kAlphaFirst, kPictures[round % 8], random);
    const HandMadeLists all(columns);
    const HandMadeLists rows({{0, {1.0F}}, {0, {0.5F, 0.5F}}, {1, {1.0F}}, {4, {1.0F}}});
    const Comparison comparison(source, all, rows, kSpan, PixelLayout::kRedFirst, random);
    for (const VectorLevel level : Levels()) {
      ASSERT_EQ(comparison.FirstOtherRow(level, counts), Comparison::kSame)
          << "steps of at most " << steps << ", level " << static_cast<int>(level);
    }
  }
}

// Nearly copies: one of another total or weight, or of a column further back.
TEST(LanePasses, AreThePassesAsDefinedWhereListsAreNearlyCopies) {
  Random random(34104005);
  OpenCounts counts;
  for (const Taps& other : {Taps(5, {1.0F}, 2.0F), Taps(5, {0.5F}, 0.25F), Taps(1, {1.0F})}) {
    std::vector<Taps> all = {{2, {1.0F}}, {3, {1.0F}}, {4, {1.0F}}, {5, {1.0F}}, other};
    for (const int step : {0, 1, 2, 3, 4, 5, 5, 6})
      all.push_back({other.firstPixel + step, {1.0F}});
    const HandMadeLists columns(all);
    const HandMadeLists rows({{0, {1.0F}}, {1, {0.5F, 0.5F}}, {3, {1.0F}}});
    for (const Picture picture : kPictures) {
      const Source source(24, 4, PixelLayout::kBlueFirst, picture, random);
      const Comparison comparison(source, columns, rows, kSpan, PixelLayout::kRedFirst, random);
      for (const VectorLevel level : Levels()) {
        ASSERT_EQ(comparison.FirstOtherRow(level, counts), Comparison::kSame)
            << other.firstPixel << ", level " << static_cast<int>(level);
      }
    }
  }
}

// Lists of rows that memory was short for are empty.
TEST(LanePasses, AreThePassesAsDefinedWhereListsAreMissing) {
  Random random(34104003);
  OpenCounts counts;
  for (int missing = 1; missing < 72; ++missing) {
    for (const bool first : {false, true}) {
      const Source source(10, 24, PixelLayout::kRedFirst, Picture::kNoise, random);
      const BuiltLists columns(kTriangle, 10, 9, Axis::kAlongRows);
      BuiltLists rows(kBicubic, 24, 72, Axis::kDownColumns);
      for (std::int32_t y = first ? 0 : missing; y <= missing; ++y) {
        const_cast<ContributionList&>(rows[y]).count = 0;
        const_cast<ContributionList&>(rows[y]).total = 0.0F;
      }
      const TapSearch search = kBicubic.search(24, 72, Axis::kDownColumns);
      const Comparison comparison(source, columns, rows, search.Span(24), PixelLayout::kRedFirst,
                                  random);
      for (const VectorLevel level : Levels()) {
        ASSERT_EQ(comparison.FirstOtherRow(level, counts), Comparison::kSame)
            << (first ? "all up to " : "only ") << missing;
      }
    }
  }
}

}  // namespace
