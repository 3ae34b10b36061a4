// The two-pass resampling engine, one copy for each kernel.
#pragma once

#include "pixels/picture_editor.h"
#include "plugin/held_object.h"
#include "plugin/processor.h"
#include "plugin/yield.h"
#include "resample/contributions.h"
#include "resample/lane_passes.h"
#include "resample/passes.h"

namespace resample {

// Both passes. The picture carries one reference for the caller; the working memory ends with the
// call. Vector instructions filter source rows only when result rows need them, so that these are
// still in the caches then; otherwise the image holds all of them before the first result row.
template <typename Filter>
REALpicture RunPasses(PictureReader& reader, PictureWriter& writer, std::int32_t width,
                      std::int32_t height, YieldData& yields) {
  const std::int32_t sourceHeight = reader.height;
  const ZeroedBlock<std::uint32_t> image(static_cast<std::uint64_t>(width) *
                                         static_cast<std::uint64_t>(sourceHeight) *
                                         sizeof(std::uint32_t));
  ContributionLists lists;
  if (!image || !lists.Resize(width)) return nullptr;
  yields.YieldPoint();
  lists.Build<Filter>(reader.width, Axis::kAlongRows);
  yields.YieldPoint();
  LanePasses lanes;
  const auto search = TapSearch::For<Filter>(sourceHeight, height, Axis::kDownColumns);
  if (!lanes.Prepare(reader, lists, image.Data(), search.Span(sourceHeight), ChosenVectorLevel())) {
    for (std::int32_t y = 0; y < sourceHeight; ++y) {
      const auto* row = reinterpret_cast<const std::uint32_t*>(reader.RowAddress(y));
      FilterAlongRow(row, reader.Layout(), lists, image.Data() + IndexOf(y, width));
    }
  }
  lists.Clear();
  yields.YieldPoint();
  if (!lists.Resize(height)) return nullptr;
  lists.Build<Filter>(sourceHeight, Axis::kDownColumns);
  yields.YieldPoint();
  if (!writer.NewPictureWriter(reader, width, height)) return nullptr;
  for (std::int32_t y = 0; y < height; ++y) {
    writer.GoToRow(y);
    if (lanes) {
      lanes.FilterRow(lists[y], writer.Layout(), writer.cursor);
    } else {
      FilterDownColumns(image.Data(), width, lists[y], writer.Layout(), writer.cursor);
    }
    yields.YieldPoint();
  }
  yields.YieldPoint();
  HeldObject result(writer.RenderPictureWriter());
  yields.YieldPoint();
  return static_cast<REALpicture>(result.Keep());
}

}  // namespace resample

// Resamples `source` to width × height pixels, both at least 1, with a kernel of kernels.h. A new
// picture with one reference for the caller, opaque, with an alpha channel exactly when source has
// one; null when source cannot be locked, the picture cannot be made, or memory is short (but for
// single tap lists, whose pixels become black).
//
// Working memory: 4 · width · source height bytes and the tap lists; with vector instructions a
// further block, without which the plain way runs. Yields by the period given:
// four times while it prepares, after every result row, and three times at the end; never inside
// the first pass. A host exception passes out of any of them, with everything released.
template <typename Filter>
REALpicture Resample(REALpicture source, std::int32_t width, std::int32_t height,
                     std::int32_t yieldPeriod) {
  YieldData yields;
  yields.Start(yieldPeriod);
  PictureReader reader;
  if (reader.GetPictureEditor(source, 1, 0) == 0) return nullptr;
  PictureWriter writer;
  HeldObject result(resample::RunPasses<Filter>(reader, writer, width, height, yields));
  if (result.Get() == nullptr) return nullptr;
  reader.Release();
  yields.YieldPoint();
  return static_cast<REALpicture>(result.Keep());
}
