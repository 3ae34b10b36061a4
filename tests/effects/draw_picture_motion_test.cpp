// A soft sprite that moves by fractions of a pixel must move smoothly.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "tests/effects/drawing.h"

namespace {

using oracle::Image;

constexpr int kSpriteSide = 25;
constexpr int kCanvasSide = 40;
constexpr double kStep = 1.0 / 8;

// White everywhere; the mask is black in the middle and white from a distance of 9 on, with a
// slope that falls from a maximum of 255 * pi / 18 = 45 a pixel to 0 at both ends.
Image SoftMask() {
  Image mask = oracle::NewImage(kSpriteSide, kSpriteSide, 5);
  const double middle = (kSpriteSide - 1) / 2.0;
  for (int y = 0; y < kSpriteSide; ++y) {
    for (int x = 0; x < kSpriteSide; ++x) {
      const double distance = std::min(std::hypot(x - middle, y - middle), 9.0);
      const double kept = 0.5 + 0.5 * std::cos(distance / 9.0 * 3.14159265358979);
      mask.At(x, y) = oracle::PackOpaque(5, static_cast<int>(std::lround(255 * (1 - kept))), 0, 0);
    }
  }
  return mask;
}

struct Centroid {
  double x = 0, y = 0;
};

Centroid CentroidOf(const Image& image) {
  double sum = 0;
  Centroid centroid;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const int red = oracle::Red(image.At(x, y), image.format);
      sum += red;
      centroid.x += red * static_cast<double>(x);
      centroid.y += red * static_cast<double>(y);
    }
  }
  centroid.x /= sum;
  centroid.y /= sum;
  return centroid;
}

int LargestChange(const Image& a, const Image& b) {
  int largest = 0;
  for (std::size_t i = 0; i < a.words.size(); ++i) {
    const int change = oracle::Red(a.words[i], 5) - oracle::Red(b.words[i], 5);
    largest = std::max(largest, std::abs(change));
  }
  return largest;
}

// Moves the sprite 96 steps by (dx, dy) from (x, y) over black.
void ExpectSmoothMotion(double x, double y, double dx, double dy) {
  const Image black = oracle::NewImage(kCanvasSide, kCanvasSide, 5, 0xFF000000);
  const Image white = oracle::NewImage(kSpriteSide, kSpriteSide, 5, 0xFFFFFFFF);
  support::LoadedPlugin plugin;
  const DrawnPictures pictures(plugin.Host(), black, white, SoftMask());
  const auto drawnAt = [&](double left, double top) {
    host::Picture* canvas = support::PictureOf(plugin.Host(), black);
    const host::CallReport report =
        plugin.Library().Call("DrawPictureFZVQ", canvas, {pictures.source, left, top, 1.0, 0});
    EXPECT_TRUE(Flag(report));
    Image drawn = support::ImageOf(*canvas);
    plugin.Host().Release(canvas);
    return drawn;
  };
  // A step moves each pixel by at most 45/8 in each direction; truncation takes up to 4 more.
  const int mostChange = static_cast<int>(45 * (std::fabs(dx) + std::fabs(dy))) + 4;
  Image before = drawnAt(x, y);
  for (int step = 1; step <= 96; ++step) {
    const Image now = drawnAt(x + step * dx, y + step * dy);
    const int change = LargestChange(before, now);
    EXPECT_LE(change, mostChange) << "step " << step;
    EXPECT_GT(change, 0) << "step " << step;
    const Centroid from = CentroidOf(before);
    const Centroid to = CentroidOf(now);
    EXPECT_NEAR(to.x - from.x, dx, 0.02) << "step " << step;
    EXPECT_NEAR(to.y - from.y, dy, 0.02) << "step " << step;
    before = now;
  }
}

TEST(DrawPictureMotion, GoesSmoothlyToTheRight) { ExpectSmoothMotion(1, 5, kStep, 0); }

TEST(DrawPictureMotion, GoesSmoothlyDown) { ExpectSmoothMotion(5.5, 1, 0, kStep); }

TEST(DrawPictureMotion, GoesSmoothlyAcrossBothWays) { ExpectSmoothMotion(14, 2, -kStep, kStep); }

// The sprite's clear border reaches beyond the canvas, its visible part does not.
TEST(DrawPictureMotion, GoesSmoothlyThroughZero) {
  ExpectSmoothMotion(-3, 9, kStep, -kStep);
  ExpectSmoothMotion(9, 9, -kStep, -kStep);
}

TEST(DrawPictureMotion, TheFirstPositionIsWhereItIsSaidToBe) {
  const Image drawn = Drawn(oracle::NewImage(kCanvasSide, kCanvasSide, 5, 0xFF000000),
                            oracle::NewImage(kSpriteSide, kSpriteSide, 5, 0xFFFFFFFF),
                            {4.375, 7.625, 1}, SoftMask());
  EXPECT_NEAR(CentroidOf(drawn).x, 4.375 + 12, 0.02);
  EXPECT_NEAR(CentroidOf(drawn).y, 7.625 + 12, 0.02);
}

}  // namespace
