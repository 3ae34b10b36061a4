#include "scale/smooth_enlarger.h"

#include "pixels/picture_editor.h"
#include "plugin/arithmetic.h"
#include "plugin/yield.h"
#include "scale/smooth_tables.h"

namespace {

constexpr int kTaps = 4;

std::int32_t Clamp(std::int32_t index, std::int32_t size) {
  if (index < 0) return 0;
  return index < size ? index : size - 1;
}

// Blends the four source rows around row `above` into one value per source column, for one byte of
// the pixel.
void BlendRows(const PictureEditor& source, std::int32_t byte, std::int32_t above,
               const TapWeights& weights, float* row) {
  const unsigned char* taps[kTaps];
  for (int k = 0; k < kTaps; ++k) {
    taps[k] = source.RowAddress(Clamp(above - 1 + k, source.height)) + byte;
  }
  for (std::int32_t x = 0; x < source.width; ++x) {
    const std::size_t offset = static_cast<std::size_t>(x) * 4;
    float sum = 0.0F;
    for (int k = 0; k < kTaps; ++k) {
      sum += static_cast<float>(taps[k][offset]) * weights.entry[kTaps - 1 - k];
    }
    row[x] = sum;
  }
}

// Blends four neighbours of the blended row into each new pixel. The half, added with the first,
// rounds to nearest.
void BlendColumns(const float* row, std::int32_t sourceWidth, const SmoothTables& tables,
                  unsigned char* result, std::int32_t width) {
  for (std::int32_t i = 0; i < width; ++i) {
    const std::int32_t left = tables.Column(i);
    const TapWeights& weights = tables.ColumnWeights(i);
    float value = row[Clamp(left - 1, sourceWidth)] * weights.entry[3] + 0.5F;
    value += row[Clamp(left, sourceWidth)] * weights.entry[2];
    value += row[Clamp(left + 1, sourceWidth)] * weights.entry[1];
    value += row[Clamp(left + 2, sourceWidth)] * weights.entry[0];
    result[static_cast<std::size_t>(i) * 4] = TruncateToByte(value);
  }
}

void EnlargeByte(const PictureEditor& source, const PictureEditor& result, std::int32_t byte,
                 const SmoothTables& tables, std::int32_t width, std::int32_t height) {
  for (std::int32_t j = 0; j < height; ++j) {
    BlendRows(source, byte, tables.Row(j), tables.RowWeights(j), tables.RowBuffer());
    BlendColumns(tables.RowBuffer(), source.width, tables, result.RowAddress(j) + byte, width);
    yield.YieldPoint();
  }
}

// False, with nothing written, when memory is short. The working memory ends with the call.
bool Enlarge(const PictureEditor& source, const PictureEditor& result, std::int32_t width,
             std::int32_t height) {
  SmoothTables tables(source.width, source.height, width, height);
  if (!tables.Complete()) return false;
  tables.FillIndexes();
  tables.FillColumnWeights();
  yield.YieldPoint();
  tables.FillRowWeights();
  yield.YieldPoint();
  tables.PadWeights();
  yield.YieldPoint();
  for (std::int32_t byte = 0; byte < source.bytesPerPixel; ++byte) {
    EnlargeByte(source, result, byte, tables, width, height);
  }
  return true;
}

}  // namespace

REALpictureStruct* ScalePictureNiceBigger(REALpictureStruct* src, int width, int height) {
  PictureReader reader;
  if (reader.GetPictureEditor(src, 1, 0) == 0) return nullptr;
  PictureWriter writer;
  if (!writer.NewPictureWriter(reader, width, height)) return nullptr;
  if (!Enlarge(reader, writer, width, height)) return nullptr;
  return writer.RenderPictureWriter();
}
