#include "scale/fast_scaler.h"

#include <cmath>

#include "pixels/picture_editor.h"
#include "plugin/arithmetic.h"
#include "plugin/held_object.h"
#include "plugin/yield.h"

namespace {

// The source block under each destination pixel.
struct Blocks {
  double xStep;  // source pixels per destination pixel
  double yStep;
  std::int32_t width;   // source pixels
  std::int32_t height;  // source rows
  double count;         // width × height, wrapped to 32 bits

  Blocks(const PictureEditor& source, int resultWidth, int resultHeight)
      : xStep(static_cast<double>(source.width) / resultWidth),
        yStep(static_cast<double>(source.height) / resultHeight),
        width(TruncateToInt32(std::ceil(xStep))),
        height(TruncateToInt32(std::ceil(yStep))),
        count(WrapMultiply(width, height)) {}
};

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

// Averages one source row of `sourceWidth` pixels into `resultWidth` words.
template <PixelLayout layout>
void ScaleRow(const std::uint32_t* source, std::int32_t sourceWidth, const Blocks& blocks,
              PixelLayout resultLayout, std::uint32_t* result, std::int32_t resultWidth) {
  for (std::int32_t i = 0; i < resultWidth; ++i) {
    const std::int32_t x0 = TruncateToInt32(blocks.xStep * i);
    // Rounding could push the last block of rows of some 2^26 pixels past the row's end.
    const std::int32_t left = sourceWidth - x0;
    const Sums sums = SumOf<layout>(source + x0, blocks.width < left ? blocks.width : left);
    const Rgb mean = {Mean(sums.r, blocks), Mean(sums.g, blocks), Mean(sums.b, blocks)};
    result[i] = EncodeOpaque(resultLayout, mean);
  }
}

void ScaleRows(const PictureEditor& source, PictureEditor& result, const Blocks& blocks,
               std::int32_t width, std::int32_t height) {
  for (std::int32_t j = 0; j < height; ++j) {
    const std::int32_t y0 = TruncateToInt32(j * blocks.yStep);
    const auto* sourceRow = reinterpret_cast<const std::uint32_t*>(source.RowAddress(y0));
    WithLayout(source.Layout(), [&](auto layout) {
      ScaleRow<layout.value>(sourceRow, source.width, blocks, result.Layout(), result.cursor,
                             width);
    });
    result.GoToRow(j + 1);
    yield.YieldPoint();
  }
}

REALpicture ScaleInto(PictureReader& reader, std::int32_t width, std::int32_t height) {
  PictureWriter writer;
  if (!writer.NewPictureWriter(reader, width, height)) return nullptr;
  ScaleRows(reader, writer, Blocks(reader, width, height), width, height);
  return writer.RenderPictureWriter();
}

}  // namespace

REALpictureStruct* ScalePictureFast(REALpictureStruct* src, int width, int height) {
  PictureReader reader;
  REALpicture result = nullptr;
  if (reader.GetPictureEditor(src, 1, 0) != 0) result = ScaleInto(reader, width, height);
  HeldObject held(result);
  yield.YieldPoint();
  held.Keep();
  return result;
}
