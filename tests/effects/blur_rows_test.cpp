// Every variant of the blur's rows gives what the scalar one gives, and touches nothing beyond.
#include "effects/blur_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "tests/support/random.h"

namespace {

using Row = std::vector<std::uint32_t>;

constexpr PixelLayout kLayouts[] = {PixelLayout::kRedFirst, PixelLayout::kAlphaFirst,
                                    PixelLayout::kBlueFirst};
constexpr std::uint32_t kUntouched = 0xA5A5A5A5;
constexpr std::int32_t kSpareWords = 5;  // behind each array of sums

std::vector<VectorLevel> VectorLevels() {
  std::vector<VectorLevel> levels;
  for (const auto level : {VectorLevel::kSse2, VectorLevel::kSse41, VectorLevel::kAvx2}) {
    if (level <= BestVectorLevel()) levels.push_back(level);
  }
  return levels;
}

enum class Content { kNoise, kBlack, kWhite, kExtremes };
constexpr Content kContents[] = {Content::kNoise, Content::kBlack, Content::kWhite,
                                 Content::kExtremes};

Row RowOf(support::Random& random, std::int32_t width, Content content) {
  Row row(static_cast<std::size_t>(width));
  for (auto& word : row) {
    switch (content) {
      case Content::kNoise:
        word = random.Word();
        break;
      case Content::kBlack:
        word = 0;
        break;
      case Content::kWhite:
        word = 0xFFFFFFFF;
        break;
      case Content::kExtremes:
        word = 0;
        for (int byte = 0; byte < 4; ++byte) word |= random.Coin() ? 0xFFU << 8 * byte : 0;
        break;
    }
  }
  return row;
}

// A row of memory of exactly its size, so that sanitizers and valgrind see what lies beyond,
// between two words that must stay.
class Target {
 public:
  explicit Target(std::int32_t width) : words_(static_cast<std::size_t>(width) + 2, kUntouched) {}
  std::uint32_t* Data() { return words_.data() + 1; }
  Row Words() const { return Row(words_.begin() + 1, words_.end() - 1); }
  bool Kept() const { return words_.front() == kUntouched && words_.back() == kUntouched; }

