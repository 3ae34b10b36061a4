// Parts of pictures, smaller copies, and the name of the pixels.
#include "tool/picture_parts.h"

#include <gtest/gtest.h>

namespace tool {
namespace {

using host::Rgba;

// Each pixel tells where it is.
Bitmap Places(int width, int height) {
  Bitmap picture(width, height, true);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      picture.At(x, y) = {std::uint8_t(x), std::uint8_t(y), 7, 200};
    }
  }
  return picture;
}

TEST(PictureParts, CropsWithinThePicture) {
  const Bitmap picture = Places(5, 4);
  const Bitmap crop = Crop(picture, {2, 1, 2, 9});
  EXPECT_EQ(crop.width, 2);
  EXPECT_EQ(crop.height, 3);
  EXPECT_TRUE(crop.hasAlpha);
  EXPECT_EQ(crop.At(1, 2), (Rgba{3, 3, 7, 200}));
}

TEST(PictureParts, FindTheMiddle) {
  const Part part = Middle(Places(9, 4), 3, 8);
  EXPECT_EQ(part.x, 3);
  EXPECT_EQ(part.y, 0);
  EXPECT_EQ(part.width, 3);
  EXPECT_EQ(part.height, 4);
}

TEST(PictureParts, FindTheMostDetail) {
  const struct { int x, y; } places[] = {{0, 0}, {70, 10}, {10, 60}, {80, 64}};
  for (const auto& place : places) {
    Bitmap picture(100, 80, false);
    for (int y = 0; y < 16; ++y) {
      for (int x = 0; x < 20; ++x) {
        if ((x + y) % 2 != 0) continue;
        picture.At(place.x + x, place.y + y) = {255, 255, 255, 255};
        picture.At(40 + x, 36 + y) = {200, 200, 200, 255};  // less of it
      }
    }
    const Part part = MostDetail(picture, 24, 24);
    EXPECT_EQ(part.width, 24);
    EXPECT_EQ(part.height, 24);
    EXPECT_LE(part.x, place.x + 3) << place.x;
    EXPECT_GE(part.x + 24 + 3, place.x + 20) << place.x;
    EXPECT_LE(part.y, place.y + 3) << place.y;
    EXPECT_GE(part.y + 24 + 3, place.y + 16) << place.y;
    EXPECT_GE(part.x, 0);
    EXPECT_LE(part.x + part.width, 100);
    EXPECT_LE(part.y + part.height, 80);
  }
}

TEST(PictureParts, TakeTheMiddleWhereThereIsNoDetail) {
  const Part part = MostDetail(Bitmap(50, 30, false), 10, 10);
  EXPECT_EQ(part.x, 20);
  EXPECT_EQ(part.y, 10);
  const Part all = MostDetail(Places(3, 2), 10, 10);
  EXPECT_EQ(all.width, 3);
  EXPECT_EQ(all.height, 2);
  EXPECT_EQ(all.x, 0);
  EXPECT_EQ(all.y, 0);
}

TEST(PictureParts, ReduceToTheMeanOfTheAreas) {
  Bitmap picture(3, 1, false);
  picture.pixels = {{0, 100, 30, 255}, {90, 100, 60, 255}, {255, 100, 0, 255}};
  const Bitmap one = Reduced(picture, 1, 1);
  EXPECT_EQ(one.At(0, 0), (Rgba{115, 100, 30, 255}));
  const Bitmap two = Reduced(picture, 2, 1);  // each takes half of the middle one
  EXPECT_EQ(two.At(0, 0), (Rgba{30, 100, 40, 255}));
  EXPECT_EQ(two.At(1, 0), (Rgba{200, 100, 20, 255}));
}

TEST(PictureParts, ReduceColoursByTheirAlpha) {
  Bitmap picture(2, 2, true);
  picture.pixels = {{200, 0, 0, 255}, {9, 9, 9, 0}, {100, 0, 0, 85}, {9, 9, 9, 0}};
  EXPECT_EQ(Reduced(picture, 1, 1).At(0, 0), (Rgba{175, 0, 0, 85}));
  picture.pixels = {{9, 9, 9, 0}, {9, 9, 9, 0}, {9, 9, 9, 0}, {9, 9, 9, 0}};
  EXPECT_EQ(Reduced(picture, 1, 1).At(0, 0), (Rgba{0, 0, 0, 0}));
}

TEST(PictureParts, FitIntoASquareWithTheirProportions) {
  const struct {
    int width, height, most, divisor, fittingWidth, fittingHeight;
  } rows[] = {
      {640, 480, 480, 1, 480, 360}, {640, 480, 480, 2, 320, 240},   {100, 50, 480, 1, 100, 50},
      {100, 50, 480, 4, 25, 13},    {6000, 4000, 480, 2, 480, 320}, {1, 1, 480, 4, 1, 1},
      {5000, 1, 480, 1, 480, 1},    {3, 9000, 480, 2, 1, 480},
  };
  for (const auto& row : rows) {
    const Extent size = Fitting(Bitmap(row.width, row.height, false), row.most, row.divisor);
    EXPECT_EQ(size, (Extent{row.fittingWidth, row.fittingHeight}))
        << row.width << "x" << row.height << " / " << row.divisor;
  }
}

TEST(PictureParts, HashSizeAndEveryByte) {
  // FNV-1a of the bytes 1 0 0 0, 1 0 0 0, 10 20 30 255, computed apart.
  Bitmap picture(1, 1, false);
  picture.At(0, 0) = {10, 20, 30, 255};
  const std::uint64_t hash = PixelHash(picture);
  EXPECT_EQ(hash, 0x25906D9665EAD320ULL);
  for (std::uint8_t Rgba::*byte : {&Rgba::r, &Rgba::g, &Rgba::b, &Rgba::a}) {
    Bitmap other = picture;
    other.At(0, 0).*byte ^= 1;
    EXPECT_NE(PixelHash(other), hash);
  }
  EXPECT_NE(PixelHash(Bitmap(2, 3, false)), PixelHash(Bitmap(3, 2, false)));
}

}  // namespace
}  // namespace tool
