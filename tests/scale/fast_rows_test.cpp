// The fast scaler's rows in vector instructions, at every level that the processor has, against
// the rows as defined: bit for bit, with inaccessible memory next to the source or the result.
#include "scale/fast_rows.h"

#include <gtest/gtest.h>

#include <cstring>

#include "host/pixel_memory.h"
#include "scale/fast_row_scaler.h"
#include "tests/support/random.h"

namespace {

using host::Guard;
using host::PixelMemory;
using support::Random;

constexpr PixelLayout kLayouts[] = {PixelLayout::kRedFirst, PixelLayout::kAlphaFirst,
                                    PixelLayout::kBlueFirst};

std::vector<VectorLevel> Levels() {
  std::vector<VectorLevel> levels;
  for (VectorLevel level : {VectorLevel::kSse2, VectorLevel::kSse41, VectorLevel::kAvx2}) {
    if (level <= BestVectorLevel()) levels.push_back(level);
  }
  return levels;
}

std::size_t Bytes(int pixels) { return sizeof(std::uint32_t) * static_cast<std::size_t>(pixels); }
std::uint32_t* Words(const PixelMemory& memory) {
  return reinterpret_cast<std::uint32_t*>(memory.Data());
}

enum class Contents { kNoise, kBlack, kWhite, kNearlyWhite };

PixelMemory SourceRow(Random& random, int width, Contents contents) {
  PixelMemory row(Bytes(width), random.AnyGuard());
  for (int x = 0; x < width; ++x) {
    const std::uint32_t noise = random.Word();
    std::uint32_t& word = Words(row)[x];
    if (contents == Contents::kNoise) word = noise;
    if (contents == Contents::kBlack) word = 0;
    if (contents == Contents::kWhite) word = 0xFFFFFFFF;
    if (contents == Contents::kNearlyWhite) word = noise % 97 == 0 ? 0xFFFEFDFE : 0xFFFFFFFF;
  }
  return row;
}

RowTask Task(int sourceWidth, int resultWidth, int sourceHeight, int resultHeight) {
  return {{sourceWidth, sourceHeight, resultWidth, resultHeight},
          sourceWidth,
          resultWidth,
          PixelLayout::kRedFirst,
          PixelLayout::kRedFirst};
}

// Straight into the result; through a row that is kept; from there past the caches.
enum class Way { kOnce, kRepeated, kStreamed };

// Makes a row twice, by the definition and at a level, from the same source.
struct Trial {
  RowTask task;
  PixelMemory source, expected, made;

  Trial(Random& random, const RowTask& ofTask, Contents contents)
      : task(ofTask),
        source(SourceRow(random, task.sourceWidth, contents)),
        expected(Bytes(task.resultWidth), Guard::kNone),
        made(Bytes(task.resultWidth), random.AnyGuard()) {}

