// Both passes in vector instructions, a few source rows ahead of the result's.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pixels/picture_editor.h"
#include "plugin/zeroed_block.h"
#include "resample/fixed_weights.h"
#include "resample/lane_kernels.h"

// Filters source rows into a ring, in which each lies from when a result row first needs it until
// none does. Results are those of FilterAlongRow and FilterDownColumns, bit for bit. For the host's
// thread only; a local object of one call, whose reader and image must outlive it.
class LanePasses {
 public:
  // Takes over the lists of the columns, which need not be kept after that. `image` has 4 bytes for
  // each of their columns in each of the reader's rows, and is the ring's from now on. `span`: the
  // most source rows that a result row may need.
  //
  // False, with nothing done, when there are no vector instructions at this level, when the source
  // has no layout, and when memory is short, or what is touched beside the ring would be more than
  // 1 MiB above what is left of the image.
  bool Prepare(const PictureReader& reader, const ContributionLists& columns, void* image,
               std::int32_t span, VectorLevel level);

  explicit operator bool() const { return static_cast<bool>(block_); }

  // Filters one row of the result, one opaque word in `layout` for each column. The rows' lists
  // must be kept, and move on: none may reach back by more than two pixels before the ones before
  // it. Nothing is written for kNone. What was written by the call before must still be there: rows
  // that repeat are copied.
  void FilterRow(const ContributionList& list, PixelLayout layout, std::uint32_t* result);

  // Channels that needed more than coarse weights, along rows and down columns.
  struct OpenTotals {
    std::int64_t coarse = 0;
    std::int64_t fine = 0;
  };
  const OpenTotals& OpenAlong() const { return openAlong_; }
  const OpenTotals& OpenDown() const { return openDown_; }

 private:
  static constexpr std::int32_t kBatchPairs = kLanes / 2;

  // Lays everything out from `block` on, the ring at `ring` unless that is null; the bytes needed.
  std::uint64_t Place(char* block, char* ring, std::int32_t mostRowPairs);
  void CutPieces();
  void FindColumns(const ContributionLists& columns);
  FixedWeights& FixedRow(const ContributionList& list);
  void CopyRow(std::int32_t row, PixelLayout layout, std::uint32_t* result);
  void FillRing(std::int32_t firstPair, std::int32_t lastPair);
  void FilterBatch(std::int32_t batch);
  RingBlock* Pair(std::int32_t pair) const {
    const std::int32_t place = pair % (kBatchPairs * batches_);
    return ring_ + static_cast<std::size_t>(place) * blocks_;
  }

  const LaneKernels* kernels_ = nullptr;
  const PictureReader* reader_ = nullptr;
  ZeroedBlock<char> block_;
  FixedWeights columns_ = {};
  Piece* pieces_ = nullptr;  // of a row
  std::int32_t pieceCount_ = 0;
  std::int32_t* copied_ = nullptr;  // where all columns are copies, their source columns
  bool columnsAreCopies_ = false;
  struct {
    std::int32_t row;  // of the source
    PixelLayout layout;
    const std::uint32_t* result;
  } lastCopy_ = {};            // the row that was copied last
  std::int32_t reaching_ = 0;  // so many of those have enough pixels after them for a kernel
  static constexpr int kKnownRows = 4;
  FixedWeights row_[kKnownRows] = {};                  // of one result row each, and
  const ContributionList* rowLists_[kKnownRows] = {};  // its list
  int nextRow_ = 0;                                    // the one to be given up next
  const RingBlock** rows_ = nullptr;                   // the pairs of rows that it needs
  SpreadPair* spread_ = nullptr;                       // eight source rows, taken apart
  RingBlock* ring_ = nullptr;                          // batches of eight filtered rows
  std::int32_t width_ = 0;                             // of the result
  std::size_t blocks_ = 0;                             // of eight columns, in a row
  std::int32_t batches_ = 0;                           // that the ring has room for
  std::int32_t next_ = 0;                              // the first batch that was not filtered yet
  OpenTotals openAlong_, openDown_;
};
