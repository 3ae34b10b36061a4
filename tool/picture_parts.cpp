#include "tool/picture_parts.h"

#include <algorithm>
#include <cstdlib>

namespace tool {
namespace {

int Brightness(host::Rgba pixel) { return (pixel.r * 2 + pixel.g * 5 + pixel.b) * pixel.a / 2040; }

// Sums of differences between neighbours, in cells of size x size pixels, such that a rectangle of
// cells is had from four sums.
class DetailMap {
 public:
  DetailMap(const Bitmap& picture, int size)
      : columns_((picture.width + size - 1) / size), rows_((picture.height + size - 1) / size) {
    sums_.resize(std::size_t(columns_ + 1) * std::size_t(rows_ + 1));
    for (int y = 0; y + 1 < picture.height; ++y) {
      for (int x = 0; x + 1 < picture.width; ++x) {
        const int here = Brightness(picture.At(x, y));
        Sum(x / size + 1, y / size + 1) += std::abs(Brightness(picture.At(x + 1, y)) - here) +
                                           std::abs(Brightness(picture.At(x, y + 1)) - here);
      }
    }
    for (int y = 1; y <= rows_; ++y) {
      for (int x = 1; x <= columns_; ++x) {
        Sum(x, y) += Sum(x - 1, y) + Sum(x, y - 1) - Sum(x - 1, y - 1);
      }
    }
  }

  int Columns() const { return columns_; }
  int Rows() const { return rows_; }
  std::int64_t Within(int x, int y, int width, int height) {
    return Sum(x + width, y + height) - Sum(x, y + height) - Sum(x + width, y) + Sum(x, y);
  }

 private:
  std::int64_t& Sum(int x, int y) {
    return sums_[std::size_t(y) * std::size_t(columns_ + 1) + std::size_t(x)];
  }

  int columns_, rows_;
  std::vector<std::int64_t> sums_;
};

}  // namespace

Bitmap Crop(const Bitmap& picture, const Part& part) {
  const int left = std::clamp(part.x, 0, picture.width),
            top = std::clamp(part.y, 0, picture.height);
  Bitmap crop(std::min(part.width, picture.width - left),
              std::min(part.height, picture.height - top), picture.hasAlpha);
  for (int y = 0; y < crop.height; ++y) {
    std::copy_n(&picture.At(left, top + y), crop.width, &crop.At(0, y));
  }
  return crop;
}

Part Middle(const Bitmap& picture, int width, int height) {
  width = std::min(width, picture.width);
  height = std::min(height, picture.height);
  return {(picture.width - width) / 2, (picture.height - height) / 2, width, height};
}

Part MostDetail(const Bitmap& picture, int width, int height) {
  Part best = Middle(picture, width, height);
  const int size = std::max(1, std::min(best.width, best.height) / 8);
  DetailMap map(picture, size);
  const int columns = std::max(1, best.width / size), rows = std::max(1, best.height / size);
  std::int64_t most = 0;
  for (int y = 0; y + rows <= map.Rows(); ++y) {
    for (int x = 0; x + columns <= map.Columns(); ++x) {
      const std::int64_t detail = map.Within(x, y, columns, rows);
      if (detail <= most) continue;
      most = detail;
      best.x = std::min(x * size, picture.width - best.width);
      best.y = std::min(y * size, picture.height - best.height);
    }
  }
  return best;
}

Bitmap Reduced(const Bitmap& picture, int width, int height) {
  if (width == picture.width && height == picture.height) return picture;
  Bitmap reduced(width, height, picture.hasAlpha);
  const auto edge = [](int i, int from, int to) { return double(i) * from / to; };
  for (int y = 0; y < height; ++y) {
    const double top = edge(y, picture.height, height),
                 bottom = edge(y + 1, picture.height, height);
    for (int x = 0; x < width; ++x) {
      const double left = edge(x, picture.width, width), right = edge(x + 1, picture.width, width);
      double area = 0, opacity = 0, red = 0, green = 0, blue = 0;
      for (int v = int(top); v < std::min(int(bottom) + 1, picture.height); ++v) {
        const double high = std::min(bottom, v + 1.0) - std::max(top, double(v));
        for (int u = int(left); u < std::min(int(right) + 1, picture.width); ++u) {
          const double share = high * (std::min(right, u + 1.0) - std::max(left, double(u)));
          const host::Rgba pixel = picture.At(u, v);
          const double weight = share * pixel.a;
          area += share;
          opacity += weight;
          red += weight * pixel.r;
          green += weight * pixel.g;
          blue += weight * pixel.b;
        }
      }
      const auto mean = [](double sum, double total) {
        return std::uint8_t(total > 0 ? std::clamp(sum / total + 0.5, 0.0, 255.0) : 0.0);
      };
      reduced.At(x, y) = {mean(red, opacity), mean(green, opacity), mean(blue, opacity),
                          mean(opacity, area)};
    }
  }
  return reduced;
}

Extent Fitting(const Bitmap& picture, int most, int divisor) {
  const int longest = std::max(picture.width, picture.height);
  const double scale = std::min(double(most) / longest, 1.0 / divisor);
  const auto part = [scale](int side) { return std::max(1, int(side * scale + 0.5)); };
  return {part(picture.width), part(picture.height)};
}

std::uint64_t PixelHash(const Bitmap& picture) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  const auto take = [&hash](std::uint32_t byte) { hash = (hash ^ (byte & 255)) * 0x100000001B3u; };
  for (const int side : {picture.width, picture.height}) {
    for (int shift = 0; shift < 32; shift += 8) take(std::uint32_t(side) >> shift);
  }
  for (const host::Rgba& pixel : picture.pixels) {
    for (const std::uint8_t byte : {pixel.r, pixel.g, pixel.b, pixel.a}) take(byte);
  }
  return hash;
}

}  // namespace tool
