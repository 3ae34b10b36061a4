// Both passes in vector instructions, in the way that is the fastest for the lists.
#pragma once

#include <cstdint>

#include "resample/copied_rows.h"
#include "resample/ring_passes.h"

// Results are those of FilterAlongRow and FilterDownColumns, bit for bit. For the host's thread
// only; a local object of one call, whose reader and image must outlive it.
class LanePasses {
 public:
  // Takes over the lists of the columns, which need not be kept after that. `image` has 4 bytes for
  // each of their columns in each of the reader's rows, and is used from now on. `span`: the most
  // source rows that a result row may need.
  //
  // False when there are no vector instructions at this level, when the source has no layout, and
  // when memory is short, or what is touched would be more than 1 MiB above the image. Then nothing
  // was done.
  bool Prepare(const PictureReader& reader, const ContributionLists& columns, void* image,
               std::int32_t span, VectorLevel level);

  explicit operator bool() const { return floats_ || integers_; }

  // Filters one row of the result, one opaque word in `layout` for each column. The rows' lists
  // must be kept, and move on: none may reach back by more than two pixels before the ones before
  // it. Nothing is written for kNone. What was written by the call before must still be there: rows
  // that repeat may be copied.
  void FilterRow(const ContributionList& list, PixelLayout layout, std::uint32_t* result);

  // Channels that needed more than the first sums, along rows and down columns.
  const OpenChannels& OpenAlong() const {
    return floats_ ? floats_.OpenAlong() : integers_.OpenAlong();
  }
  const OpenChannels& OpenDown() const {
    return floats_ ? floats_.OpenDown() : integers_.OpenDown();
  }

 private:
  CopiedRows copies_;
  RingPasses<FloatNumbers> floats_;
  RingPasses<IntegerNumbers> integers_;
};
