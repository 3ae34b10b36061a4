// The landscape: sky, mountains, a lake, a meadow, a boat, wires, a sign and a test chart.
#include <cmath>
#include <cstdlib>

#include "tool/drawing.h"
#include "tool/test_pictures.h"

namespace tool {
namespace {

constexpr int kWidth = 640, kHeight = 480;
constexpr int kHorizon = 262;  // row where the lake begins
constexpr int kShore = 352;    // row where the meadow begins

double Distance(double x, double y) { return std::sqrt(x * x + y * y); }

// Row of a mountain chain's ridge over column x.
double FarRidge(double x) { return 222 - 110 * (Cloud(x / 150 + 3, 1.5, 5) - 0.25); }
double NearRidge(double x) { return 258 - 70 * (Cloud(x / 110 + 40, 9.5, 6) - 0.3); }

Colour Sky(double x, double y) {
  Colour colour = Mix({0.13, 0.32, 0.66}, {0.99, 0.78, 0.55}, Smooth(0, 250, y));
  const double fromSun = Distance(x - 452, y - 118);
  colour = Mix(colour, {1.0, 0.88, 0.58}, 0.75 * Smooth(170, 20, fromSun));
  const double cloud = Smooth(0.52, 0.78, Cloud(x / 130, y / 42 + 5, 6)) * Smooth(235, 130, y);
  colour = Mix(colour, {1.0, 0.96, 0.94}, 0.85 * cloud);
  return Mix(colour, {1.0, 0.98, 0.86}, Smooth(31, 29, fromSun) * (1 - 0.6 * cloud));
}

// Everything above the lake, without sharp foreground.
Colour Backdrop(double x, double y) {
  Colour colour = Sky(x, y);
  const double far = y - FarRidge(x);
  if (far > 0) {
    colour = Mix({0.46, 0.42, 0.60}, {0.66, 0.58, 0.66}, far / 80);
    const double snow = Smooth(22, 4, far + 16 * Cloud(x / 9, y / 9, 3));
    colour = Mix(colour, {0.96, 0.95, 1.0}, snow);
  }
  const double near = y - NearRidge(x);
  if (near > 0) {
    const double trees = Random(int(x) / 2, int(y) / 3);
    colour = Mix({0.10, 0.25, 0.22}, {0.20, 0.37, 0.25}, 0.3 * trees + near / 60);
  }
  return colour;
}

Colour Lake(double x, double y) {
  const double depth = (y - kHorizon) / (kShore - kHorizon);
  const double ripple = (Noise(x / 26, y / 1.7) - 0.5) * (4 + 26 * depth);
  const double mirrored = kHorizon - 1.6 * (y - kHorizon) + ripple;
  Colour colour = Mix(Backdrop(x + 0.3 * ripple, mirrored), {0.05, 0.22, 0.36}, 0.25 + 0.3 * depth);
  const double glitter = Smooth(60, 10, std::fabs(x - 452)) * Smooth(0.62, 0.8, Noise(x / 5, y));
  return Mix(colour, {1.0, 0.93, 0.72}, 0.8 * glitter);
}

Colour Meadow(int x, int y) {
  const double down = double(y - kShore) / (kHeight - kShore);
  const double blade = Random(x, y / 5) * 0.5 + 0.5 * Random(x, y);
  Colour colour = Mix({0.45, 0.62, 0.20}, {0.13, 0.36, 0.10}, 0.6 * down + 0.5 * (blade - 0.4));
  colour = Mix(colour, {0.62, 0.66, 0.24}, 0.5 * Smooth(0.5, 0.8, Cloud(x / 70.0, y / 25.0, 3)));
  // Flowers of 2x2 pixels.
  const std::uint32_t flower = Hash(x / 2 + 1000, y / 2 + 1000);
  if (flower % 61 == 0 && y > kShore + 6) {
    static constexpr Colour kPetals[] = {
        {0.95, 0.15, 0.20}, {1, 0.92, 0.2}, {0.98, 0.98, 1}, {0.65, 0.25, 0.85}, {0.2, 0.45, 1}};
    colour = kPetals[(flower >> 8) % 5];
  }
  return colour;
}

class Painter {
 public:
  explicit Painter(Bitmap& picture) : picture_(picture) {}

  void Fill(int x, int y, int w, int h, Colour colour) {
    for (int row = y; row < y + h; ++row) {
      for (int column = x; column < x + w; ++column) Blend(column, row, colour, 1);
    }
  }

  // A straight line with soft edges, `width` pixels wide.
  void Line(double x0, double y0, double x1, double y1, double width, Colour colour) {
    const double length = Distance(x1 - x0, y1 - y0);
    const double ux = (x1 - x0) / length, uy = (y1 - y0) / length;
    const int left = int(std::min(x0, x1) - 2), right = int(std::max(x0, x1) + 3);
    const int top = int(std::min(y0, y1) - 2), bottom = int(std::max(y0, y1) + 3);
    for (int y = top; y < bottom; ++y) {
      for (int x = left; x < right; ++x) {
        const double along = (x - x0) * ux + (y - y0) * uy;
        const double across = std::fabs((x - x0) * uy - (y - y0) * ux);
        if (along < 0 || along > length) continue;
        Blend(x, y, colour, std::clamp(width / 2 + 0.5 - across, 0.0, 1.0));
      }
    }
  }

  // The triangle with a vertical side from (x, y0) to (x, y1) and a tip at (tipX, y1).
  void Sail(int x, int y0, int y1, int tipX, Colour colour) {
    for (int y = y0; y < y1; ++y) {
      const int reach = (tipX - x) * (y - y0) / (y1 - y0);
      for (int i = 0; i < std::abs(reach); ++i) {
        Blend(reach < 0 ? x - i : x + i, y, colour * (1 - 0.15 * i / std::abs(tipX - x)), 1);
      }
    }
  }

