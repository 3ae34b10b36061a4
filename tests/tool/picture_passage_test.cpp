// Pictures on their way into the host and out of it.
#include <gtest/gtest.h>

#include "tool/picture_entry.h"
#include "tool/picture_exit.h"

namespace tool {
namespace {

using host::Rgba;

host::RuntimeOptions Kind(host::ApplicationKind kind) {
  host::RuntimeOptions options;
  options.kind = kind;
  return options;
}

Bitmap Two(Rgba first, Rgba second, bool hasAlpha) {
  Bitmap bitmap(2, 1, hasAlpha);
  bitmap.pixels = {first, second};
  return bitmap;
}

TEST(PictureEntry, AlphaChannelsTakeThePremultipliedFormatOfTheirOrder) {
  const int formats[] = {1, 2, 1, 2, 1, 2};
  for (int format = 1; format <= 6; ++format) {
    EXPECT_EQ(AlphaPixelFormat(format), formats[format - 1]);
    host::Runtime runtime;
    const Bitmap bitmap = Two({255, 0, 51, 128}, {1, 2, 3, 0}, true);
    const host::Picture* picture = EnterHost(runtime, bitmap, AlphaEntry::kChannel, format);
    EXPECT_TRUE(picture->HasAlphaChannel());
    EXPECT_EQ(picture->PixelFormat(), formats[format - 1]);
    // 255 and 51 times 128 / 255 are 128 and 25.6.
    EXPECT_EQ(picture->Word(0, 0), format % 2 == 1 ? 0x801A0080u : 0x1A008080u);
    EXPECT_EQ(picture->Word(1, 0), 0u);
  }
}

TEST(PictureEntry, OpaquePicturesKeepTheirColoursInEveryFormat) {
  for (int format = 1; format <= 6; ++format) {
    for (const AlphaEntry alpha : {AlphaEntry::kChannel, AlphaEntry::kMask, AlphaEntry::kDrop}) {
      host::Runtime runtime;
      const Bitmap bitmap = Two({1, 2, 3, 255}, {4, 5, 6, 255}, false);
      const host::Picture* picture = EnterHost(runtime, bitmap, alpha, format);
      EXPECT_FALSE(picture->HasAlphaChannel());
      EXPECT_EQ(picture->Mask(), nullptr);
      EXPECT_EQ(picture->PixelFormat(), format);
      EXPECT_EQ(picture->Word(0, 0), format % 2 == 1 ? 0xFF030201u : 0x030201FFu);
    }
  }
}

TEST(PictureEntry, DroppedAlphaLeavesTheColoursAndNoTrace) {
  for (int format = 1; format <= 6; ++format) {
    host::Runtime runtime;
    const Bitmap bitmap = Two({1, 2, 3, 128}, {4, 5, 6, 0}, true);
    const host::Picture* picture = EnterHost(runtime, bitmap, AlphaEntry::kDrop, format);
    EXPECT_FALSE(picture->HasAlphaChannel());
    EXPECT_EQ(picture->Mask(), nullptr);
    EXPECT_EQ(picture->Word(0, 0), format % 2 == 1 ? 0xFF030201u : 0x030201FFu);
    EXPECT_EQ(picture->Word(1, 0), format % 2 == 1 ? 0xFF060504u : 0x060504FFu);
  }
}

TEST(PictureEntry, MasksAreBlackWhereThePictureIsOpaque) {
  for (const auto kind : {host::ApplicationKind::kDesktop, host::ApplicationKind::kConsole}) {
    host::Runtime runtime(Kind(kind));
    const Bitmap bitmap = Two({1, 2, 3, 255}, {4, 5, 6, 10}, true);
    const host::Picture* picture = EnterHost(runtime, bitmap, AlphaEntry::kMask, 6);
    EXPECT_FALSE(picture->HasAlphaChannel());
    EXPECT_EQ(picture->Get(1, 0), (Rgba{4, 5, 6, 255}));
    ASSERT_NE(picture->Mask(), nullptr);
    EXPECT_EQ(picture->Mask()->Get(0, 0), (Rgba{0, 0, 0, 255}));
    EXPECT_EQ(picture->Mask()->Get(1, 0), (Rgba{245, 245, 245, 255}));
    EXPECT_EQ(picture->Mask()->GetStorage(), picture->GetStorage());
  }
}

TEST(PictureEntry, TheKindOfApplicationDecidesTheStorage) {
  const struct {
    host::ApplicationKind kind;
    host::Storage storage;
  } rows[] = {{host::ApplicationKind::kDesktop, host::Storage::kBitmapContext},
              {host::ApplicationKind::kNone, host::Storage::kBitmapContext},
              {host::ApplicationKind::kWeb, host::Storage::kHostBuffer},
              {host::ApplicationKind::kConsole, host::Storage::kHostBuffer}};
  for (const auto& row : rows) {
    host::Runtime runtime(Kind(row.kind));
    const Bitmap bitmap = Two({1, 2, 3, 255}, {4, 5, 6, 100}, true);
    for (const AlphaEntry alpha : {AlphaEntry::kChannel, AlphaEntry::kDrop}) {
      EXPECT_EQ(EnterHost(runtime, bitmap, alpha, 5)->GetStorage(), row.storage);
    }
  }
}

TEST(PictureExit, OpaquePicturesAreOpaqueWhateverTheirUnusedByte) {
  host::Runtime runtime;
  for (const int format : {1, 2, 5, 6}) {
    host::PictureSpec spec;
    spec.pixelFormat = format;
    host::Picture* picture = runtime.NewPicture(spec);
    picture->SetWord(0, 0, format % 2 == 1 ? 0x00030201u : 0x03020100u);
    const Bitmap seen = LeaveHost(*picture);
    EXPECT_FALSE(seen.hasAlpha);
    EXPECT_EQ(seen.At(0, 0).a, 255);
    if (format > 4) {
      EXPECT_EQ(seen.At(0, 0), (Rgba{1, 2, 3, 255}));
    }
  }
}

TEST(PictureExit, PremultipliedPixelsAreDivided) {
  host::Runtime runtime;
  host::PictureSpec spec;
  spec.pixelFormat = 1;
  spec.hasAlphaChannel = true;
  host::Picture* picture = runtime.NewPicture(spec);
  picture->SetWord(0, 0, 0x80402010u);
  // 16, 32 and 64 times 255 / 128 are 31.9, 63.75 and 127.5.
  const Bitmap seen = LeaveHost(*picture);
  EXPECT_TRUE(seen.hasAlpha);
  EXPECT_EQ(seen.At(0, 0), (Rgba{32, 64, 128, 128}));
}

TEST(PictureExit, AMaskBecomesAlphaAndEndsWhereItEnds) {
  host::Runtime runtime;
  host::PictureSpec spec;
  spec.width = 3;
  spec.fill = {7, 8, 9, 255};
  host::Picture* picture = runtime.NewPicture(spec);
  spec.width = 2;
  host::Picture* mask = runtime.NewPicture(spec);
  mask->Set(0, 0, {255, 255, 255, 255});
  mask->Set(1, 0, {55, 55, 55, 255});
  runtime.SetMask(picture, mask);
  const Bitmap seen = LeaveHost(*picture);
  EXPECT_TRUE(seen.hasAlpha);
  EXPECT_EQ(seen.pixels, (std::vector<Rgba>{{7, 8, 9, 0}, {7, 8, 9, 200}, {7, 8, 9, 255}}));
}

}  // namespace
}  // namespace tool
