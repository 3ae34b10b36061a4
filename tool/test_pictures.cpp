#include "tool/test_pictures.h"

#include <cmath>

#include "tool/drawing.h"

namespace tool {
namespace {

// cos(2 pi t) from its series on a quarter of the turn, exact to about 1e-7.
double CosineOfTurns(double t) {
  t -= double(std::int64_t(t));
  if (t > 0.5) t = 1 - t;                 // cos is even and periodic
  const double sign = t > 0.25 ? -1 : 1;  // and turns its sign at half a turn
  if (t > 0.25) t = 0.5 - t;
  const double angle = t * 6.283185307179586, square = angle * angle;
  double term = 1, sum = 1;
  for (int n = 1; n <= 6; ++n) {
    term *= -square / ((2 * n - 1) * (2 * n));
    sum += term;
  }
  return sign * sum;
}

}  // namespace

const std::vector<TestPicture>& TestPictures() {
  static const std::vector<TestPicture> pictures = {
      {"scene", "a landscape of 640x480 with fine detail", DrawScene},
      {"rings", "a zone plate of 256x256", DrawRings},
      {"stamp", "a star of 64x64 with soft transparency", DrawStamp},
  };
  return pictures;
}

Bitmap DrawRings() {
  constexpr int kSize = 256;
  Bitmap picture(kSize, kSize, false);
  for (int y = 0; y < kSize; ++y) {
    for (int x = 0; x < kSize; ++x) {
      const int dx = 2 * x - (kSize - 1), dy = 2 * y - (kSize - 1);
      // Turns at radius r: r² / (2 * 128 * 2), so that a ring is 2 pixels wide at radius 128.
      const double turns = (dx * dx + dy * dy) / 4.0 / 512.0;
      const double level = 0.5 + 0.5 * CosineOfTurns(turns);
      picture.At(x, y) = Pixel({level, level, level});
    }
  }
  return picture;
}

Bitmap DrawStamp() {
  constexpr int kSize = 64, kPoints = 5;
  Bitmap picture(kSize, kSize, true);
  // How far (x, y) lies inside the star, in pixels; negative outside. For each of the two edges of
  // every point: the distance from a line, smallest over the point, largest over all points.
  const auto inside = [](double x, double y) {
    double best = -1e9;
    for (int point = 0; point < kPoints; ++point) {
      const double turn = double(point) / kPoints;
      const double ux = CosineOfTurns(turn + 0.75), uy = -CosineOfTurns(turn);
      const double along = x * ux + y * uy, across = std::fabs(x * uy - y * ux);
      // A spear from the centre to a tip 27 pixels away, half-width 10 at its foot.
      best = std::max(best, std::min((27 - along) * 0.35 - across, along + 8));
    }
    return best;
  };
  for (int y = 0; y < kSize; ++y) {
    for (int x = 0; x < kSize; ++x) {
      const double px = x - 30.5, py = y - 29.5;
      const double star = Smooth(-1.0, 1.0, inside(px, py));
      const double shadow = 0.45 * Smooth(-5.0, 3.0, inside(px - 3, py - 4));
      const Colour gold = Mix({1.0, 0.86, 0.25}, {0.93, 0.35, 0.10}, (px + py + 30) / 60);
      const Colour face = Mix(gold, {1, 1, 0.92}, 0.8 * Smooth(7, 2, std::sqrt(px * px + py * py)));
      const double alpha = star + shadow * (1 - star);
      // The straight colour of the star laid on its shadow.
      const Colour colour = alpha > 0 ? face * (star / alpha) : Colour{};
      picture.At(x, y) = Pixel(colour, alpha);
    }
  }
  return picture;
}

}  // namespace tool
