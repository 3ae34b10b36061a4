// The smooth enlarger's rows in vector instructions, at every level that the processor has, against
// the rows as defined: bit for bit, with inaccessible memory next to the sources and the result.
#include "scale/smooth_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "host/pixel_memory.h"
#include "tests/support/random.h"

namespace {

using host::PixelMemory;
using support::Random;

std::vector<const SmoothRows*> Variants() {
  std::vector<const SmoothRows*> variants;
  for (VectorLevel level : {VectorLevel::kSse2, VectorLevel::kAvx2}) {
    if (level <= BestVectorLevel()) variants.push_back(&SmoothRowsFor(level, 1, 1));
  }
  return variants;
}

enum class Contents { kNoise, kBlack, kWhite, kBlackAndWhite, kOpaque, kSameFirstByte };
constexpr Contents kAllContents[] = {Contents::kNoise,  Contents::kBlack,
                                     Contents::kWhite,  Contents::kBlackAndWhite,
                                     Contents::kOpaque, Contents::kSameFirstByte};

std::uint32_t Pixel(Random& random, Contents contents) {
  const std::uint32_t noise = random.Word();
  switch (contents) {
    case Contents::kNoise:
      return noise;
    case Contents::kBlack:
      return 0;
    case Contents::kWhite:
      return 0xFFFFFFFF;
    case Contents::kBlackAndWhite:
      return (noise & 0x01010101) * 255;
    case Contents::kOpaque:
      return noise | 0xFF000000;
    case Contents::kSameFirstByte:
      return (noise & 0xFFFFFF00) | 0x9B;
  }
  return 0;
}

std::size_t Bytes(int pixels) { return 4 * static_cast<std::size_t>(pixels); }

constexpr int kSourceHeight = 3;

struct Source {
  std::vector<PixelMemory> rows;
  int width;

  Source(Random& random, int newWidth, Contents contents) : width(newWidth) {
    for (int y = 0; y < kSourceHeight; ++y) {
      rows.emplace_back(Bytes(width), random.AnyGuard());
      for (int x = 0; x < width; ++x) {
        const std::uint32_t word = Pixel(random, contents);
        std::memcpy(rows.back().Data() + Bytes(x), &word, sizeof(word));
      }
    }
  }

