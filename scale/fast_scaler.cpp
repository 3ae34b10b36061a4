#include "scale/fast_scaler.h"

#include "pixels/picture_editor.h"
#include "plugin/arithmetic.h"
#include "plugin/held_object.h"
#include "plugin/processor.h"
#include "plugin/yield.h"
#include "scale/fast_row_scaler.h"

namespace {

const std::uint32_t* SourceRow(const PictureEditor& source, const Blocks& blocks, std::int32_t j) {
  const std::int32_t y0 = TruncateToInt32(j * blocks.yStep);
  return reinterpret_cast<const std::uint32_t*>(source.RowAddress(y0));
}

void ScaleRows(const PictureEditor& source, PictureEditor& result, const Blocks& blocks,
               std::int32_t width, std::int32_t height) {
  FastRowScaler rows({blocks, source.width, width, source.Layout(), result.Layout()}, height,
                     ChosenVectorLevel());
  for (std::int32_t j = 0; j < height; ++j) {
    const std::uint32_t* next = j + 1 < height ? SourceRow(source, blocks, j + 1) : nullptr;
    rows.Scale(SourceRow(source, blocks, j), result.cursor, next);
    result.GoToRow(j + 1);
    if (yield.period != 0) rows.Settle();
    yield.YieldPoint();
  }
  rows.Settle();
}

REALpicture ScaleInto(PictureReader& reader, std::int32_t width, std::int32_t height) {
  PictureWriter writer;
  if (!writer.NewPictureWriter(reader, width, height)) return nullptr;
  ScaleRows(reader, writer, Blocks(reader.width, reader.height, width, height), width, height);
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
