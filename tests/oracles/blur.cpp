// Plain loops over the definition of the blur: no running sums, no table.
#include "tests/oracles/blur.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <vector>

namespace oracle {
namespace {

struct Window {
  std::int64_t red = 0;
  std::int64_t green = 0;
  std::int64_t blue = 0;

  void AddPixel(std::uint32_t word, int format) {
    red += Red(word, format);
    green += Green(word, format);
    blue += Blue(word, format);
  }

  // The opaque word of the truncated means over `size` pixels.
  std::uint32_t Mean(std::int64_t size, int format) const {
    return PackOpaque(format, static_cast<int>(red / size), static_cast<int>(green / size),
                      static_cast<int>(blue / size));
  }
};

int Clamp(std::int64_t index, int size) {
  return static_cast<int>(std::min<std::int64_t>(std::max<std::int64_t>(index, 0), size - 1));
}

void BlurColumns(const Image& source, std::int64_t radius, Image& result) {
  for (int y = 0; y < source.height; ++y) {
    const int writtenRow = y < result.height ? y : 0;
    for (int x = 0; x < source.width; ++x) {
      Window window;
      for (std::int64_t i = y - radius; i <= y + radius; ++i) {
        window.AddPixel(source.At(x, Clamp(i, source.height)), source.format);
      }
      result.At(x, writtenRow) = window.Mean(2 * radius + 1, result.format);
    }
  }
}

// Reads what the first pass wrote, row by row, by the source's layout.
void BlurRows(const Image& source, std::int64_t radius, Image& result) {
  for (int y = 0; y < source.height; ++y) {
    const int row = y < result.height ? y : 0;
    std::vector<std::uint32_t> copy;
    for (int x = 0; x < result.width; ++x) copy.push_back(result.At(x, row));
    for (int x = 0; x < source.width; ++x) {
      Window window;
      for (std::int64_t i = x - radius; i <= x + radius; ++i) {
        window.AddPixel(copy.at(static_cast<std::size_t>(Clamp(i, source.width))), source.format);
      }
      result.At(x, row) = window.Mean(2 * radius + 1, result.format);
    }
  }
}

bool IsPictureSize(int size) { return size >= 1 && size <= 32767; }

}  // namespace

std::int32_t WholeRadius(double radius) {
  if (!(radius > -2147483649.0 && radius < 2147483648.0)) {
    return std::numeric_limits<std::int32_t>::min();
  }
  return static_cast<std::int32_t>(radius);
}

bool BlurTableFits(std::int32_t radius) {
  const std::int64_t box = 2 * static_cast<std::int64_t>(radius) + 1;
  return box * 1024 + 1024 <= 0x7FFFFFFF;
}

BlurResult Blur(const Image& source, double radius, int resultFormat, std::uint32_t initial,
                std::optional<int> resultWidth, std::optional<int> resultHeight) {
  const std::int32_t whole = WholeRadius(radius);
  if (whole < 1) return {BlurOutcome::kReceiver, source};
  if (!IsPictureSize(source.width) || !IsPictureSize(source.height)) return {};
  const int lockedWidth = resultWidth.value_or(source.width);
  const int lockedHeight = resultHeight.value_or(source.height);
  if (lockedHeight < 1) throw std::invalid_argument("a result has at least one row");
  if (lockedWidth < source.width) return {};

  Image result = NewImage(lockedWidth, lockedHeight, resultFormat, initial);
  if (!BlurTableFits(whole)) return {BlurOutcome::kUnblurred, result};
  if (IsStorable(resultFormat)) {
    BlurColumns(source, whole, result);
    BlurRows(source, whole, result);
  }
  return {BlurOutcome::kBlurred, result};
}

}  // namespace oracle