  SmoothSourceRows Around(int row) const {
    const auto at = [&](int y) {
      return rows[static_cast<std::size_t>(std::min(std::max(y, 0), kSourceHeight - 1))].Data();
    };
    return {{at(row - 1), at(row), at(row + 1), at(row + 2)}, width};
  }
};

// Rows of a result, one after the other.
std::string Enlarge(const SmoothRows& rows, const Source& source, int width, int height,
                    host::Guard guard) {
  SmoothTables tables(source.width, kSourceHeight, width, height);
  tables.FillIndexes();
  tables.FillColumnWeights();
  tables.FillRowWeights();
  tables.PadWeights();
  if (rows.weightsApart) tables.SetColumnWeightsApart();
  std::string result;
  for (int j = 0; j < height; ++j) {
    const PixelMemory row(Bytes(width), guard);
    rows.enlarge(source.Around(tables.Row(j)), tables.RowWeights(j), tables, row.Data(), width);
    result.append(reinterpret_cast<const char*>(row.Data()), row.Size());
  }
  return result;
}

void ExpectSameAtAllLevels(Random& random, const Source& source, int width, int height) {
  const std::string expected =
      Enlarge(kSmoothRowsScalar, source, width, height, host::Guard::kNone);
  for (std::size_t n = 0; n < Variants().size(); ++n) {
    const std::string result = Enlarge(*Variants()[n], source, width, height, random.AnyGuard());
    ASSERT_TRUE(result == expected) << "variant " << n << ": " << source.width << " -> " << width
                                    << " columns, " << kSourceHeight << " -> " << height << " rows";
  }
}

#if defined(__i386__) || defined(__x86_64__)
TEST(SmoothRows, HaveAVariantForEachLevel) {
  EXPECT_EQ(&SmoothRowsFor(VectorLevel::kScalar, 5, 6), &kSmoothRowsScalar);
  EXPECT_EQ(&SmoothRowsFor(VectorLevel::kSse2, 5, 6), &kSmoothRowsSse2);
  EXPECT_EQ(&SmoothRowsFor(VectorLevel::kSse41, 5, 6), &kSmoothRowsSse2);
  EXPECT_EQ(&SmoothRowsFor(VectorLevel::kAvx2, 5, 6), &kSmoothRowsAvx2);
  EXPECT_NE(kSmoothRowsSse2.enlarge, kSmoothRowsScalar.enlarge);
  EXPECT_NE(kSmoothRowsAvx2.enlarge, kSmoothRowsScalar.enlarge);
  EXPECT_NE(kSmoothRowsAvx2.enlarge, kSmoothRowsSse2.enlarge);
}
#endif

TEST(SmoothRows, LeaveSourcesThatAreWiderThanTheResultToTheDefinition) {
  EXPECT_EQ(&SmoothRowsFor(VectorLevel::kAvx2, 7, 6), &kSmoothRowsScalar);
  EXPECT_NE(&SmoothRowsFor(BestVectorLevel(), 6, 6), &kSmoothRowsScalar);
}

TEST(SmoothRows, AreTheSameAtEveryLevelForEveryNarrowSource) {
  Random random(32001);
  for (int sourceWidth = 1; sourceWidth <= 70; ++sourceWidth) {
    const int s = sourceWidth;
    const int widths[] = {s,         s + 1,     7 * s / 6, 7 * s / 6 + 1,           5 * s / 4,
                          2 * s - 1, 2 * s,     2 * s + 1, s * 37 / 10 + 1,         4 * s - 1,
                          4 * s,     4 * s + 1, 8 * s,     random.Between(s, 9 * s)};
    for (int width : widths) {
      if (width < sourceWidth) continue;
      const Contents contents = kAllContents[random.Between(0, 5)];
      const Source source(random, sourceWidth, contents);
      // 12 rows of which are three quarters, halves and quarters of the way; 10 are thirds or
      // tenths.
      ExpectSameAtAllLevels(random, source, width, random.Coin() ? 4 * kSourceHeight : 10);
    }
  }
}

TEST(SmoothRows, AreTheSameAtEveryLevelForEveryNarrowResult) {
  Random random(32002);
  for (int width = 1; width <= 70; ++width) {
    for (int sourceWidth = 1; sourceWidth <= width; ++sourceWidth) {
      const Source source(random, sourceWidth, Contents::kNoise);
      ExpectSameAtAllLevels(random, source, width, random.Between(3, 5));
    }
  }
}

TEST(SmoothRows, AreTheSameAtEveryLevelWhereRowsAreWide) {
  Random random(32003);
  for (int sourceWidth : {64, 128, 250, 255, 256, 257, 258, 263, 264, 511, 512, 513, 1000}) {
    for (int width : {sourceWidth, sourceWidth + 1, sourceWidth * 11 / 10, sourceWidth * 2,
                      sourceWidth * 37 / 10, sourceWidth * 4, sourceWidth * 4 + 1}) {
      for (Contents contents : kAllContents) {
        const Source source(random, sourceWidth, contents);
        ExpectSameAtAllLevels(random, source, width, 4 * kSourceHeight);
        ExpectSameAtAllLevels(random, source, width, 7);
      }
    }
  }
}

TEST(SmoothRows, AreTheSameAtEveryLevelJustBeforeThePixel) {
  // Weights whose rounding errors are largest beside them: close to 0 and to 1.
  Random random(32004);
  for (Contents contents : kAllContents) {
    const Source source(random, 3, contents);
    ExpectSameAtAllLevels(random, source, 32767, 5);
    ExpectSameAtAllLevels(random, source, 40000, 60);
  }
}

// A byte that is the same in all pixels but one, wherever that is.
TEST(SmoothRows, AreTheSameAtEveryLevelWhereOnePixelDiffersInAByte) {
  Random random(32006);
  for (int sourceWidth = 1; sourceWidth <= 35; ++sourceWidth) {
    for (const Contents contents : {Contents::kOpaque, Contents::kSameFirstByte}) {
      for (int x = 0; x < sourceWidth; ++x) {
        Source source(random, sourceWidth, contents);
        const std::size_t byte = contents == Contents::kOpaque ? 3 : 0;
        const int y = random.Between(0, kSourceHeight - 1);
        source.rows[static_cast<std::size_t>(y)].Data()[Bytes(x) + byte] ^= 0x40;
        ExpectSameAtAllLevels(random, source, sourceWidth * 37 / 10 + 1, 7);
      }
    }
  }
}

// Bytes of every value that are the same in all pixels come out the same.
TEST(SmoothRows, KeepABytesOnlyValue) {
  Random random(32007);
  for (int value = 0; value < 256; ++value) {
    Source source(random, 9, Contents::kNoise);
    for (auto& row : source.rows) {
      for (std::size_t i = 3; i < Bytes(9); i += 4)
        row.Data()[i] = static_cast<unsigned char>(value);
    }
    const std::string expected = Enlarge(kSmoothRowsScalar, source, 97, 89, host::Guard::kNone);
    for (std::size_t i = 3; i < expected.size(); i += 4) {
      ASSERT_EQ(static_cast<unsigned char>(expected[i]), value);
    }
    ExpectSameAtAllLevels(random, source, 97, 89);
  }
}

// Between neighbours of all values, in all four bytes, for fractions with many and with few digits.
TEST(SmoothRows, AreTheSameAtEveryLevelForEveryPairOfValues) {
  Random random(32005);
  for (int distance = 0; distance < 256; ++distance) {
    Source source(random, 257, Contents::kBlack);
    for (int y = 0; y < kSourceHeight; ++y) {
      for (std::size_t i = 0; i < Bytes(257); ++i) {
        const std::size_t value = i / 4 % 2 * static_cast<std::size_t>(distance) + i / 4 + i % 4;
        source.rows[static_cast<std::size_t>(y)].Data()[i] = static_cast<unsigned char>(value + y);
      }
    }
    for (int width : {2 * 257, 4 * 257, 951}) {
      ExpectSameAtAllLevels(random, source, width, distance % 2 == 0 ? 4 * kSourceHeight : 11);
    }
  }
}

}  // namespace
