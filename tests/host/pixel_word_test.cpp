#include "host/pixel_word.h"

#include <gtest/gtest.h>

#include <cmath>

namespace host {
namespace {

TEST(PixelWord, ChannelsLieWhereTheFormatSays) {
  struct Row {
    int format;
    bool alpha;
    std::uint32_t word;
    Rgba colour;
  };
  const Row rows[] = {
      {1, true, 0xFF332211, {0x11, 0x22, 0x33, 255}},
      {2, true, 0x332211FF, {0x11, 0x22, 0x33, 255}},
      {3, true, 0x40332211, {0x11, 0x22, 0x33, 0x40}},
      {4, true, 0x33221140, {0x11, 0x22, 0x33, 0x40}},
      {5, true, 0xFF332211, {0x11, 0x22, 0x33, 255}},
      {6, true, 0x332211FF, {0x11, 0x22, 0x33, 255}},
      {0, false, 0xFF332211, {0x11, 0x22, 0x33, 255}},
      {7, false, 0xFF332211, {0x11, 0x22, 0x33, 255}},
      {8, true, 0x40112233, {0x11, 0x22, 0x33, 0x40}},
      {8, false, 0x00112233, {0x11, 0x22, 0x33, 255}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ColourOfWord(row.word, row.format, row.alpha), row.colour) << row.format;
    EXPECT_EQ(WordOfColour(row.colour, row.format, row.alpha), row.word) << row.format;
  }
}

TEST(PixelWord, WithoutAlphaChannelEveryFormatIsOpaqueAndUnmultiplied) {
  for (int format = 0; format <= 8; ++format) {
    const Rgba read = ColourOfWord(0x10101010, format, false);
    EXPECT_EQ(read, (Rgba{16, 16, 16, 255})) << format;
    const std::uint32_t word = WordOfColour({1, 1, 1, 7}, format, false);
    EXPECT_EQ(ColourOfWord(word, format, false), (Rgba{1, 1, 1, 255})) << format;
  }
}

TEST(PixelWord, UnusedBytesAreWritten255AndZeroInHostBuffers) {
  EXPECT_EQ(WordOfColour({}, 5, false) >> 24, 255u);
  EXPECT_EQ(WordOfColour({}, 6, false) & 0xFF, 255u);
  EXPECT_EQ(WordOfColour({}, 8, false) >> 24, 0u);
}

TEST(PixelWord, MultipliedFormatsRoundToNearestBothWays) {
  for (int alpha = 0; alpha < 256; ++alpha) {
    for (int value = 0; value < 256; ++value) {
      const auto level = static_cast<std::uint8_t>(value);
      const Rgba colour{level, level, level, static_cast<std::uint8_t>(alpha)};
      const long stored = std::lround(value * alpha / 255.0);
      const long read = alpha == 0 ? 0 : std::min(255L, std::lround(value * 255.0 / alpha));
      for (const int format : {1, 2}) {
        const std::uint32_t word = WordOfColour(colour, format, true);
        EXPECT_EQ((word >> 8 & 0xFF), static_cast<std::uint32_t>(stored));
        const std::uint32_t plain = WordOfColour(colour, format + 2, true);
        EXPECT_EQ(ColourOfWord(plain, format, true).g, static_cast<std::uint8_t>(read));
      }
    }
  }
}

}  // namespace
}  // namespace host
