#include "resample/lane_passes.h"

#include <cstring>

namespace {

constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;

std::int32_t PairsOf(std::int32_t pixels) { return pixels / 2 + pixels % 2; }
std::int32_t Smaller(std::int32_t a, std::int32_t b) { return a < b ? a : b; }
std::uint64_t Count(std::int32_t count) { return static_cast<std::uint64_t>(count); }

void Add(const OpenChannels& counts, LanePasses::OpenTotals& all) {
  all.coarse += counts.coarse;
  all.fine += counts.fine;
}

// Whether a list takes over one pixel as it is.
bool IsCopy(const ContributionList& list) {
  return list.count == 1 && list.entries[0].weight == 1.0F && list.total == 1.0F;
}

// Whether all lists do, of pixels that follow each other or repeat.
bool AreCopies(const ContributionLists& lists) {
  for (std::int32_t i = 0; i < lists.Count(); ++i) {
    if (!IsCopy(lists[i])) return false;
    const std::int32_t before = lists[i > 0 ? i - 1 : i].entries[0].pixel;
    const std::int32_t step = lists[i].entries[0].pixel - before;
    if (step < 0 || step > 1) return false;
  }
  return true;
}

// Cuts a block into arrays, each on cache lines of its own; without a block it only adds up.
class Room {
 public:
  explicit Room(char* block) : block_(block) {
    if (block != nullptr) used_ = (kLine - reinterpret_cast<std::uintptr_t>(block) % kLine) % kLine;
  }

  template <typename T>
  T* For(std::uint64_t count) {
    T* const place =
        block_ == nullptr ? nullptr : static_cast<T*>(static_cast<void*>(block_ + used_));
    used_ += (count * sizeof(T) + kLine - 1) / kLine * kLine;
    return place;
  }
  void ForWeights(std::uint64_t lists, std::uint64_t pairs, FixedWeights& fixed) {
    fixed.heads = For<FixedHead>(lists);
    fixed.coarse = For<std::uint32_t>(lists * pairs);
    fixed.fine = For<std::uint32_t>(lists * pairs);
    fixed.weights = For<float>(lists * pairs * 2);
  }
  // With what the block's own start may take.
  std::uint64_t Used() const { return used_ + kLine; }

 private:
  static constexpr std::uint64_t kLine = 64;

  char* block_;
  std::uint64_t used_ = 0;
};

}  // namespace

std::uint64_t LanePasses::Place(char* block, char* ring, std::int32_t mostRowPairs) {
  Room room(block);
  room.ForWeights(Count(width_), Count(columns_.pairs), columns_);
  pieces_ = room.For<Piece>(blocks_);
  copied_ = room.For<std::int32_t>(columnsAreCopies_ ? Count(width_) : 0);
  for (FixedWeights& row : row_) room.ForWeights(1, Count(mostRowPairs), row);
  rows_ = room.For<const RingBlock*>(Count(mostRowPairs));
  spread_ = room.For<SpreadPair>(Count(PairsOf(reader_->width)));
  ring_ = ring != nullptr ? reinterpret_cast<RingBlock*>(ring)
                          : room.For<RingBlock>(Count(batches_ * kBatchPairs) * blocks_);
  return room.Used();
}

bool LanePasses::Prepare(const PictureReader& reader, const ContributionLists& columns, void* image,
                         std::int32_t span, VectorLevel level) {
  kernels_ = LaneKernelsFor(level);
  if (kernels_ == nullptr || reader.Layout() == PixelLayout::kNone) return false;
  reader_ = &reader;
  width_ = columns.Count();
  columns_.pairs = WidestList(&columns[0], width_);
  columnsAreCopies_ = AreCopies(columns);
  blocks_ = static_cast<std::size_t>(width_ / kLanes) + (width_ % kLanes > 0 ? 1 : 0);
  const std::int32_t rowPairs = Smaller(span / 2 + 1, PairsOf(reader.height));
  // As many as the pairs of one row may touch, with the one before them.
  batches_ = (rowPairs + 1 + kBatchPairs - 2) / kBatchPairs + 1;
  const std::uint64_t imageBytes = Count(width_) * Count(reader.height) * 4;
  const std::uint64_t ringBytes = Count(batches_ * kBatchPairs) * blocks_ * sizeof(RingBlock);
  char* const ring = ringBytes <= imageBytes ? static_cast<char*>(image) : nullptr;
  const std::uint64_t bytes = Place(nullptr, ring, rowPairs);
  if (bytes + (ring != nullptr ? ringBytes : 0) > imageBytes + kMebibyte) return false;
  block_ = ZeroedBlock<char>(bytes);
  if (!block_) return false;
  Place(block_.Data(), ring, rowPairs);
  FixWeights(&columns[0], width_, reader.width, columns_);
  CutPieces();
  FindColumns(columns);
  return true;
}