  // Letters of no alphabet, `scale` pixels per stroke: columns of 3 by 5 cells.
  void Marks(int x, int y, int count, int scale, int seed, Colour colour) {
    for (int letter = 0; letter < count; ++letter) {
      if (Hash(letter, seed) % 7 == 0) continue;  // a gap between words
      for (int cell = 0; cell < 15; ++cell) {
        const bool stem = cell % 3 == 0 && Hash(letter + 50, seed) % 4 != 0;
        if (!stem && Hash(letter * 16 + cell, seed + 1) % 2 == 0) continue;
        Fill(x + (letter * 4 + cell % 3) * scale, y + cell / 3 * scale, scale, scale, colour);
      }
    }
  }

 private:
  void Blend(int x, int y, Colour colour, double cover) {
    if (x < 0 || y < 0 || x >= kWidth || y >= kHeight || cover <= 0) return;
    host::Rgba& pixel = picture_.At(x, y);
    pixel = Pixel(Mix({pixel.r / 255.0, pixel.g / 255.0, pixel.b / 255.0}, colour, cover));
  }

  Bitmap& picture_;
};

void PaintBoat(Painter& paint) {
  paint.Sail(203, 232, 296, 160, {0.97, 0.95, 0.90});
  paint.Sail(207, 244, 296, 240, {0.86, 0.16, 0.18});
  paint.Line(205, 226, 205, 303, 2, {0.25, 0.15, 0.10});
  for (int i = 0; i < 10; ++i) {
    paint.Fill(158 + i, 298 + i, 92 - 2 * i, 1,
               i < 3 ? Colour{0.95, 0.95, 0.9} : Colour{0.35, 0.18, 0.1});
  }
  paint.Line(205, 227, 246, 297, 1, {0.2, 0.2, 0.2});
}

// Two masts with sagging wires, one pixel wide and thinner.
void PaintWires(Painter& paint) {
  for (int wire = 0; wire < 4; ++wire) {
    for (int x = 20; x < 620; x += 10) {
      const auto sag = [wire](double at) {
        const double t = (at - 320) / 300;
        return 36 + 9 * wire - 26 * (t * t - 1) * (1 + 0.1 * wire);
      };
      paint.Line(x, sag(x), x + 10, sag(x + 10), 0.4 + 0.4 * wire, {0.05, 0.05, 0.1});
    }
  }
  for (const int mast : {20, 620}) {
    paint.Line(mast, 24, mast, 356, 3, {0.22, 0.2, 0.22});
    for (int y = 60; y < 350; y += 24)
      paint.Line(mast - 6, y, mast + 6, y + 12, 1, {0.3, 0.3, 0.3});
  }
}

void PaintSign(Painter& paint) {
  const Colour ink = {0.08, 0.08, 0.2};
  paint.Fill(52, 388, 5, 92, {0.35, 0.22, 0.12});
  paint.Fill(178, 388, 5, 92, {0.35, 0.22, 0.12});
  paint.Fill(36, 366, 164, 84, ink);
  paint.Fill(39, 369, 158, 78, {0.98, 0.97, 0.90});
  paint.Marks(48, 376, 9, 4, 11, {0.72, 0.1, 0.12});
  paint.Marks(48, 404, 17, 2, 12, ink);
  paint.Marks(48, 420, 36, 1, 13, ink);
  paint.Marks(48, 429, 36, 1, 14, ink);
  paint.Marks(48, 438, 36, 1, 15, ink);
}

// A board with a fan of thin lines, stripes and checks of 1, 2 and 4 pixels, greys and hues.
void PaintChart(Painter& paint) {
  const int left = 436, top = 372;
  paint.Fill(left - 4, top - 4, 180, 96, {0.12, 0.12, 0.14});
  paint.Fill(left, top, 172, 88, {1, 1, 1});
  for (int i = 0; i <= 12; ++i) {
    paint.Line(left + 2, top + 60, left + 58, top + 2 + 58 * i / 12.0, 1, {0, 0, 0});
  }
  int x = left + 64;
  for (const int size : {1, 2, 4}) {
    for (int i = 0; i < 32; ++i) {
      for (int j = 0; j < 28; ++j) {
        const bool stripe = i / size % 2 == 0, check = (i / size + j / size) % 2 == 0;
        if (stripe) paint.Fill(x + i, top + 2 + j, 1, 1, {0, 0, 0});
        if (check) paint.Fill(x + i, top + 33 + j, 1, 1, {0, 0, 0});
      }
    }
    x += 36;
  }
  for (int i = 0; i < 172; ++i) {
    const int step = i / 8 * 8;
    const double grey = step / 168.0, hue = i * 6 / 172.0;
    paint.Fill(left + i, top + 64, 1, 12, {grey, grey, grey});
    const auto part = [hue](double at) {
      const double d = std::fabs(hue - at);
      return std::clamp(2 - std::min(d, 6 - d), 0.0, 1.0);
    };
    paint.Fill(left + i, top + 76, 1, 12, {part(0), part(2), part(4)});
  }
}

}  // namespace

Bitmap DrawScene() {
  Bitmap picture(kWidth, kHeight, false);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const bool lake = y >= kHorizon, meadow = y >= kShore + 5 * Cloud(x / 24.0, 3, 3);
      picture.At(x, y) = Pixel(meadow ? Meadow(x, y) : lake ? Lake(x, y) : Backdrop(x, y));
    }
  }
  Painter paint(picture);
  PaintBoat(paint);
  PaintWires(paint);
  PaintSign(paint);
  PaintChart(paint);
  return picture;
}

}  // namespace tool
