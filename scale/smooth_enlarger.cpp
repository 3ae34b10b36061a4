#include "scale/smooth_enlarger.h"

#include "pixels/picture_editor.h"
#include "plugin/processor.h"
#include "plugin/yield.h"
#include "scale/smooth_rows.h"
#include "scale/smooth_tables.h"

namespace {

std::int32_t Clamp(std::int32_t index, std::int32_t size) {
  if (index < 0) return 0;
  return index < size ? index : size - 1;
}

SmoothSourceRows RowsAround(const PictureEditor& source, std::int32_t row) {
  return {{source.RowAddress(Clamp(row - 1, source.height)),
           source.RowAddress(Clamp(row, source.height)),
           source.RowAddress(Clamp(row + 1, source.height)),
           source.RowAddress(Clamp(row + 2, source.height))},
          source.width};
}

void EnlargeRows(const SmoothRows& rows, const PictureEditor& source, const PictureEditor& result,
                 const SmoothTables& tables, std::int32_t width, std::int32_t height) {
  for (std::int32_t byte = 0; byte < source.bytesPerPixel; ++byte) {
    for (std::int32_t j = 0; j < height; ++j) {
      // Deliberate: there are as many yields as if each byte were a pass of its own; all the work
      // is done in the first.
      if (byte == 0) {
        rows.enlarge(RowsAround(source, tables.Row(j)), tables.RowWeights(j), tables,
                     result.RowAddress(j), width);
      }
      yield.YieldPoint();
    }
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
  const SmoothRows& rows = SmoothRowsFor(ChosenVectorLevel(), source.width, width);
  if (rows.weightsApart) tables.SetColumnWeightsApart();
  EnlargeRows(rows, source, result, tables, width, height);
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
