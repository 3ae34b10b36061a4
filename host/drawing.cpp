// Drawing one picture into another.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "host/runtime.h"

namespace host {

namespace {

constexpr int kWholeSource = -10000;

// a * b / 255, rounded to nearest.
unsigned Scaled(unsigned a, unsigned b) { return (2 * a * b + 255) / (2 * 255); }

// How much of a source pixel is seen: its alpha, less what the mask takes away.
Rgba SeenPixel(const Picture& source, int x, int y) {
  Rgba pixel = source.Get(x, y);
  const Picture* mask = source.Mask();
  if (mask != nullptr && mask->HasPixels() && x < mask->Width() && y < mask->Height()) {
    pixel.a = static_cast<std::uint8_t>(Scaled(pixel.a, 255u - mask->Get(x, y).r));
  }
  return pixel;
}

Rgba Over(Rgba top, Rgba bottom) {
  if (top.a == 255) return top;
  if (top.a == 0) return bottom;
  const unsigned below = Scaled(bottom.a, 255u - top.a);  // what is still seen of the bottom
  const unsigned alpha = top.a + below;
  const auto channel = [&](unsigned upper, unsigned lower) {
    return static_cast<std::uint8_t>((2 * (upper * top.a + lower * below) + alpha) / (2 * alpha));
  };
  return {channel(top.r, bottom.r), channel(top.g, bottom.g), channel(top.b, bottom.b),
          static_cast<std::uint8_t>(alpha)};
}

}  // namespace

void Runtime::Draw(Picture* target, Picture* source, int x, int y, int w, int h, int sx, int sy,
                   int sw, int sh) {
  if (sw == kWholeSource) sw = source->Width();
  if (sh == kWholeSource) sh = source->Height();
  if (w <= 0 || h <= 0 || sw <= 0 || sh <= 0) return;
  if (!target->HasPixels() || !source->HasPixels()) return;
  // The drawn rectangle within the target; 64 bits, because x + w may not fit 32.
  const auto first = [](int at) { return std::max<std::int64_t>(0, at); };
  const auto last = [](int at, int size, int limit) {
    return std::min<std::int64_t>(limit, std::int64_t{at} + size);
  };
  struct Pixel {
    int x, y;
    Rgba colour;
  };
  // All pixels are read before the first is written, because a picture may be drawn into itself.
  std::vector<Pixel> pixels;
  for (std::int64_t ty = first(y); ty < last(y, h, target->Height()); ++ty) {
    const std::int64_t fromY = sy + (ty - y) * sh / h;
    if (fromY < 0 || fromY >= source->Height()) continue;
    for (std::int64_t tx = first(x); tx < last(x, w, target->Width()); ++tx) {
      const std::int64_t fromX = sx + (tx - x) * sw / w;
      if (fromX < 0 || fromX >= source->Width()) continue;
      pixels.push_back({static_cast<int>(tx), static_cast<int>(ty),
                        SeenPixel(*source, static_cast<int>(fromX), static_cast<int>(fromY))});
    }
  }
  for (const Pixel& pixel : pixels) {
    target->Set(pixel.x, pixel.y, Over(pixel.colour, target->Get(pixel.x, pixel.y)));
  }
}

}  // namespace host