// Lists near the borders are seldom as simple as those between them.
void LanePasses::CutPieces() {
  Piece* last = nullptr;
  for (std::int32_t x = 0; x < width_; x += kLanes) {
    const std::int32_t count = Smaller(width_ - x, kLanes);
    const Piece piece = {x, count, RoundingOf(columns_, x, count), columns_.heads[x].bits};
    if (last != nullptr && last->rounding == piece.rounding && last->bits == piece.bits &&
        last->count < kLongestAlong) {
      last->count += count;
    } else {
      last = pieces_ + pieceCount_++;
      *last = piece;
    }
  }
}

void LanePasses::FindColumns(const ContributionLists& columns) {
  for (std::int32_t x = 0; columnsAreCopies_ && x < width_; ++x) {
    copied_[x] = columns[x].entries[0].pixel;
    if (copied_[x] + kLanes <= reader_->width) reaching_ = x + 1;
  }
}

void LanePasses::FilterBatch(std::int32_t batch) {
  const std::uint32_t* rows[kLanes];
  for (std::int32_t i = 0; i < kLanes; ++i) {
    const std::int32_t row = Smaller(batch * kLanes + i, reader_->height - 1);
    rows[i] = reinterpret_cast<const std::uint32_t*>(reader_->RowAddress(row));
  }
  RingBlock* const result = Pair(batch * kBatchPairs);
  std::int32_t spread = 0;  // pairs of columns taken apart so far
  for (std::int32_t i = 0; i < pieceCount_; ++i) {
    const Piece& piece = pieces_[i];
    const std::int32_t lastColumn = piece.first + piece.count - 1;
    const std::int32_t end = columns_.heads[lastColumn].firstPair + columns_.pairs;
    const std::int32_t needed = Smaller((end / 8 + 1) * 8, PairsOf(reader_->width));
    if (needed > spread) {
      kernels_->spread(rows, reader_->Layout(), reader_->width, spread, needed, spread_);
      spread = needed;
    }
    Add(kernels_->along(columns_, spread_, piece, result + piece.first / kLanes, blocks_),
        openAlong_);
  }
}

void LanePasses::FillRing(std::int32_t firstPair, std::int32_t lastPair) {
  // A later row may need one pair before this one's.
  const std::int32_t first = firstPair > 0 ? (firstPair - 1) / kBatchPairs : 0;
  if (next_ < first) next_ = first;
  for (; next_ * kBatchPairs <= lastPair; ++next_) FilterBatch(next_);
}

// Rows often have the weights of one a few rows before.
FixedWeights& LanePasses::FixedRow(const ContributionList& list) {
  for (int i = 0; i < kKnownRows; ++i) {
    if (rowLists_[i] != nullptr && AreTwins(list, *rowLists_[i])) return row_[i];
  }
  const int place = nextRow_;
  nextRow_ = (nextRow_ + 1) % kKnownRows;
  rowLists_[place] = &list;
  row_[place].pairs = WidestList(&list, 1);
  FixWeights(&list, 1, reader_->height, row_[place]);
  return row_[place];
}

void LanePasses::CopyRow(std::int32_t row, PixelLayout layout, std::uint32_t* result) {
  if (lastCopy_.result != nullptr && lastCopy_.row == row && lastCopy_.layout == layout) {
    std::memcpy(result, lastCopy_.result, static_cast<std::size_t>(width_) * sizeof *result);
  } else {
    const auto* source = reinterpret_cast<const std::uint32_t*>(reader_->RowAddress(row));
    kernels_->pick(source, copied_, reaching_, width_, RecolouringOf(reader_->Layout(), layout),
                   result);
  }
  lastCopy_ = {row, layout, result};
}

void LanePasses::FilterRow(const ContributionList& list, PixelLayout layout,
                           std::uint32_t* result) {
  if (layout == PixelLayout::kNone) return;
  if (list.count == 0) {
    for (std::int32_t x = 0; x < width_; ++x) result[x] = EncodeOpaque(layout, {0, 0, 0});
    return;
  }
  if (columnsAreCopies_ && IsCopy(list)) return CopyRow(list.entries[0].pixel, layout, result);
  const std::int32_t first = list.entries[0].pixel / 2;
  const FixedWeights& row = FixedRow(list);
  FillRing(first, first + row.pairs - 1);
  for (std::int32_t k = 0; k < row.pairs; ++k) rows_[k] = Pair(first + k);
  const Rounding rounding = RoundingOf(row, 0, 1);
  for (std::int32_t x = 0; x < width_; x += kLongestDown) {
    const Piece piece = {x, Smaller(width_ - x, kLongestDown), rounding, row.heads->bits};
    Add(kernels_->down(row, rows_, piece, layout, result + x), openDown_);
  }
}
