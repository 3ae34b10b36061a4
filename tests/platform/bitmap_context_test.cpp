#include "platform/linux/bitmap_context.h"

#include <gtest/gtest.h>

namespace {

TEST(BitmapContext, EveryQueryAnswersItsField) {
  unsigned char pixels[64];
  CGContext context;
  context.data = pixels;
  context.width = 3;
  context.height = 5;
  context.bytesPerRow = 12;
  context.bitsPerPixel = 16;
  context.alphaInfo = 0x2002;
  EXPECT_EQ(CGBitmapContextGetData(&context), pixels);
  EXPECT_EQ(CGBitmapContextGetWidth(&context), 3u);
  EXPECT_EQ(CGBitmapContextGetHeight(&context), 5u);
  EXPECT_EQ(CGBitmapContextGetBytesPerRow(&context), 12u);
  EXPECT_EQ(CGBitmapContextGetBitsPerPixel(&context), 16u);
  EXPECT_EQ(CGBitmapContextGetAlphaInfo(&context), 0x2002u) << "higher bits are handed out too";
}

TEST(BitmapContext, NullAnswersZero) {
  EXPECT_EQ(CGBitmapContextGetData(nullptr), nullptr);
  EXPECT_EQ(CGBitmapContextGetWidth(nullptr), 0u);
  EXPECT_EQ(CGBitmapContextGetHeight(nullptr), 0u);
  EXPECT_EQ(CGBitmapContextGetBytesPerRow(nullptr), 0u);
  EXPECT_EQ(CGBitmapContextGetBitsPerPixel(nullptr), 0u);
  EXPECT_EQ(CGBitmapContextGetAlphaInfo(nullptr), 0u);
}

}  // namespace
