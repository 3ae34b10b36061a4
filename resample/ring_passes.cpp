#include "resample/ring_passes.h"

namespace {

constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;

// Of at least one pixel.
template <typename Numbers>
std::int32_t UnitsOf(std::int32_t pixels) {
  return (pixels - 1) / Numbers::kPixels + 1;
}
std::int32_t Smaller(std::int32_t a, std::int32_t b) { return a < b ? a : b; }
std::uint64_t Count(std::int32_t count) { return static_cast<std::uint64_t>(count); }

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
  void ForWeights(std::uint64_t lists, std::uint64_t taps, FloatWeights& floats) {
    floats.heads = For<FloatHead>(lists);
    floats.scaled = For<float>(lists * taps);
    floats.weights = For<float>(lists * taps);
  }
  // With what the block's own start may take.
  std::uint64_t Used() const { return used_ + kLine; }

  static constexpr std::uint64_t kLine = 64;

 private:
  char* block_;
  std::uint64_t used_ = 0;
};

}  // namespace

template <typename Numbers>
std::uint64_t RingPasses<Numbers>::Place(char* block) {
  Room room(block), imageRoom(image_);
  room.ForWeights(Count(width_), Count(Numbers::UnitsIn(columns_)), columns_);
  pieces_ = room.For<Piece>(blocks_);
  for (Weights& row : row_) room.ForWeights(1, Count(mostRowUnits_), row);
  rows_ = room.For<const Block*>(Count(mostRowUnits_));
  spread_ = room.For<Columns>(Count(UnitsOf<Numbers>(reader_->width)));
  ring_ = (image_ != nullptr ? imageRoom : room).template For<Block>(RingBlocks());
  return room.Used();
}

template <typename Numbers>
bool RingPasses<Numbers>::Plan(const PictureReader& reader, const ContributionLists& columns,
                               void* image, std::int32_t span, VectorLevel level,
                               std::uint64_t beside) {
  kernels_ = Numbers::KernelsFor(level);
  if (kernels_ == nullptr || reader.Layout() == PixelLayout::kNone) return false;
  reader_ = &reader;
  width_ = columns.Count();
  Numbers::UnitsIn(columns_) = Numbers::Widest(&columns[0], width_);
  blocks_ = static_cast<std::size_t>(width_ / kLanes) + (width_ % kLanes > 0 ? 1 : 0);
  mostRowUnits_ = Smaller(Numbers::MostUnitsOf(span), UnitsOf<Numbers>(reader.height));
  // As many as the units of one row may touch, with those before them.
  batches_ = (mostRowUnits_ + kReachingBack + kBatchUnits - 2) / kBatchUnits + 1;
  const std::uint64_t imageBytes = Count(width_) * Count(reader.height) * 4;
  const std::uint64_t ringBytes = RingBlocks() * sizeof(Block) + Room::kLine;
  const bool fits = ringBytes <= imageBytes;
  image_ = fits ? static_cast<char*>(image) : nullptr;
  return beside + Place(nullptr) + (fits ? ringBytes : 0) <= imageBytes + kMebibyte;
}

template <typename Numbers>
bool RingPasses<Numbers>::Prepare(const ContributionLists& columns) {
  block_ = ZeroedBlock<char>(Place(nullptr));
  if (!block_) return false;
  Place(block_.Data());
  Numbers::Fix(&columns[0], width_, reader_->width, Axis::kAlongRows, columns_);
  CutPieces();
  return true;
}

// Lists near the borders are seldom as simple as those between them.
template <typename Numbers>
void RingPasses<Numbers>::CutPieces() {
  Piece* last = nullptr;
  for (std::int32_t x = 0; x < width_; x += kLanes) {
    const std::int32_t count = Smaller(width_ - x, kLanes);
    const Piece piece = {x, count, RoundingOf(columns_, x, count),
                         Numbers::BitsOf(columns_.heads[x])};
    if (last != nullptr && last->rounding == piece.rounding && last->bits == piece.bits &&
        last->count < kLongestAlong) {
      last->count += count;
    } else {
      last = pieces_ + pieceCount_++;
      *last = piece;
    }
  }
}

template <typename Numbers>
void RingPasses<Numbers>::FilterBatch(std::int32_t batch) {
  const std::uint32_t* rows[kLanes];
  for (std::int32_t i = 0; i < kLanes; ++i) {
    const std::int32_t row = Smaller(batch * kLanes + i, reader_->height - 1);
    rows[i] = reinterpret_cast<const std::uint32_t*>(reader_->RowAddress(row));
  }
  Block* const result = Unit(batch * kBatchUnits);
  std::int32_t spread = 0;  // units of columns taken apart so far
  for (std::int32_t i = 0; i < pieceCount_; ++i) {
    const Piece& piece = pieces_[i];
    const std::int32_t lastColumn = piece.first + piece.count - 1;
    const std::int32_t end =
        Numbers::FirstUnit(columns_.heads[lastColumn]) + Numbers::UnitsIn(columns_);
    const std::int32_t needed = Smaller((end / 8 + 1) * 8, UnitsOf<Numbers>(reader_->width));
    if (needed > spread) {
      kernels_->spread(rows, reader_->Layout(), reader_->width, spread, needed, spread_);
      spread = needed;
    }
    kernels_->along(columns_, spread_, piece, result + piece.first / kLanes, blocks_, openAlong_);
  }
}

template <typename Numbers>
void RingPasses<Numbers>::FillRing(std::int32_t firstUnit, std::int32_t lastUnit) {
  // A later row may need some before this one's.
  const std::int32_t first =
      firstUnit > kReachingBack ? (firstUnit - kReachingBack) / kBatchUnits : 0;
  if (next_ < first) next_ = first;
  for (; next_ * kBatchUnits <= lastUnit; ++next_) FilterBatch(next_);
}

// Rows often have the weights of one a few rows before.
template <typename Numbers>
typename RingPasses<Numbers>::Weights& RingPasses<Numbers>::FixedRow(const ContributionList& list) {
  for (int i = 0; i < kKnownRows; ++i) {
    if (rowLists_[i] != nullptr && Numbers::AreTwins(list, *rowLists_[i])) return row_[i];
  }
  const int place = nextRow_;
  nextRow_ = (nextRow_ + 1) % kKnownRows;
  rowLists_[place] = &list;
  Numbers::UnitsIn(row_[place]) = Numbers::Widest(&list, 1);
  Numbers::Fix(&list, 1, reader_->height, Axis::kDownColumns, row_[place]);
  return row_[place];
}

template <typename Numbers>
void RingPasses<Numbers>::FilterRow(const ContributionList& list, PixelLayout layout,
                                    std::uint32_t* result) {
  if (layout == PixelLayout::kNone) return;
  if (list.count == 0) {
    for (std::int32_t x = 0; x < width_; ++x) result[x] = EncodeOpaque(layout, {0, 0, 0});
    return;
  }
  const Weights& row = FixedRow(list);
  const std::int32_t first = FirstPixel(list) / Numbers::kPixels;
  const std::int32_t units = Numbers::UnitsIn(row);
  FillRing(first, first + units - 1);
  for (std::int32_t k = 0; k < units; ++k) rows_[k] = Unit(first + k);
  const Rounding rounding = RoundingOf(row, 0, 1);
  for (std::int32_t x = 0; x < width_; x += kLongestDown) {
    const Piece piece = {x, Smaller(width_ - x, kLongestDown), rounding,
                         Numbers::BitsOf(*row.heads)};
    kernels_->down(row, rows_, piece, layout, result + x, openDown_);
  }
}

template class RingPasses<IntegerNumbers>;
template class RingPasses<FloatNumbers>;
