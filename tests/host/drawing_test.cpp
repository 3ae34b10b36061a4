#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "host/runtime.h"

namespace host {
namespace {

class Drawing : public testing::Test {
 protected:
  Picture* Make(int width, int height, Rgba fill = {0, 0, 0, 255}, bool alpha = false) {
    PictureSpec spec;
    spec.width = width;
    spec.height = height;
    spec.fill = fill;
    spec.hasAlphaChannel = alpha;
    spec.pixelFormat = alpha ? 4 : 6;
    return runtime_.NewPicture(spec);
  }
  // Pixel (x, y) is {x, y, 77}.
  Picture* MakeMap(int width, int height) {
    Picture* picture = Make(width, height);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) picture->Set(x, y, At(x, y));
    }
    return picture;
  }
  static Rgba At(int x, int y) {
    return {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 77, 255};
  }
  Runtime runtime_;
};

TEST_F(Drawing, AtScaleOneCopiesTheRegionAndNothingElse) {
  Picture* source = MakeMap(6, 5);
  Picture* target = Make(8, 8);
  runtime_.Draw(target, source, 2, 3, 4, 2, 1, 2, 4, 2);
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) {
      const bool inside = x >= 2 && x < 6 && y >= 3 && y < 5;
      EXPECT_EQ(target->Get(x, y), inside ? At(x - 1, y - 1) : (Rgba{0, 0, 0, 255}));
    }
  }
}

TEST_F(Drawing, ScalesToTheNearestSourcePixel) {
  Picture* source = MakeMap(3, 2);
  Picture* target = Make(6, 8);
  runtime_.Draw(target, source, 0, 0, 6, 8, 0, 0, 3, 2);
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 6; ++x) EXPECT_EQ(target->Get(x, y), At(x / 2, y / 4));
  }
  Picture* small = Make(2, 1);
  runtime_.Draw(small, target, 0, 0, 2, 1, 0, 0, 6, 8);
  EXPECT_EQ(small->Get(1, 0), target->Get(3, 0));
}

TEST_F(Drawing, IsClippedToBothPictures) {
  Picture* source = MakeMap(3, 3);
  Picture* target = Make(3, 3);
  runtime_.Draw(target, source, -1, -2, 3, 3, 0, 0, 3, 3);
  EXPECT_EQ(target->Get(0, 0), At(1, 2));
  EXPECT_EQ(target->Get(2, 0), (Rgba{0, 0, 0, 255}));
  Picture* other = Make(6, 6);
  runtime_.Draw(other, source, 0, 0, 6, 6, -1, 0, 6, 6);
  EXPECT_EQ(other->Get(0, 0), (Rgba{0, 0, 0, 255}));
  EXPECT_EQ(other->Get(1, 0), At(0, 0));
  EXPECT_EQ(other->Get(4, 0), (Rgba{0, 0, 0, 255})) << "beyond the source";
}

TEST_F(Drawing, ExtremeRectanglesAreClippedWithoutOverflow) {
  Picture* source = MakeMap(3, 3);
  Picture* target = Make(2, 2);
  runtime_.Draw(target, source, INT_MIN, INT_MIN, INT_MAX, INT_MAX, 0, 0, 3, 3);
  EXPECT_EQ(target->Get(0, 0), (Rgba{0, 0, 0, 255})) << "ends one pixel before the target";
  runtime_.Draw(target, source, 0, 0, INT_MAX, INT_MAX, 0, 0, INT_MAX, INT_MAX);
  EXPECT_EQ(target->Get(1, 1), At(1, 1));
  runtime_.Draw(target, source, INT_MAX, 0, 5, 5, INT_MAX, INT_MIN, 5, 5);
  EXPECT_EQ(target->Get(1, 1), At(1, 1));
}

