// Plain loops over the definition of the smooth enlarger. Every float operation is written apart
// and rounded by itself: this file must be compiled without fused operations.
#include "tests/oracles/smooth_enlarge.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "tests/oracles/numbers.h"

namespace oracle {
namespace {

using Weights = std::array<float, 4>;

// indices[k] = (k * sourceSize) / size for all k below `entries`.
std::vector<int> Indices(int sourceSize, int size, int entries) {
  std::vector<int> indices;
  for (int k = 0; k < entries; ++k) {
    indices.push_back(static_cast<int>(static_cast<std::int64_t>(k) * sourceSize / size));
  }
  return indices;
}

// One entry for each of `size` result positions, repeated cyclically up to `entries`.
std::vector<Weights> WeightTable(int sourceSize, int size, int entries) {
  std::vector<Weights> table;
  for (int k = 0; k < size; ++k) {
    const std::int64_t remainder = static_cast<std::int64_t>(k) * sourceSize % size;
    const float t = static_cast<float>(remainder) / static_cast<float>(size);
    table.push_back(SmoothWeights(t));
  }
  for (int k = size; k < entries; ++k) {
    const Weights repeated = table.at(static_cast<std::size_t>(k % size));
    table.push_back(repeated);
  }
  return table;
}

int Clamp(int position, int size) { return std::min(std::max(position, 0), size - 1); }

std::uint32_t ToByte(float value) {
  if (value <= 0.0f) return 0;
  if (value >= 255.0f) return 255;
  return static_cast<std::uint32_t>(value);
}

}  // namespace

std::array<float, 4> SmoothWeights(float t) {
  const volatile float tangent = 0.0f;  // volatile: multiplied when run, not folded away
  const float a = tangent;
  const float t2 = t * t;
  const float t3 = t2 * t;
  const float at = a * t;
  const float at2 = a * t2;
  const float at3 = a * t3;
  const float threeT2 = 3.0f * t2;
  const float twoT3 = 2.0f * t3;
  Weights entry;
  entry[0] = at2 - at3;
  entry[1] = (threeT2 - twoT3) - at;
  entry[2] = (twoT3 - threeT2) + 1.0f;
  entry[3] = (at3 - at2) + at;
  return entry;
}

bool SmoothTablesFit(int sourceWidth, int width, int height) {
  const std::int64_t larger = std::max(width, height);
  const std::int64_t row = std::max<std::int64_t>(larger, sourceWidth);
  const std::int64_t limit = 0x7FFFFFFF;
  return larger * 4 + 20 <= limit && larger * 16 + 20 <= limit && row * 4 + 20 <= limit;
}

Image SmoothEnlarge(const Image& source, int width, int height, int resultFormat,
                    std::uint32_t initial, std::optional<int> resultHeight) {
  const int lockedHeight = resultHeight.value_or(height);
  if (source.width < 1 || source.height < 1 || width < 1 || height < 1 || lockedHeight < 1) {
    throw std::invalid_argument("source and result have at least one pixel");
  }
  const int larger = std::max(width, height);
  const std::vector<int> xIndex = Indices(source.width, width, larger);
  const std::vector<int> yIndex = Indices(source.height, height, larger);
  const std::vector<Weights> xWeights = WeightTable(source.width, width, larger);
  const std::vector<Weights> yWeights = WeightTable(source.height, height, larger);
  std::vector<float> rowBuffer(static_cast<std::size_t>(std::max(larger, source.width)));

  Image result = NewImage(width, lockedHeight, resultFormat, initial);
  for (int c = 0; c < 4; ++c) {
    for (int j = 0; j < height; ++j) {
      const int writtenRow = j < lockedHeight ? j : 0;
      const int y = yIndex.at(static_cast<std::size_t>(j));
      const Weights& down = yWeights.at(static_cast<std::size_t>(j));
      for (int x = 0; x < source.width; ++x) {
        const auto sample = [&](int row) {
          return static_cast<float>(StoredByte(source.At(x, Clamp(row, source.height)), c));
        };
        float sum = 0.0f;
        sum = sum + sample(y - 1) * down[3];
        sum = sum + sample(y) * down[2];
        sum = sum + sample(y + 1) * down[1];
        sum = sum + sample(y + 2) * down[0];
        rowBuffer.at(static_cast<std::size_t>(x)) = sum;
      }
      for (int i = 0; i < width; ++i) {
        const int x = xIndex.at(static_cast<std::size_t>(i));
        const Weights& along = xWeights.at(static_cast<std::size_t>(i));
        const auto buffered = [&](int column) {
          return rowBuffer.at(static_cast<std::size_t>(Clamp(column, source.width)));
        };
        float value = buffered(x - 1) * along[3] + 0.5f;
        value = value + buffered(x) * along[2];
        value = value + buffered(x + 1) * along[1];
        value = value + buffered(x + 2) * along[0];
        std::uint32_t& word = result.At(i, writtenRow);
        word = (word & ~(255u << (8 * c))) | ToByte(value) << (8 * c);
      }
    }
  }
  return result;
}

}  // namespace oracle
