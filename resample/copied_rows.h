// Both passes where they only take over pixels, as nearest neighbours do.
#pragma once

#include <cstdint>

#include "pixels/picture_editor.h"
#include "plugin/processor.h"
#include "plugin/zeroed_block.h"
#include "resample/contributions.h"
#include "resample/lane_kernels.h"

// For the host's thread only; a local object of one call, whose reader must outlive it.
class CopiedRows {
 public:
  // What Prepare requests, if it is possible but for memory; else 0.
  static std::uint64_t BytesFor(const PictureReader& reader, const ContributionLists& columns,
                                VectorLevel level);

  // Takes over what is needed of the columns' lists, which need not be kept after that. False, with
  // nothing done, unless each takes over one pixel as it is, the same as the column before it or
  // the next, both sides are at least eight pixels wide, and there are vector instructions and
  // memory; nor for a source without a layout.
  bool Prepare(const PictureReader& reader, const ContributionLists& columns, VectorLevel level);

  explicit operator bool() const { return static_cast<bool>(eights_); }

  // Makes one row of the result, one opaque word in `layout` for each column, if the list takes
  // over one row as it is; false, with nothing done, if not, and for kNone. What was made by the
  // call before must still be there: rows that repeat are copied.
  bool CopyRow(const ContributionList& list, PixelLayout layout, std::uint32_t* result);

 private:
  const LaneKernels* kernels_ = nullptr;
  const PictureReader* reader_ = nullptr;
  ZeroedBlock<PickedEight> eights_;  // of the columns
  std::int32_t count_ = 0;
  std::int32_t width_ = 0;                   // of the result
  PixelLayout layout_ = PixelLayout::kNone;  // of the rows that are recoloured by
  Recolouring change_ = {};
  struct {
    std::int32_t row;  // of the source
    PixelLayout layout;
    const std::uint32_t* result;
  } last_ = {};  // what was made last
};
