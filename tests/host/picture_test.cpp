#include "host/picture.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <set>
#include <stdexcept>

#include "host/ledger.h"
#include "tests/host/faults.h"

namespace host {
namespace {

PictureSpec Spec(int width, int height, Storage storage = Storage::kBitmapContext) {
  PictureSpec spec;
  spec.width = width;
  spec.height = height;
  spec.storage = storage;
  return spec;
}

TEST(Picture, StartsFilledAndKeepsWhatIsSet) {
  for (const Storage storage : {Storage::kBitmapContext, Storage::kHostBuffer}) {
    PictureSpec spec = Spec(5, 4, storage);
    spec.fill = {1, 2, 3, 255};
    Picture picture(spec);
    EXPECT_EQ(picture.Get(4, 3), (Rgba{1, 2, 3, 255}));
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 5; ++x) {
        picture.Set(x, y, {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 9, 255});
      }
    }
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 5; ++x) {
        EXPECT_EQ(picture.Get(x, y),
                  (Rgba{static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 9, 255}));
      }
    }
    EXPECT_EQ(picture.DamagedPadding(), 0u);
  }
}

TEST(Picture, AFillIsStoredInThePicturesFormat) {
  PictureSpec spec = Spec(1, 1);
  spec.pixelFormat = 2;
  spec.hasAlphaChannel = true;
  spec.fill = {200, 100, 0, 51};
  EXPECT_EQ(Picture(spec).Word(0, 0), 0x00142833u);
  spec.storage = Storage::kHostBuffer;
  const Picture buffer(spec);
  EXPECT_EQ(buffer.PixelFormat(), 8);
  EXPECT_EQ(buffer.Word(0, 0), 0x33C86400u) << "straight alpha";
}

TEST(Picture, RowsOfABitmapContextFollowEachOtherWithPadding) {
  PictureSpec spec = Spec(3, 4);
  spec.rowPadding = 20;
  Picture picture(spec);
  for (int y = 1; y < 4; ++y) EXPECT_EQ(picture.Row(y) - picture.Row(y - 1), 32);
  EXPECT_EQ(picture.DamagedPadding(), 0u);
  picture.Row(2)[12] = 0;
  picture.Row(3)[31] = 0;
  EXPECT_EQ(picture.DamagedPadding(), 2u);
}

TEST(Picture, RowsOfAHostBufferAreShuffledWithGaps) {
  for (const Guard guard : {Guard::kNone, Guard::kAfter, Guard::kBefore}) {
    PictureSpec spec = Spec(3, 40, Storage::kHostBuffer);
    spec.guard = guard;
    const Picture picture(spec);
    bool ascending = true;
    bool descending = true;
    std::set<const unsigned char*> rows;
    for (int y = 0; y < 40; ++y) {
      rows.insert(picture.Row(y));
      if (y == 0) continue;
      ascending = ascending && picture.Row(y) > picture.Row(y - 1);
      descending = descending && picture.Row(y) < picture.Row(y - 1);
    }
    EXPECT_FALSE(ascending || descending);
    const unsigned char* previous = nullptr;
    for (const unsigned char* row : rows) {
      if (previous != nullptr) {
        EXPECT_GT(row - previous, 12);
      }
      previous = row;
    }
  }
}

TEST(PictureDeath, GuardsLieAroundTheMemoryOrEachRow) {
  PictureSpec spec = Spec(3, 4);
  spec.guard = Guard::kAfter;
  Picture context(spec);
  EXPECT_FAULT(Touch(context.Row(3) + 12));
  spec.guard = Guard::kBefore;
  Picture before(spec);
  EXPECT_FAULT(Touch(before.Row(0) - 1));
  spec.storage = Storage::kHostBuffer;
  Picture rowsBefore(spec);
  spec.guard = Guard::kAfter;
  Picture rowsAfter(spec);
  for (int y = 0; y < 4; ++y) {
    EXPECT_FAULT(Touch(rowsBefore.Row(y) - 1));
    EXPECT_FAULT(Touch(rowsAfter.Row(y) + 12));
  }
}