 private:
  Row words_;
};

// What a blur of a few rows writes: all rows' columns, then all of these along themselves.
struct Blurred {
  std::vector<Row> columns, rows;
  bool operator==(const Blurred& other) const {
    return columns == other.columns && rows == other.rows;
  }
};

Blurred Blur(const BlurRows& rows, const BlurRule& rule, const std::vector<Row>& source) {
  const auto width = static_cast<std::int32_t>(source[0].size());
  const auto height = static_cast<std::int32_t>(source.size());
  const auto size = static_cast<std::size_t>(width) + kSpareWords;
  Row first(size), second(size), third(size);
  const ColumnSums sums = {first.data(), second.data(), third.data()};
  const auto at = [&](std::int64_t y) {
    return source[static_cast<std::size_t>(ClampIndex(y, height))].data();
  };
  ForStartOfWindow(rule.radius, height, [&](std::int32_t y, std::int32_t times) {
    rows.add(rule, sums, at(y), width, times);
  });
  Blurred blurred;
  for (std::int32_t y = 0; y < height; ++y) {
    Target columns(width), row(width);
    rows.down(rule, sums, at(std::int64_t{y} - rule.radius), at(std::int64_t{y} + rule.radius + 1),
              columns.Data(), width);
    rows.along(rule, columns.Words().data(), row.Data(), width);
    EXPECT_TRUE(columns.Kept() && row.Kept()) << "width " << width;
    blurred.columns.push_back(columns.Words());
    blurred.rows.push_back(row.Words());
  }
  return blurred;
}

// A rule and the table that the scalar variant reads.
struct RuleWithTable {
  RuleWithTable(PixelLayout source, PixelLayout result, std::int32_t radius) {
    const std::int32_t box = 2 * radius + 1;
    table.resize(static_cast<std::size_t>(box) * 255 + 1);
    for (std::size_t sum = 0; sum < table.size(); ++sum) {
      table[sum] = static_cast<std::int32_t>(sum / static_cast<std::size_t>(box));
    }
    rule = BlurRuleOf(source, result, radius, table.data());
  }
  std::vector<std::int32_t> table;
  BlurRule rule = {};
};

BlurRule VectorRule(const BlurRule& rule) {
  BlurRule without = rule;
  without.quotients = nullptr;
  return without;
}

void ExpectSame(const RuleWithTable& with, const std::vector<Row>& source) {
  const BlurRows& scalar = BlurRowsFor(VectorLevel::kScalar, with.rule);
  const Blurred expected = Blur(scalar, with.rule, source);
  for (const VectorLevel level : VectorLevels()) {
    const BlurRows& rows = BlurRowsFor(level, with.rule);
    ASSERT_NE(&rows, &scalar);
    ASSERT_TRUE(Blur(rows, VectorRule(with.rule), source) == expected)
        << "level " << static_cast<int>(level) << ", radius " << with.rule.radius << ", "
        << source[0].size() << " pixels";
  }
}

TEST(BlurRows, EachLevelAndEachKindOfBoxHasItsOwnVariant) {
  std::vector<const BlurRows*> seen;
  for (const std::int32_t radius : {128, 129}) {
    const BlurRule rule = BlurRuleOf(kLayouts[0], kLayouts[0], radius, nullptr);
    const BlurRows& scalar = BlurRowsFor(VectorLevel::kScalar, rule);
    const BlurRows& sse2 = BlurRowsFor(VectorLevel::kSse2, rule);
    const BlurRows& avx2 = BlurRowsFor(VectorLevel::kAvx2, rule);
    EXPECT_TRUE(scalar.readsQuotients);
    for (const BlurRows* rows : {&sse2, &avx2}) {
      EXPECT_FALSE(rows->readsQuotients);
      EXPECT_NE(rows->add, scalar.add);
      EXPECT_NE(rows->down, scalar.down);
      EXPECT_NE(rows->along, scalar.along);
      EXPECT_EQ(std::count(seen.begin(), seen.end(), rows), 0);
      seen.push_back(rows);
    }
    EXPECT_EQ(&BlurRowsFor(VectorLevel::kSse41, rule), &sse2);
  }
}

TEST(BlurRows, WhatNoVariantIsMadeForIsScalar) {
  const auto rows = [](PixelLayout source, std::int32_t radius) {
    return &BlurRowsFor(VectorLevel::kAvx2,
                        BlurRuleOf(source, PixelLayout::kRedFirst, radius, nullptr));
  };
  EXPECT_TRUE(rows(PixelLayout::kNone, 3)->readsQuotients);
  EXPECT_TRUE(rows(PixelLayout::kRedFirst, 1048575)->readsQuotients);
  EXPECT_TRUE(rows(PixelLayout::kRedFirst, 2147483647)->readsQuotients);
  EXPECT_FALSE(rows(PixelLayout::kRedFirst, 1048574)->readsQuotients);
}

TEST(BlurRows, AllWidthsLayoutsAndContentsGiveTheScalarWords) {
  support::Random random(1);
  for (const PixelLayout source : kLayouts) {
    for (const PixelLayout result : kLayouts) {
      for (const std::int32_t radius : {1, 2, 3, 5, 8, 20, 33, 127, 128, 129, 200}) {
        const RuleWithTable rule(source, result, radius);
        for (std::int32_t width = 1; width <= 70; ++width) {
          const Content content = kContents[random.Between(0, 3)];
          std::vector<Row> picture;
          for (int y = 0; y < 5; ++y) picture.push_back(RowOf(random, width, content));
          ASSERT_NO_FATAL_FAILURE(ExpectSame(rule, picture));
        }
      }
    }
  }
}

TEST(BlurRows, AllNarrowRadiiGiveTheScalarWords) {
  support::Random random(2);
  for (std::int32_t radius = 1; radius <= 140; ++radius) {
    const RuleWithTable rule(kLayouts[random.Between(0, 2)], kLayouts[random.Between(0, 2)],
                             radius);
    for (const Content content : kContents) {
      std::vector<Row> picture;
      for (int y = 0; y < 2; ++y) {
        picture.push_back(RowOf(random, random.Between(300, 330), content));
      }
      picture[1].resize(picture[0].size());
      ASSERT_NO_FATAL_FAILURE(ExpectSame(rule, picture));
    }
  }
}

TEST(BlurRows, TallPicturesGiveTheScalarWords) {
  support::Random random(3);
  for (const std::int32_t radius : {1, 7, 40, 128, 129, 150}) {
    const RuleWithTable rule(kLayouts[0], kLayouts[1], radius);
    for (const Content content : {Content::kNoise, Content::kExtremes}) {
      std::vector<Row> picture;
      for (int y = 0; y < 400; ++y) picture.push_back(RowOf(random, 11, content));
      ASSERT_NO_FATAL_FAILURE(ExpectSame(rule, picture));
    }
  }
}

// By division instead of a table, which would be large.
TEST(BlurRows, TheLargestRadiiGiveTheMeansOfTheBorders) {
  for (const std::int32_t radius : {30000, 524287, 524288, 1048573, 1048574}) {
    const BlurRule rule = BlurRuleOf(kLayouts[0], kLayouts[0], radius, nullptr);
    const std::uint32_t box = static_cast<std::uint32_t>(rule.Box());
    support::Random random(4);
    for (const VectorLevel level : VectorLevels()) {
      for (const std::int32_t width : {1, 2, 9, 40}) {
        const Row row = RowOf(random, width, Content::kExtremes);
        Target target(width);
        BlurRowsFor(level, rule).along(rule, row.data(), target.Data(), width);
        for (std::int32_t x = 0; x < width; ++x) {
          // Every pixel of the row lies in the window; the borders fill it up.
          const auto left = static_cast<std::uint32_t>(radius - x);
          const auto right = static_cast<std::uint32_t>(radius - (width - 1 - x));
          std::uint32_t expected = 0xFF000000;
          for (int shift = 0; shift < 24; shift += 8) {
            std::uint32_t sum =
                left * ByteOf(row.front(), shift) + right * ByteOf(row.back(), shift);
            for (const std::uint32_t word : row) sum += ByteOf(word, shift);
            expected |= sum / box << shift;
          }
          ASSERT_EQ(target.Data()[x], expected) << radius << ", " << x << " of " << width;
        }
      }
    }
  }
}

}  // namespace
