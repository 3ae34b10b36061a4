// A picture outside the host: rows of straight (not premultiplied) 8-bit RGBA, top row first.
#pragma once

#include <cstddef>
#include <vector>

#include "host/picture.h"

namespace tool {

struct Bitmap {
  int width = 0;   // pixels
  int height = 0;  // pixels
  // The pixels carry transparency; without it every alpha is 255.
  bool hasAlpha = false;
  std::vector<host::Rgba> pixels;  // width * height

  Bitmap() = default;
  Bitmap(int w, int h, bool alpha)
      : width(w), height(h), hasAlpha(alpha), pixels(std::size_t(w) * std::size_t(h)) {}

  host::Rgba& At(int x, int y) { return pixels[std::size_t(y) * std::size_t(width) + x]; }
  const host::Rgba& At(int x, int y) const {
    return pixels[std::size_t(y) * std::size_t(width) + x];
  }
};

}  // namespace tool