TEST(Picture, ThrowsOutsideItsPixels) {
  Picture picture(Spec(3, 2));
  EXPECT_THROW(picture.Row(2), std::out_of_range);
  EXPECT_THROW(picture.Row(-1), std::out_of_range);
  EXPECT_THROW(picture.Word(3, 0), std::out_of_range);
  EXPECT_THROW(picture.SetWord(-1, 0, 0), std::out_of_range);
  EXPECT_THROW(picture.Get(0, 2), std::out_of_range);
}

TEST(Picture, CanBeWithoutPixelsAndGetThemLater) {
  Picture picture(Spec(0, 0));
  EXPECT_FALSE(picture.HasPixels());
  EXPECT_EQ(picture.Width(), 0);
  EXPECT_THROW(picture.Row(0), std::out_of_range);
  EXPECT_THROW(picture.Construct(Spec(1 << 20, 1 << 20)), std::bad_alloc);
  EXPECT_EQ(picture.Width(), 0) << "left as it was";
  picture.Construct(Spec(2, 1, Storage::kHostBuffer));
  EXPECT_EQ(picture.Get(1, 0), (Rgba{255, 255, 255, 255}));
}

TEST(Picture, RefusesSizesThatCannotBe) {
  EXPECT_THROW(Picture(Spec(-1, 1)), std::invalid_argument);
  EXPECT_THROW(Picture(Spec(1, -1)), std::invalid_argument);
  EXPECT_THROW(Picture(Spec(0x7FFFFFFF, 0x7FFFFFFF)), std::bad_alloc);
  EXPECT_THROW(Picture(Spec(32768, 8192)), std::bad_alloc) << "exactly the limit";
}

TEST(Picture, ItsPropertiesAreFoundInAnyCase) {
  PictureSpec spec = Spec(7, 5);
  spec.hasAlphaChannel = true;
  const Picture picture(spec);
  int number = 0;
  bool truth = false;
  EXPECT_TRUE(picture.GetInteger("width", number));
  EXPECT_EQ(number, 7);
  EXPECT_TRUE(picture.GetInteger("HEIGHT", number));
  EXPECT_EQ(number, 5);
  EXPECT_FALSE(picture.GetInteger("HasAlphaChannel", number));
  EXPECT_TRUE(picture.GetBoolean("HasAlphaChannel", truth));
  EXPECT_TRUE(truth);
  EXPECT_FALSE(picture.GetBoolean("Width", truth));
}

TEST(PictureDeath, ADeadPictureGivesUpItsMaskAndItsMemory) {
  Ledger book;
  auto* picture = book.Add(std::make_unique<Picture>(Spec(4, 4)), "test");
  auto* mask = book.Add(std::make_unique<Picture>(Spec(4, 4)), "test");
  book.HandOver(mask, picture);
  picture->AttachMask(mask);
  unsigned char* const pixels = picture->Row(0);
  unsigned char* const maskPixels = mask->Row(0);
  book.Unlock(picture, "test");
  EXPECT_FALSE(mask->Alive());
  EXPECT_EQ(picture->Mask(), nullptr);
  EXPECT_THROW(picture->Get(0, 0), std::out_of_range);
  EXPECT_FAULT(Touch(pixels));
  EXPECT_FAULT(Touch(maskPixels));
  EXPECT_TRUE(book.Violations().empty());
}

TEST(PictureDeath, TheRecordsOfADeadPicturesLocksFaultToo) {
  Ledger book;
  auto* picture = book.Add(std::make_unique<Picture>(Spec(4, 4, Storage::kHostBuffer)), "test");
  REALpictureDescription description{};
  ASSERT_TRUE(picture->Describe(kDescriptionHostBuffer, description));
  auto* const record = static_cast<unsigned char*>(description.handle);
  auto* const table =
      reinterpret_cast<unsigned char*>(static_cast<REALhostBuffer*>(description.handle)->rowTable);
  Touch(table + 4);
  book.Unlock(picture, "test");
  EXPECT_FAULT(Touch(record));
  EXPECT_FAULT(Touch(table));
}

TEST(Picture, CountsCacheClears) {
  Picture picture(Spec(1, 1));
  picture.ClearCache();
  picture.ClearCache();
  EXPECT_EQ(picture.CacheClears(), 2);
}

}  // namespace
}  // namespace host
