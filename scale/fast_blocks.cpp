#include "scale/fast_blocks.h"

namespace {

struct Sums {
  std::uint64_t r = 0, g = 0, b = 0;
};

template <PixelLayout layout>
Sums SumOf(const std::uint32_t* pixels, std::int32_t count) {
  Sums sums;
  for (std::int32_t k = 0; k < count; ++k) {
    const Rgb colour = Decode(layout, pixels[k]);
    sums.r += colour.r;
    sums.g += colour.g;
    sums.b += colour.b;
  }
  return sums;
}

// trunc((0.5 + rowSum·height) / count). The product stands for adding the row's pixels one by one,
// `height` times, to a double that starts at 0.5: every partial sum is a half-integer, and exact
// below 2^52, so their order and grouping cannot matter. 255·width·height reaches 2^52 only with
// 2^44 pixels, more than any host can hold.
std::uint32_t Mean(std::uint64_t rowSum, const Blocks& blocks) {
  const double sum = 0.5 + static_cast<double>(rowSum) * blocks.height;
  return static_cast<std::uint32_t>(TruncateToInt32(sum / blocks.count)) & 0xFF;
}

template <PixelLayout layout>
void ScaleRow(const RowTask& task, const std::uint32_t* source, std::uint32_t* result) {
  const Blocks& blocks = task.blocks;
  for (std::int32_t i = 0; i < task.resultWidth; ++i) {
    const std::int32_t x0 = TruncateToInt32(blocks.xStep * i);
    // Rounding could push the last block of rows of some 2^26 pixels past the row's end.
    const std::int32_t left = task.sourceWidth - x0;
    const Sums sums = SumOf<layout>(source + x0, blocks.width < left ? blocks.width : left);
    const Rgb mean = {Mean(sums.r, blocks), Mean(sums.g, blocks), Mean(sums.b, blocks)};
    result[i] = EncodeOpaque(task.resultLayout, mean);
  }
}

}  // namespace

void ScaleRowAsDefined(const RowTask& task, const std::uint32_t* source, std::uint32_t* result) {
  WithLayout(task.sourceLayout, [&](auto layout) { ScaleRow<layout.value>(task, source, result); });
}
