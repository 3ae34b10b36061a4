#include "resample/copied_rows.h"

#include <cstddef>
#include <cstring>

namespace {

std::int32_t Smaller(std::int32_t a, std::int32_t b) { return a < b ? a : b; }

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

bool CopiedRows::Prepare(const PictureReader& reader, const ContributionLists& columns,
                         VectorLevel level) {
  kernels_ = LaneKernelsFor(level);
  if (kernels_ == nullptr || reader.Layout() == PixelLayout::kNone || !AreCopies(columns)) {
    return false;
  }
  width_ = columns.Count();
  if (width_ < kLanes || reader.width < kLanes) return false;
  reader_ = &reader;
  count_ = width_ / kLanes + (width_ % kLanes > 0 ? 1 : 0);
  eights_ = ZeroedBlock<PickedEight>(static_cast<std::uint64_t>(count_) * sizeof(PickedEight));
  if (!eights_) return false;
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
  if (!IsCopy(list) || layout == PixelLayout::kNone) return false;
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
