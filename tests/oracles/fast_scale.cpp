// Plain loops over the definition of the fast scaler; every sum is made one sample at a time.
#include "tests/oracles/fast_scale.h"

#include <cmath>
#include <stdexcept>

#include "tests/oracles/numbers.h"

namespace oracle {
Image FastScale(const Image& source, int width, int height, int resultFormat, std::uint32_t initial,
                std::optional<int> resultHeight) {
  const int lockedHeight = resultHeight.value_or(height);
  if (width < 1 || height < 1 || lockedHeight < 1) {
    throw std::invalid_argument("a result has at least one pixel");
  }
  const double xStep = static_cast<double>(source.width) / static_cast<double>(width);
  const double yStep = static_cast<double>(source.height) / static_cast<double>(height);
  const std::int32_t blockWidth = Truncate(std::ceil(xStep));
  const std::int32_t blockHeight = Truncate(std::ceil(yStep));
  const double count = static_cast<double>(Product(blockWidth, blockHeight));

  Image result = NewImage(width, lockedHeight, resultFormat, initial);
  for (int j = 0; j < height; ++j) {
    const int writtenRow = j < lockedHeight ? j : 0;
    const std::int32_t y0 = Truncate(static_cast<double>(j) * yStep);
    double column = 0.0;
    for (int i = 0; i < width; ++i) {
      double red = 0.5;
      double green = 0.5;
      double blue = 0.5;
      const std::int32_t x0 = Truncate(xStep * column);
      column += 1.0;
      for (std::int32_t repetition = 0; repetition < blockHeight; ++repetition) {
        const std::int32_t readRow = y0 < source.height ? y0 : 0;
        for (std::int32_t k = 0; k < blockWidth; ++k) {
          const std::uint32_t word = source.At(x0 + k, readRow);
          red += static_cast<double>(Red(word, source.format));
          green += static_cast<double>(Green(word, source.format));
          blue += static_cast<double>(Blue(word, source.format));
        }
      }
      if (IsStorable(resultFormat)) {
        result.At(i, writtenRow) = PackOpaque(resultFormat, Truncate(red / count),
                                              Truncate(green / count), Truncate(blue / count));
      }
    }
  }
  return result;
}

}  // namespace oracle
