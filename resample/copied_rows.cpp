#include "resample/copied_rows.h"

#include <cstddef>
#include <cstring>

namespace {

std::int32_t Smaller(std::int32_t a, std::int32_t b) { return a < b ? a : b; }

std::int32_t EightsIn(std::int32_t columns) {
  return columns / kLanes + (columns % kLanes > 0 ? 1 : 0);
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

}  // namespace

std::uint64_t CopiedRows::BytesFor(const PictureReader& reader, const ContributionLists& columns,
                                   VectorLevel level) {
  const bool possible = LaneKernelsFor(level) != nullptr && reader.Layout() != PixelLayout::kNone &&
                        columns.Count() >= kLanes && reader.width >= kLanes && AreCopies(columns);
  return possible ? static_cast<std::uint64_t>(EightsIn(columns.Count())) * sizeof(PickedEight) : 0;
}

bool CopiedRows::Prepare(const PictureReader& reader, const ContributionLists& columns,
                         VectorLevel level) {
  const std::uint64_t bytes = BytesFor(reader, columns, level);
  if (bytes == 0) return false;
  eights_ = ZeroedBlock<PickedEight>(bytes);
  if (!eights_) return false;
  kernels_ = LaneKernelsFor(level);
  reader_ = &reader;
  width_ = columns.Count();
  count_ = EightsIn(width_);
  const auto pixel = [&columns](std::int32_t x) { return columns[x].entries[0].pixel; };
  for (std::int32_t i = 0; i < count_; ++i) {
    PickedEight& eight = eights_[i];
    eight.first = Smaller(i * kLanes, width_ - kLanes);
    eight.start = Smaller(pixel(eight.first), reader.width - kLanes);
    for (std::int32_t k = 0; k < kLanes; ++k) {
      eight.places[k] = pixel(eight.first + k) - eight.start;
    }
  }
  return true;
}

bool CopiedRows::CopyRow(const ContributionList& list, PixelLayout layout, std::uint32_t* result) {
  if (!IsCopy(list) || layout == PixelLayout::kNone) {
    last_ = {};
    return false;
  }
  const std::int32_t row = list.entries[0].pixel;
  if (last_.result != nullptr && last_.row == row && last_.layout == layout) {
    std::memcpy(result, last_.result, static_cast<std::size_t>(width_) * sizeof *result);
  } else {
    const auto* source = reinterpret_cast<const std::uint32_t*>(reader_->RowAddress(row));
    if (layout_ != layout) change_ = RecolouringOf(reader_->Layout(), layout);
    layout_ = layout;
    kernels_->pick(source, eights_.Data(), count_, change_, result);
  }
  last_ = {row, layout, result};
  return true;
}
