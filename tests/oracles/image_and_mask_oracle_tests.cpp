// Proves the oracle of scaling with a mask: every expected word here is worked out by hand.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/oracles/image_and_mask.h"
#include "tests/oracles/red_pictures.h"

namespace oracle {
namespace {

// Picture and mask in format 1, zero-filled.
ImageAndMaskRequest Request(int width, int height, bool antiAlias) {
  ImageAndMaskRequest request;
  request.width = width;
  request.height = height;
  request.antiAlias = antiAlias;
  request.picture.format = 1;
  request.mask.format = 1;
  return request;
}

// Reds in format 1 with a fourth byte of 255.
Words Opaque(Words reds) {
  for (std::uint32_t& red : reds) red |= 0xFF000000u;
  return reds;
}

TEST(ScaleImageAndMask, ItsOwnSizeIsTheReceiverWithItsMask) {
  const Image source = Reds(2, 1, {1, 2});
  const Image mask = {1, 1, 8, {0x12345678}};
  const auto with = ScaleImageAndMask(source, &mask, Request(2, 1, true));
  ASSERT_TRUE(with.has_value());
  EXPECT_EQ(with->branch, Branch::kSame);
  EXPECT_EQ(with->image, source);
  EXPECT_EQ(with->mask, mask);
  const auto without = ScaleImageAndMask(source, nullptr, Request(2, 1, false));
  ASSERT_TRUE(without.has_value());
  EXPECT_EQ(without->branch, Branch::kSame);
  EXPECT_FALSE(without->mask.has_value());
}

// Both 1 x 2, doubled, fast: rows 0 0 1 1, opaque.
TEST(ScaleImageAndMask, FastScalesBothFast) {
  const Image mask = Reds(1, 2, {0, 64});
  const auto result = ScaleImageAndMask(Reds(1, 2, {10, 21}), &mask, Request(2, 4, false));
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(result->branch, Branch::kFast);
  EXPECT_EQ(result->image, (Image{2, 4, 1, Opaque({10, 10, 10, 10, 21, 21, 21, 21})}));
  EXPECT_EQ(result->mask, (Image{2, 4, 1, Opaque({0, 0, 0, 0, 64, 64, 64, 64})}));
}

// Rows with t = 0, 1/2, 0, 1/2: 10, 15.5 + .5, 21, 21 and 0, 32 + .5, 64, 64. Fourth bytes stay 0.
TEST(ScaleImageAndMask, SmoothScalesBothSmoothly) {
  const Image mask = Reds(1, 2, {0, 64});
  const auto result = ScaleImageAndMask(Reds(1, 2, {10, 21}), &mask, Request(2, 4, true));
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(result->branch, Branch::kSmooth);
  EXPECT_EQ(result->image, (Image{2, 4, 1, {10, 10, 16, 16, 21, 21, 21, 21}}));
  EXPECT_EQ(result->mask, (Image{2, 4, 1, {0, 0, 32, 32, 64, 64, 64, 64}}));
}

TEST(ScaleImageAndMask, WithoutAMaskItIsPlainScaling) {
  struct Row {
    int width, height;
    bool antiAlias;
    Branch branch;
  };
  const Image source = Reds(3, 2, {10, 200, 30, 41, 52, 255});
  for (const Row& row : std::vector<Row>{
           {3, 2, true, Branch::kSame},
           {7, 5, true, Branch::kSmooth},
           {7, 5, false, Branch::kFast},
           {7, 2, true, Branch::kFast},
           {2, 5, true, Branch::kFast},
           {2, 1, false, Branch::kFast},
       }) {
    SCOPED_TRACE(std::to_string(row.width) + "x" + std::to_string(row.height));
    const auto result =
        ScaleImageAndMask(source, nullptr, Request(row.width, row.height, row.antiAlias));
    const auto plain = ScaleMethod(
        source,
        {.width = row.width, .height = row.height, .antiAlias = row.antiAlias, .resultFormat = 1});
    ASSERT_TRUE(result.has_value() && plain.has_value());
    EXPECT_EQ(result->branch, row.branch);
    EXPECT_EQ(plain->branch, row.branch);
    EXPECT_EQ(result->image, plain->image);
    EXPECT_FALSE(result->mask.has_value());
  }
}

// The picture grows in one direction only: fast. Its 1 x 1 mask would grow in both, but is scaled
// fast as well: opaque.
TEST(ScaleImageAndMask, ThePictureChoosesForASmallerMask) {
  const Image mask = Reds(1, 1, {64});
  const auto result = ScaleImageAndMask(Reds(1, 2, {10, 21}), &mask, Request(2, 2, true));
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(result->branch, Branch::kFast);
  EXPECT_EQ(result->image.words, Opaque({10, 10, 21, 21}));
  EXPECT_EQ(result->mask, (Image{2, 2, 1, Opaque({64, 64, 64, 64})}));
}

// The picture grows in both directions, its 4 x 1 mask shrinks in one. Smooth: columns 0 and 2 with
// t = 0. Fast: (0.5 + 1 + 5) / 2 = 3.25 and (0.5 + 3 + 9) / 2 = 6.25.
TEST(ScaleImageAndMask, ThePictureChoosesForALargerMask) {
  const Image mask = Reds(4, 1, {1, 5, 3, 9});
  const auto smooth = ScaleImageAndMask(Reds(1, 1, {7}), &mask, Request(2, 2, true));
  ASSERT_TRUE(smooth.has_value());
  EXPECT_EQ(smooth->branch, Branch::kSmooth);
  EXPECT_EQ(smooth->image.words, Words(4, 7));
  EXPECT_EQ(smooth->mask, (Image{2, 2, 1, {1, 3, 1, 3}}));
  const auto fast = ScaleImageAndMask(Reds(1, 1, {7}), &mask, Request(2, 2, false));
  ASSERT_TRUE(fast.has_value());
  EXPECT_EQ(fast->mask, (Image{2, 2, 1, Opaque({3, 6, 3, 6})}));
}

// A mask of the requested size is still put through the scaler: scale 1, fourth byte 255.
TEST(ScaleImageAndMask, AMaskOfTheRequestedSizeIsScaledAllTheSame) {
  const Image mask = {2, 2, 1, {0x11000001, 0x22000002, 0x33000003, 0x44000004}};
  const auto fast = ScaleImageAndMask(Reds(1, 1, {7}), &mask, Request(2, 2, false));
  ASSERT_TRUE(fast.has_value());
  EXPECT_EQ(fast->mask, (Image{2, 2, 1, Opaque({1, 2, 3, 4})}));
  const auto smooth = ScaleImageAndMask(Reds(1, 1, {7}), &mask, Request(2, 2, true));
  ASSERT_TRUE(smooth.has_value());
  EXPECT_EQ(smooth->mask, mask);
}

// Red 7 of the picture (format 1 to 8), red 9 of the mask (format 8 to 2).
TEST(ScaleImageAndMask, PictureAndMaskHaveTheirOwnFormats) {
  ImageAndMaskRequest request = Request(2, 1, false);
  request.picture.format = 8;
  request.mask.format = 2;
  const Image mask = {1, 1, 8, {0x77090000}};
  const auto result = ScaleImageAndMask(Reds(1, 1, {7}), &mask, request);
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(result->image, NewImage(2, 1, 8, 0x00070000));
  EXPECT_EQ(result->mask, NewImage(2, 1, 2, 0x000009FF));
  request.mask.format = 7;
  request.mask.initial = 0x12345678;
  const auto unwritten = ScaleImageAndMask(Reds(1, 1, {7}), &mask, request);
  ASSERT_TRUE(unwritten.has_value());
  EXPECT_EQ(unwritten->mask, NewImage(2, 1, 7, 0x12345678));
}

// The mask 0, 32, 64, 64 in three rows: the last one lands on row 0. A picture of five rows keeps
// its spare row.
TEST(ScaleImageAndMask, PictureAndMaskHaveTheirOwnRows) {
  ImageAndMaskRequest request = Request(2, 4, true);
  request.picture.height = 5;
  request.picture.initial = 3;
  request.mask.height = 3;
  const Image mask = Reds(1, 2, {0, 64});
  const auto result = ScaleImageAndMask(Reds(1, 2, {10, 21}), &mask, request);
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(result->image, (Image{2, 5, 1, {10, 10, 16, 16, 21, 21, 21, 21, 3, 3}}));
  EXPECT_EQ(result->mask, (Image{2, 3, 1, {64, 64, 32, 32, 64, 64}}));
}

TEST(ScaleImageAndMask, APictureThatCannotBeMadeGivesNothing) {
  const Image source = Reds(1, 1, {7});
  const Image mask = Reds(1, 1, {64});
  for (const bool antiAlias : {false, true}) {
    EXPECT_FALSE(ScaleImageAndMask(source, &mask, Request(0, 2, antiAlias)).has_value());
    EXPECT_FALSE(ScaleImageAndMask(source, &mask, Request(2, -1, antiAlias)).has_value());
    EXPECT_FALSE(ScaleImageAndMask(source, &mask, Request(32768, 2, antiAlias)).has_value());
  }
}

TEST(ScaleImageAndMask, AMaskThatCannotBeMadeIsLeftOut) {
  const Image source = Reds(1, 1, {7});
  const Image mask = Reds(1, 1, {64});
  for (const bool antiAlias : {false, true}) {
    ImageAndMaskRequest request = Request(32768, 2, antiAlias);
    request.picture.hasAlpha = true;
    const auto result = ScaleImageAndMask(source, &mask, request);
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(result->branch, antiAlias ? Branch::kSmooth : Branch::kFast);
    EXPECT_EQ(result->image, NewImage(32768, 2, 1, antiAlias ? 0x00000007u : 0xFF000007u));
    EXPECT_FALSE(result->mask.has_value());
    request.mask.hasAlpha = true;
    const auto both = ScaleImageAndMask(source, &mask, request);
    ASSERT_TRUE(both.has_value());
    EXPECT_EQ(both->mask, NewImage(32768, 2, 1, antiAlias ? 0x00000040u : 0xFF000040u));
  }
}

// A 3 x 2 receiver and a request of 2 x 1: the top-left region, not a smaller picture.
TEST(ScaleConverted, ShrinkingCutsOutTheTopLeft) {
  Image temporary = NewImage(2, 1, 1, 0x00FFFFFF);
  DrawTopLeft(temporary, {3, 2, 1, {1, 2, 3, 4, 5, 6}});
  const auto result = ScaleConverted(temporary, nullptr, 3, 2, Request(2, 1, true));
  ASSERT_TRUE(result.has_value());
  EXPECT_EQ(result->branch, Branch::kFast);
  EXPECT_EQ(result->image, (Image{2, 1, 1, Opaque({1, 2})}));
  EXPECT_FALSE(result->mask.has_value());
}

// A 1 x 1 receiver at the top left of 3 x 2; the rest is as made. The smooth enlarger at scale 1
// keeps all four bytes, the fast one sets the fourth. The 1 x 1 mask is really enlarged.
TEST(ScaleConverted, EnlargingLeavesTheRestAsMade) {
  Image temporary = NewImage(3, 2, 1, 0x00FFFFFF);
  DrawTopLeft(temporary, {1, 1, 8, {0xFFC80000}});
  const Image mask = Reds(1, 1, {64});
  const auto smooth = ScaleConverted(temporary, &mask, 1, 1, Request(3, 2, true));
  ASSERT_TRUE(smooth.has_value());
  EXPECT_EQ(smooth->branch, Branch::kSmooth);
  EXPECT_EQ(smooth->image.words,
            (Words{0xFF0000C8, 0x00FFFFFF, 0x00FFFFFF, 0x00FFFFFF, 0x00FFFFFF, 0x00FFFFFF}));
  EXPECT_EQ(smooth->mask, NewImage(3, 2, 1, 64));
  const auto fast = ScaleConverted(temporary, &mask, 1, 1, Request(3, 2, false));
  ASSERT_TRUE(fast.has_value());
  EXPECT_EQ(fast->branch, Branch::kFast);
  EXPECT_EQ(fast->image.words,
            (Words{0xFF0000C8, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}));
  EXPECT_EQ(fast->mask, NewImage(3, 2, 1, 0xFF000040));
}

// The temporary picture is as large as the request; only the receiver's 1 x 2 tells that the height
// does not grow: fast.
TEST(ScaleConverted, TheReceiversSizeChooses) {
  const Image temporary = NewImage(2, 2, 1, 7);
  const auto fast = ScaleConverted(temporary, nullptr, 1, 2, Request(2, 2, true));
  ASSERT_TRUE(fast.has_value());
  EXPECT_EQ(fast->branch, Branch::kFast);
  const auto smooth = ScaleConverted(temporary, nullptr, 1, 1, Request(2, 2, true));
  ASSERT_TRUE(smooth.has_value());
  EXPECT_EQ(smooth->branch, Branch::kSmooth);
  EXPECT_THROW(ScaleConverted(temporary, nullptr, 2, 2, Request(2, 2, true)),
               std::invalid_argument);
}

TEST(ScaleConverted, TheTemporaryPictureIsOpaqueAndLimited) {
  EXPECT_FALSE(ScaleConverted(NewImage(32768, 1, 1), nullptr, 1, 1, Request(32768, 1, false)));
}

// Red 1, green 2, blue 3 from format 2 to the others; one row and two columns overlap.
TEST(DrawTopLeft, CopiesColoursWhereBothHavePixels) {
  const Image source = NewImage(2, 3, 2, 0x030201FF);
  Image last = NewImage(3, 1, 3, 9);
  DrawTopLeft(last, source);
  EXPECT_EQ(last.words, (Words{0xFF030201, 0xFF030201, 9}));
  Image buffer = NewImage(1, 1, 8, 9);
  DrawTopLeft(buffer, source);
  EXPECT_EQ(buffer.words, Words{0x00010203});
  Image none = NewImage(1, 1, 7, 9);
  DrawTopLeft(none, source);
  EXPECT_EQ(none.words, Words{9});
}

TEST(CopyHostBuffer, CopiesWholeWordsBetweenBuffersOfOneSize) {
  Image buffer = NewImage(2, 1, 8, 9);
  EXPECT_TRUE(CopyHostBuffer(buffer, {2, 1, 8, {0x11223344, 0xFF000000}}));
  EXPECT_EQ(buffer.words, (Words{0x11223344, 0xFF000000}));
}

TEST(CopyHostBuffer, OtherwiseChangesNothing) {
  for (const Image& source :
       {NewImage(1, 2, 8, 5), NewImage(2, 2, 8, 5), NewImage(1, 1, 8, 5), NewImage(2, 1, 1, 5)}) {
    Image buffer = NewImage(2, 1, 8, 9);
    EXPECT_FALSE(CopyHostBuffer(buffer, source));
    EXPECT_EQ(buffer, NewImage(2, 1, 8, 9));
  }
  Image other = NewImage(2, 1, 2, 9);
  EXPECT_FALSE(CopyHostBuffer(other, NewImage(2, 1, 8, 5)));
  EXPECT_EQ(other, NewImage(2, 1, 2, 9));
}

}  // namespace
}  // namespace oracle
