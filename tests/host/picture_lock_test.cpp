#include <gtest/gtest.h>

#include "host/picture.h"
#include "tests/host/faults.h"

namespace host {
namespace {

PictureSpec Spec(Storage storage) {
  PictureSpec spec;
  spec.width = 3;
  spec.height = 2;
  spec.storage = storage;
  spec.pixelFormat = 5;
  return spec;
}

TEST(PictureLock, OnlyTheFittingTypeSucceeds) {
  Picture context(Spec(Storage::kBitmapContext));
  Picture buffer(Spec(Storage::kHostBuffer));
  REALpictureDescription description{};
  EXPECT_TRUE(context.Describe(8, description));
  EXPECT_FALSE(context.Describe(10, description));
  EXPECT_TRUE(buffer.Describe(10, description));
  EXPECT_FALSE(buffer.Describe(8, description));
  EXPECT_FALSE(buffer.Describe(9, description));
  buffer.refuseLocks = true;
  EXPECT_FALSE(buffer.Describe(10, description));
}

TEST(PictureLock, FailsWithoutPixels) {
  PictureSpec spec = Spec(Storage::kBitmapContext);
  spec.width = 0;
  REALpictureDescription description{};
  EXPECT_FALSE(Picture(spec).Describe(8, description));
}

TEST(PictureLock, AContextTellsTheTruthWithNoiseAboveTheAlphaInfo) {
  PictureSpec spec = Spec(Storage::kBitmapContext);
  spec.rowPadding = 8;
  spec.bitsPerPixel = 16;
  Picture picture(spec);
  REALpictureDescription description{};
  ASSERT_TRUE(picture.Describe(8, description));
  EXPECT_EQ(description.type, 8);
  EXPECT_EQ(description.width, 3);
  EXPECT_EQ(description.height, 2);
  auto* context = static_cast<CGContext*>(description.handle);
  EXPECT_EQ(CGBitmapContextGetData(context), picture.Row(0));
  EXPECT_EQ(CGBitmapContextGetWidth(context), 3u);
  EXPECT_EQ(CGBitmapContextGetHeight(context), 2u);
  EXPECT_EQ(CGBitmapContextGetBytesPerRow(context), 20u);
  EXPECT_EQ(CGBitmapContextGetBitsPerPixel(context), 16u);
  EXPECT_EQ(CGBitmapContextGetAlphaInfo(context) & 7, 5u);
  EXPECT_NE(CGBitmapContextGetAlphaInfo(context), 5u);
}

TEST(PictureLock, ABufferRecordTellsTheTruth) {
  Picture picture(Spec(Storage::kHostBuffer));
  REALpictureDescription description{};
  ASSERT_TRUE(picture.Describe(10, description));
  EXPECT_EQ(description.type, 10);
  const auto* buffer = static_cast<const REALhostBuffer*>(description.handle);
  EXPECT_EQ(buffer->kind, 0u);
  EXPECT_EQ(buffer->width, 3u);
  EXPECT_EQ(buffer->height, 2u);
  EXPECT_NE(buffer->valid, 0u);
  for (int y = 0; y < 2; ++y) EXPECT_EQ(buffer->rowTable[y], picture.Row(y));
}

TEST(PictureLock, WordsWithoutAMeaningAreNoiseAndThereIsNoOwnBuffer) {
  Picture picture(Spec(Storage::kHostBuffer));
  REALpictureDescription description{};
  description.ownBuffer = &description;
  ASSERT_TRUE(picture.Describe(10, description));
  for (const std::uintptr_t word : description.hostWords) EXPECT_NE(word, 0u);
  for (const std::uintptr_t word : description.moreHostWords) EXPECT_NE(word, 0u);
  EXPECT_EQ(description.ownBuffer, nullptr);
  for (const std::uintptr_t word : static_cast<REALhostBuffer*>(description.handle)->hostWords) {
    EXPECT_NE(word, 0u);
  }
}

TEST(PictureLockDeath, AGuardedRowTableEndsAtTheHeight) {
  PictureSpec spec = Spec(Storage::kHostBuffer);
  spec.guard = Guard::kAfter;
  Picture picture(spec);
  REALpictureDescription description{};
  ASSERT_TRUE(picture.Describe(10, description));
  unsigned char* volatile* table = static_cast<REALhostBuffer*>(description.handle)->rowTable;
  EXPECT_EQ(table[1], picture.Row(1));
  EXPECT_FAULT({
    if (table[2] == nullptr) ADD_FAILURE();
  });
}

TEST(PictureLock, ADistortionIsSeenByThatLockOnly) {
  Picture context(Spec(Storage::kBitmapContext));
  Picture buffer(Spec(Storage::kHostBuffer));
  REALpictureDescription description{};
  context.distort = [](Picture::LockedView view) {
    view.description.width = 99;
    view.context.bytesPerRow = 4;
  };
  ASSERT_TRUE(context.Describe(8, description));
  EXPECT_EQ(description.width, 99);
  EXPECT_EQ(static_cast<CGContext*>(description.handle)->bytesPerRow, 4u);
  EXPECT_EQ(context.Width(), 3);
  context.distort = nullptr;
  ASSERT_TRUE(context.Describe(8, description));
  EXPECT_EQ(description.width, 3);
  EXPECT_EQ(static_cast<CGContext*>(description.handle)->bytesPerRow, 12u);

  buffer.distort = [](Picture::LockedView view) {
    view.buffer.rowTable[0] = nullptr;
    view.buffer.rowTable = nullptr;
    view.description.handle = nullptr;
  };
  ASSERT_TRUE(buffer.Describe(10, description));
  EXPECT_EQ(description.handle, nullptr);
  EXPECT_NE(buffer.Row(0), nullptr);
  buffer.distort = nullptr;
  ASSERT_TRUE(buffer.Describe(10, description));
  EXPECT_EQ(static_cast<REALhostBuffer*>(description.handle)->rowTable[0], buffer.Row(0));
}

}  // namespace
}  // namespace host