  bool IsVectorised(VectorLevel level) const {
    return FastRowScaler(task, 1, level).IsVectorised();
  }
  bool IsEqual(VectorLevel level, Way way = Way::kOnce) const {
    RowTask asked = task;
    asked.blocks.yStep = way == Way::kOnce ? 1.5 : 0.5;  // the blocks' rows stay as they are
    ScaleRowAsDefined(task, Words(source), Words(expected));
    std::memset(made.Data(), 0x5A, made.Size());
    FastRowScaler rows(asked, way == Way::kStreamed ? 6 << 20 : 1, level);
    rows.Scale(Words(source), Words(made));
    rows.Settle();
    return std::memcmp(expected.Data(), made.Data(), made.Size()) == 0;
  }
};

TEST(FastRows, EveryLevelHasItsOwn) {
  EXPECT_EQ(FastRowsFor(VectorLevel::kScalar), nullptr);
  for (VectorLevel level : Levels()) {
    ASSERT_NE(FastRowsFor(level), nullptr);
    EXPECT_EQ(FastRowsFor(level)->level, level);
    for (VectorLevel other : Levels()) {
      if (other == level) continue;
      EXPECT_NE(FastRowsFor(level)->averageNarrow, FastRowsFor(other)->averageNarrow);
      EXPECT_NE(FastRowsFor(level)->recolour, FastRowsFor(other)->recolour);
    }
  }
  EXPECT_FALSE(FastRowScaler(Task(9, 3, 9, 3), 3, VectorLevel::kScalar).IsVectorised());
}

TEST(FastRows, AreTheDefinedOnesForEveryWidthUpTo70AndEveryLayout) {
  Random random(30104000);
  int rows = 0;
  for (int sourceWidth = 1; sourceWidth <= 70; ++sourceWidth) {
    for (int resultWidth = 1; resultWidth <= 70; ++resultWidth) {
      RowTask task = Task(sourceWidth, resultWidth, random.Between(1, 70), random.Between(1, 70));
      const auto contents = static_cast<Contents>(rows % 4);
      task.sourceLayout = kLayouts[random.Between(0, 2)];
      task.resultLayout = kLayouts[random.Between(0, 2)];
      const Trial trial(random, task, rows % 8 == 0 ? Contents::kNoise : contents);
      for (VectorLevel level : Levels()) {
        ASSERT_TRUE(trial.IsVectorised(level));
        ASSERT_TRUE(trial.IsEqual(level)) << sourceWidth << " -> " << resultWidth;
        ASSERT_TRUE(trial.IsEqual(level, Way::kRepeated)) << "repeated: " << sourceWidth;
        ASSERT_TRUE(trial.IsEqual(level, Way::kStreamed)) << "streamed: " << sourceWidth;
        ++rows;
      }
    }
  }
  EXPECT_EQ(rows, 70 * 70 * static_cast<int>(Levels().size()));
}

TEST(FastRows, ConvertBetweenAllLayouts) {
  Random random(30104001);
  for (PixelLayout from : kLayouts) {
    for (PixelLayout to : kLayouts) {
      for (const auto& [sourceWidth, resultWidth] :
           {std::pair{37, 37}, {64, 16}, {40, 13}, {12, 61}}) {
        RowTask task = Task(sourceWidth, resultWidth, 8, 3);
        task.sourceLayout = from;
        task.resultLayout = to;
        const Trial trial(random, task, Contents::kNoise);
        for (VectorLevel level : Levels()) ASSERT_TRUE(trial.IsEqual(level));
      }
    }
  }
}

TEST(FastRows, AreTheDefinedOnesForEveryBlockWidthUpTo300) {
  Random random(30104002);
  for (int blockWidth = 1; blockWidth <= 300; ++blockWidth) {
    for (const int resultWidth : {1, 7, 19}) {
      for (const int lessThanWhole : {0, 1, 5}) {
        const int sourceWidth = blockWidth * resultWidth - lessThanWhole;
        if (sourceWidth < 1) continue;
        for (const Contents contents :
             {Contents::kNoise, Contents::kWhite, Contents::kNearlyWhite}) {
          const Trial trial(random, Task(sourceWidth, resultWidth, blockWidth, 2), contents);
          for (VectorLevel level : Levels()) {
            ASSERT_TRUE(trial.IsEqual(level)) << sourceWidth << " -> " << resultWidth;
          }
        }
      }
    }
  }
}

TEST(FastRows, AreTheDefinedOnesForVeryWideBlocks) {
  Random random(30104003);
  for (const int blockWidth : {511, 512, 513, 1025, 32767, 65535, 65536, 65537}) {
    for (const Contents contents : {Contents::kNoise, Contents::kWhite, Contents::kNearlyWhite}) {
      const Trial trial(random, Task(blockWidth * 9, 9, 1, 1), contents);
      for (VectorLevel level : Levels()) {
        ASSERT_EQ(trial.IsVectorised(level), blockWidth <= 65536);
        ASSERT_TRUE(trial.IsEqual(level)) << blockWidth;
      }
    }
  }
}

// Sums that a block can have of single precision's quotients: whole numbers, and the sums around
// them, are where a rounding would show.
TEST(FastRows, WideMeansTruncateRightAtEveryWholeNumber) {
  for (const int blockWidth : {129, 130, 255, 1000, 65535, 65536}) {
    PixelMemory source(Bytes(blockWidth), Guard::kNone);
    for (int whole = 1; whole <= 255; whole += blockWidth > 1000 ? 127 : 1) {
      for (int k = 0; k < blockWidth; ++k) {
        Words(source)[k] = static_cast<std::uint32_t>(whole) * 0x010101U;
      }
      Words(source)[blockWidth - 1] -= 0x010100;  // green and blue one below, red whole
      const std::uint32_t below = static_cast<std::uint32_t>(whole) - 1;
      const std::uint32_t expected =
          static_cast<std::uint32_t>(whole) | below << 8 | below << 16 | 0xFF000000U;
      for (VectorLevel level : Levels()) {
        // One column is below the least count of some levels: eight with the same block.
        const std::int32_t columns[8] = {};
        std::uint32_t result[8] = {};
        FastRowsFor(level)->averageWide(Words(source), columns, blockWidth % 4 == 0 ? 8 : 0,
                                        blockWidth, result);
        if (blockWidth % 4 == 0) {
          ASSERT_EQ(result[7] | 0xFF000000U, expected);
        }
        FastRowScaler rows(Task(blockWidth, 1, 1, 1), 1, level);
        rows.Scale(Words(source), result);
        ASSERT_EQ(result[0], expected) << blockWidth << " " << whole;
      }
    }
  }
}

TEST(FastRows, DivisionIsExactForEverySumOfANarrowBlock) {
  for (std::int32_t divisor = 2; divisor <= kWidestNarrow; ++divisor) {
    const Division division = DivisionBy(divisor);
    for (std::int32_t sum = 0; sum <= 255 * divisor; ++sum) {
      const std::int64_t product = std::int64_t{sum} * division.multiplier;
      ASSERT_EQ(product >> 16 >> division.shift, sum / divisor) << sum << " / " << divisor;
    }
  }
}

// 255 times a block that wraps is another mean, and the kernels do not know it.
TEST(FastRows, BlocksWhoseCountWrapsAreMadeAsDefined) {
  Random random(30104004);
  const struct {
    int blockWidth, blockHeight;
    bool isVectorised;
  } kCases[] = {{2, 1 << 30, false}, {2, (1 << 30) - 1, true}, {1, 0x7FFFFFFF, true},
                {3, 1 << 30, false}, {65536, 32767, true},     {65536, 32768, false},
                {4, 1 << 30, false}, {65535, 65537, false}};
  for (const auto& c : kCases) {
    const Trial trial(random, Task(c.blockWidth * 8, 8, c.blockHeight, 1), Contents::kNoise);
    for (VectorLevel level : Levels()) {
      EXPECT_EQ(trial.IsVectorised(level), c.isVectorised) << c.blockWidth << c.blockHeight;
      EXPECT_TRUE(trial.IsEqual(level)) << c.blockWidth << " x " << c.blockHeight;
    }
  }
}

TEST(FastRows, LongRowsAreMadeInPieces) {
  Random random(30104005);
  for (const int resultWidth : {4095, 4096, 4097, 8192, 8193, 12345}) {
    for (const int sourceWidth : {1, 700, 4096, 9000, 50001}) {
      const Trial trial(random, Task(sourceWidth, resultWidth, 3, 7), Contents::kNoise);
      for (VectorLevel level : Levels()) {
        ASSERT_TRUE(trial.IsEqual(level)) << sourceWidth << " -> " << resultWidth;
        ASSERT_TRUE(trial.IsEqual(level, Way::kRepeated)) << "repeated";
        ASSERT_TRUE(trial.IsEqual(level, Way::kStreamed)) << "streamed";
      }
    }
  }
}

TEST(FastRows, ColumnsAreTheTruncatedProducts) {
  Random random(30104006);
  std::int32_t columns[9];
  for (int round = 0; round < 20000; ++round) {
    const double step = static_cast<double>(random.Between(1, 1 << 24)) / random.Between(1, 9999);
    const std::int32_t first = random.Between(0, 9990);
    const std::int32_t count = random.Between(1, 9);
    for (VectorLevel level : Levels()) {
      columns[count - 1] = -1;
      FastRowsFor(level)->columns(step / 16, first, count, columns);
      for (std::int32_t k = 0; k < count; ++k) {
        ASSERT_EQ(columns[k], TruncateToInt32(step / 16 * (first + k)));
      }
    }
  }
}

// The next row is only asked for, and any address will do.
TEST(FastRows, AreTheSameWhateverTheNextRowIs) {
  Random random(30104008);
  for (VectorLevel level : Levels()) {
    for (const int sourceWidth : {37, 700, 9000, 40000}) {
      const Trial trial(random, Task(sourceWidth, 290, 3, 2), Contents::kNoise);
      ScaleRowAsDefined(trial.task, Words(trial.source), Words(trial.expected));
      const auto* inaccessible = reinterpret_cast<const std::uint32_t*>(std::uintptr_t{64});
      const std::uint32_t* own = Words(trial.source);
      for (const std::uint32_t* next : {own, own + sourceWidth, inaccessible}) {
        std::memset(trial.made.Data(), 0x5A, trial.made.Size());
        FastRowScaler rows(trial.task, 2, level);
        rows.Scale(Words(trial.source), Words(trial.made), next);
        EXPECT_EQ(std::memcmp(trial.expected.Data(), trial.made.Data(), trial.made.Size()), 0);
      }
    }
  }
}

// Enlarged rows that come from one source row are made once; a row that may have changed is not
// one of them.
TEST(FastRows, RowsAreMadeAnewAfterOtherCodeRan) {
  Random random(30104007);
  for (VectorLevel level : Levels()) {
    for (const int resultHeight : {20, 6 << 20}) {
      const Trial trial(random, Task(30, 50, 10, resultHeight), Contents::kNoise);
      FastRowScaler rows(trial.task, resultHeight, level);
      rows.Scale(Words(trial.source), Words(trial.made));
      rows.Scale(Words(trial.source), Words(trial.made));  // repeated
      Words(trial.source)[0] ^= 0x00332211;
      rows.Settle();
      rows.Scale(Words(trial.source), Words(trial.made));
      ScaleRowAsDefined(trial.task, Words(trial.source), Words(trial.expected));
      EXPECT_EQ(std::memcmp(trial.expected.Data(), trial.made.Data(), trial.made.Size()), 0);
    }
  }
}

}  // namespace
