// Plain loops over the definition of the drawing; every pixel is read when it is needed.
#include "tests/oracles/draw_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "tests/oracles/numbers.h"

namespace oracle {
namespace {

struct Sums {
  std::int32_t red = 0;
  std::int32_t green = 0;
  std::int32_t blue = 0;

  void AddPixel(std::uint32_t word, int format, double weight) {
    red = Add(red, Truncate(static_cast<double>(Red(word, format)) * weight));
    green = Add(green, Truncate(static_cast<double>(Green(word, format)) * weight));
    blue = Add(blue, Truncate(static_cast<double>(Blue(word, format)) * weight));
  }
};

int MaskRed(const Image& mask, int column, int row) {
  const int maskRow = row < mask.height ? row : 0;
  const int maskColumn = std::min(column, mask.width - 1);
  return Red(mask.At(maskColumn, maskRow), mask.format);
}

int Clamp(std::int32_t channel) { return std::min(std::max(channel, 0), 255); }

struct Sample {
  std::int32_t column;
  std::int32_t row;
  double weight;
};

}  // namespace

bool DrawPicture(Image& destination, const Image& source, const Image* mask, double x, double y,
                 double alpha) {
  if (mask != nullptr && (mask->width < 1 || mask->height < 1)) return false;
  const std::int32_t shiftX = Truncate(std::floor(x));
  const std::int32_t shiftY = Truncate(std::floor(y));
  const double partX = std::fabs(x - static_cast<double>(shiftX));
  const double partY = std::fabs(y - static_cast<double>(shiftY));
  const double upperLeft = (partX * partY) * alpha;
  const double upperRight = ((1.0 - partX) * partY) * alpha;
  const double lowerRight = ((1.0 - partX) * (1.0 - partY)) * alpha;
  const double lowerLeft = ((1.0 - partY) * partX) * alpha;

  for (int row = 0; row < destination.height; ++row) {
    for (int column = 0; column < destination.width; ++column) {
      const std::int32_t right = Subtract(column, shiftX);
      const std::int32_t left = Subtract(right, 1);
      const std::int32_t lower = Subtract(row, shiftY);
      const std::int32_t upper = Subtract(lower, 1);
      const std::array<Sample, 4> samples = {{{left, upper, upperLeft},
                                              {right, upper, upperRight},
                                              {right, lower, lowerRight},
                                              {left, lower, lowerLeft}}};
      Sums sums;
      double remaining = 1.0;
      for (const Sample& sample : samples) {
        if (sample.column < 0 || sample.column >= source.width) continue;
        if (sample.row < 0 || sample.row >= source.height) continue;
        double weight = sample.weight;
        if (mask != nullptr) {
          const double kept =
              255.0 - static_cast<double>(MaskRed(*mask, sample.column, sample.row));
          weight = (kept * weight) / 255.0;
        }
        sums.AddPixel(source.At(sample.column, sample.row), source.format, weight);
        remaining = remaining - weight;
      }
      std::uint32_t& word = destination.At(column, row);
      if (remaining > 0.0) sums.AddPixel(word, destination.format, remaining);
      if (IsStorable(destination.format)) {
        word = PackOpaque(destination.format, Clamp(sums.red), Clamp(sums.green), Clamp(sums.blue));
      }
    }
  }
  return true;
}

bool DrawPictureIntoItself(Image& picture, const Image* mask, double x, double y, double alpha) {
  return DrawPicture(picture, picture, mask, x, y, alpha);
}

}  // namespace oracle