TEST_F(Drawing, EmptyRectanglesAndPicturesWithoutPixelsDrawNothing) {
  Picture* source = MakeMap(3, 3);
  Picture* none = runtime_.NewPicture(runtime_.NewPictureSpec(0, 0));
  Picture* target = Make(1, 1);
  runtime_.Draw(target, source, 0, 0, 0, 1, 0, 0, 1, 1);
  runtime_.Draw(target, source, 0, 0, 1, -1, 0, 0, 1, 1);
  runtime_.Draw(target, source, 0, 0, 1, 1, 0, 0, 0, 1);
  runtime_.Draw(target, none, 0, 0, 1, 1, 0, 0, 1, 1);
  runtime_.Draw(none, source, 0, 0, 1, 1, 0, 0, 1, 1);
  EXPECT_EQ(target->Get(0, 0), (Rgba{0, 0, 0, 255}));
}

TEST_F(Drawing, TheDefaultRegionIsTheWholeSource) {
  Picture* source = MakeMap(2, 2);
  Picture* target = Make(4, 4);
  runtime_.Draw(target, source, 0, 0, 4, 4, 0, 0, -10000, -10000);
  EXPECT_EQ(target->Get(3, 3), At(1, 1));
}

TEST_F(Drawing, APictureCanBeDrawnIntoItself) {
  Picture* picture = MakeMap(4, 1);
  runtime_.Draw(picture, picture, 1, 0, 3, 1, 0, 0, 3, 1);
  for (int x = 1; x < 4; ++x) EXPECT_EQ(picture->Get(x, 0), At(x - 1, 0));
}

TEST_F(Drawing, AlphaIsBlendedOverAnOpaqueTarget) {
  for (int alpha = 0; alpha < 256; ++alpha) {
    Picture* source = Make(1, 1, {200, 0, 255, static_cast<std::uint8_t>(alpha)}, true);
    Picture* target = Make(1, 1, {100, 255, 0, 255});
    runtime_.Draw(target, source, 0, 0, 1, 1, 0, 0, 1, 1);
    const auto blended = [&](int top, int bottom) {
      return static_cast<std::uint8_t>(std::lround((top * alpha + bottom * (255 - alpha)) / 255.0));
    };
    EXPECT_EQ(target->Get(0, 0), (Rgba{blended(200, 100), blended(0, 255), blended(255, 0), 255}))
        << alpha;
    runtime_.Release(source);
    runtime_.Release(target);
  }
}

TEST_F(Drawing, AlphaOverAlphaIsSeenThroughBoth) {
  Picture* source = Make(1, 1, {255, 0, 0, 128}, true);
  Picture* target = Make(1, 1, {0, 0, 255, 128}, true);
  runtime_.Draw(target, source, 0, 0, 1, 1, 0, 0, 1, 1);
  EXPECT_EQ(target->Get(0, 0), (Rgba{170, 0, 85, 192}));
  Picture* nothing = Make(1, 1, {9, 9, 9, 0}, true);
  runtime_.Draw(target, nothing, 0, 0, 1, 1, 0, 0, 1, 1);
  EXPECT_EQ(target->Get(0, 0), (Rgba{170, 0, 85, 192}));
  runtime_.Draw(nothing, target, 0, 0, 1, 1, 0, 0, 1, 1);
  EXPECT_EQ(nothing->Get(0, 0), (Rgba{170, 0, 85, 192}));
}

TEST_F(Drawing, AMaskHidesWhatIsWhite) {
  Picture* source = Make(4, 1, {255, 255, 255, 255});
  Picture* mask = Make(3, 1);
  mask->Set(1, 0, {255, 0, 0, 255});
  mask->Set(2, 0, {55, 0, 0, 255});
  runtime_.SetMask(source, mask);
  Picture* target = Make(4, 1);
  runtime_.Draw(target, source, 0, 0, 4, 1, 0, 0, 4, 1);
  EXPECT_EQ(target->Get(0, 0).g, 255);
  EXPECT_EQ(target->Get(1, 0).g, 0);
  EXPECT_EQ(target->Get(2, 0).g, 200);
  EXPECT_EQ(target->Get(3, 0).g, 255) << "beyond the mask";
}

}  // namespace
}  // namespace host
