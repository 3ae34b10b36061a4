// Both passes in vector instructions, a few source rows ahead of the result's.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pixels/picture_editor.h"
#include "plugin/zeroed_block.h"
#include "resample/lane_numbers.h"

// Filters source rows into a ring, in which each lies from when a result row first needs it until
// none does. Results are those of FilterAlongRow and FilterDownColumns, bit for bit. For the host's
// thread only; a local object of one call, whose reader and image must outlive it.
//
// Numbers: what sums are made of, IntegerNumbers or FloatNumbers.
template <typename Numbers>
class RingPasses {
 public:
  // Finds out how the columns' lists and `span`, the most source rows that a result row may need,
  // are to be dealt with; requests nothing. `image` has 4 bytes for each column in each of the
  // reader's rows.
  //
  // False when there are no such instructions at this level, when the source has no layout, and
  // when what is touched beside the ring, and `beside` bytes of others, would be more than 1 MiB
  // above what is left of the image.
  bool Plan(const PictureReader& reader, const ContributionLists& columns, void* image,
            std::int32_t span, VectorLevel level, std::uint64_t beside);

  // After that, with the same lists: takes them over, so that they need not be kept. The image may
  // be the ring from now on. False, with nothing done, when memory is short.
  bool Prepare(const ContributionLists& columns);

  explicit operator bool() const { return static_cast<bool>(block_); }

  // Filters one row of the result, one opaque word in `layout` for each column. The rows' lists
  // must be kept, and move on: none may reach back by more than two pixels before the ones before
  // it. Nothing is written for kNone.
  void FilterRow(const ContributionList& list, PixelLayout layout, std::uint32_t* result);

  // Along rows and down columns.
  const OpenChannels& OpenAlong() const { return openAlong_; }
  const OpenChannels& OpenDown() const { return openDown_; }

 private:
  using Kernels = typename Numbers::Kernels;
  using Weights = typename Numbers::Weights;
  using Columns = typename Numbers::Columns;
  using Block = typename Numbers::Block;

  static constexpr std::int32_t kBatchUnits = kLanes / Numbers::kPixels;
  static constexpr std::int32_t kReachingBack = 2 / Numbers::kPixels;  // of FilterRow

  // Lays everything out from `block` on, the ring at `image_` unless that is null; the bytes
  // needed.
  std::uint64_t Place(char* block);
  void CutPieces();
  Weights& FixedRow(const ContributionList& list);
  void FillRing(std::int32_t firstUnit, std::int32_t lastUnit);
  void FilterBatch(std::int32_t batch);
  std::uint64_t RingBlocks() const {
    return static_cast<std::uint64_t>(batches_ * kBatchUnits) * blocks_;
  }
  Block* Unit(std::int32_t unit) const {
    const std::int32_t place = unit % (kBatchUnits * batches_);
    return ring_ + static_cast<std::size_t>(place) * blocks_;
  }

  const Kernels* kernels_ = nullptr;
  const PictureReader* reader_ = nullptr;
  ZeroedBlock<char> block_;
  Weights columns_ = {};
  Piece* pieces_ = nullptr;  // of a row
  std::int32_t pieceCount_ = 0;
  static constexpr int kKnownRows = 4;
  Weights row_[kKnownRows] = {};                       // of one result row each, and
  const ContributionList* rowLists_[kKnownRows] = {};  // its list
  int nextRow_ = 0;                                    // the one to be given up next
  const Block** rows_ = nullptr;                       // the rows that it needs, in units
  Columns* spread_ = nullptr;                          // eight source rows, taken apart
  Block* ring_ = nullptr;                              // batches of eight filtered rows
  char* image_ = nullptr;                              // where the ring lies, unless in the block
  std::int32_t mostRowUnits_ = 0;                      // that a result row may need
  std::int32_t width_ = 0;                             // of the result
  std::size_t blocks_ = 0;                             // of eight columns, in a row
  std::int32_t batches_ = 0;                           // that the ring has room for
  std::int32_t next_ = 0;                              // the first batch that was not filtered yet
  OpenChannels openAlong_, openDown_;
};
