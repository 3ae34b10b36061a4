// Where the channels of each pixel format lie.
#include "pixels/pixel_format.h"

#include <gtest/gtest.h>

#include "host/pixel_word.h"

namespace {

constexpr PixelLayout kPixelLayouts[] = {PixelLayout::kRedFirst, PixelLayout::kAlphaFirst,
                                         PixelLayout::kBlueFirst};

Rgb DecodeByConstant(PixelLayout layout, std::uint32_t word) {
  Rgb colour{1, 2, 3};
  WithLayout(layout, [&](auto constant) { colour = Decode(decltype(constant)::value, word); });
  return colour;
}

TEST(PixelFormat, EachFormatHasItsLayoutAndAllOthersNone) {
  const struct {
    int format;
    PixelLayout layout;
  } rows[] = {
      {1, PixelLayout::kRedFirst},     {3, PixelLayout::kRedFirst},
      {5, PixelLayout::kRedFirst},     {2, PixelLayout::kAlphaFirst},
      {4, PixelLayout::kAlphaFirst},   {6, PixelLayout::kAlphaFirst},
      {8, PixelLayout::kBlueFirst},    {0, PixelLayout::kNone},
      {7, PixelLayout::kNone},         {9, PixelLayout::kNone},
      {10, PixelLayout::kNone},        {16, PixelLayout::kNone},
      {33, PixelLayout::kNone},        {34, PixelLayout::kNone},
      {40, PixelLayout::kNone},        {-1, PixelLayout::kNone},
      {-2, PixelLayout::kNone},        {-31, PixelLayout::kNone},
      {INT32_MIN, PixelLayout::kNone}, {INT32_MAX, PixelLayout::kNone},
  };
  for (const auto& row : rows) EXPECT_EQ(LayoutOf(row.format), row.layout) << row.format;
}

TEST(PixelFormat, ChannelsLieWhereTheFormatSays) {
  const struct {
    int format;
    std::uint32_t r, g, b;
  } rows[] = {
      {1, 0x11, 0x22, 0x33}, {3, 0x11, 0x22, 0x33}, {5, 0x11, 0x22, 0x33},
      {2, 0x22, 0x33, 0x44}, {4, 0x22, 0x33, 0x44}, {6, 0x22, 0x33, 0x44},
      {8, 0x33, 0x22, 0x11}, {0, 0, 0, 0},          {7, 0, 0, 0},
  };
  for (const auto& row : rows) {
    const Rgb colour = DecodeByConstant(LayoutOf(row.format), 0x44332211);
    EXPECT_EQ(colour.r, row.r) << row.format;
    EXPECT_EQ(colour.g, row.g) << row.format;
    EXPECT_EQ(colour.b, row.b) << row.format;
  }
}

TEST(PixelFormat, AnUnknownFormatReadsAsBlackWhateverTheWord) {
  for (const int format : {0, 7, 9, -1}) {
    for (std::uint32_t word = 1; word != 0; word <<= 1) {
      const Rgb colour = Decode(LayoutOf(format), word);
      EXPECT_EQ(colour.r + colour.g + colour.b, 0U) << format;
    }
  }
}

TEST(PixelFormat, OpaqueWordsHaveAlpha255AndAHostBufferTopByte0) {
  EXPECT_EQ(EncodeOpaque(PixelLayout::kRedFirst, {0x10, 0x20, 0x30}), 0xFF302010u);
  EXPECT_EQ(EncodeOpaque(PixelLayout::kAlphaFirst, {0x10, 0x20, 0x30}), 0x302010FFu);
  EXPECT_EQ(EncodeOpaque(PixelLayout::kBlueFirst, {0x10, 0x20, 0x30}), 0x00102030u);
  EXPECT_EQ(EncodeOpaque(PixelLayout::kRedFirst, {255, 0, 254}), 0xFFFE00FFu);
  EXPECT_EQ(EncodeOpaque(PixelLayout::kAlphaFirst, {255, 0, 254}), 0xFE00FFFFu);
  EXPECT_EQ(EncodeOpaque(PixelLayout::kBlueFirst, {255, 0, 254}), 0x00FF00FEu);
}

TEST(PixelFormat, EveryLevelOfEveryChannelSurvivesWithoutTouchingTheOthers) {
  for (const PixelLayout layout : kPixelLayouts) {
    for (std::uint32_t level = 0; level < 256; ++level) {
      const Rgb colours[] = {{level, 7, 9}, {7, level, 9}, {7, 9, level}};
      for (const Rgb& colour : colours) {
        const Rgb back = DecodeByConstant(layout, EncodeOpaque(layout, colour));
        ASSERT_EQ(back.r, colour.r);
        ASSERT_EQ(back.g, colour.g);
        ASSERT_EQ(back.b, colour.b);
      }
    }
  }
}

TEST(PixelFormat, AgreesWithTheHostsOwnReadingOfOpaqueWords) {
  for (const int format : {1, 2, 3, 4, 5, 6, 8}) {
    for (std::uint32_t step = 0; step < 1000; ++step) {
      const std::uint32_t word = step * 2654435761u + 0x12345;
      const host::Rgba seen = host::ColourOfWord(word, format, false);
      const Rgb colour = DecodeByConstant(LayoutOf(format), word);
      ASSERT_EQ(colour.r, seen.r) << format;
      ASSERT_EQ(colour.g, seen.g) << format;
      ASSERT_EQ(colour.b, seen.b) << format;
      ASSERT_EQ(EncodeOpaque(LayoutOf(format), colour), host::WordOfColour(seen, format, false));
    }
  }
}

TEST(PixelFormat, WithLayoutCallsOnceWithTheLayoutItWasGiven) {
  for (const PixelLayout layout : {PixelLayout::kRedFirst, PixelLayout::kAlphaFirst,
                                   PixelLayout::kBlueFirst, PixelLayout::kNone}) {
    int calls = 0;
    WithLayout(layout, [&](auto constant) {
      ++calls;
      EXPECT_EQ(decltype(constant)::value, layout);
    });
    EXPECT_EQ(calls, 1);
  }
}

TEST(PixelFormat, TheLowAndHighBytesOfAWordAreTakenWithoutSign) {
  EXPECT_EQ(ByteOf(0xFF000080u, 0), 0x80u);
  EXPECT_EQ(ByteOf(0xFF000080u, 24), 0xFFu);
}

}  // namespace
