#include "scale/fast_row_scaler.h"

#include <cstring>

namespace {

// From here on repeated rows are written past the caches, of which most hold less.
constexpr std::int64_t kStreamedPixels = std::int64_t{6} << 20;

// Rows below this width have products of step and column so exact that blocks end within their row,
// and columns grow by 0 or 1 when enlarging.
constexpr std::int32_t kWidest = 1 << 24;

// Blocks that are averaged at a time, while memory that is needed later is on its way: those of the
// next row, and the result that many pixels further on.
constexpr std::int32_t kAtOnce = 64;
constexpr std::int32_t kResultAhead = 512;

// Whether each channel is floor(rowSum / width), which is what kernels compute. It is as long as
// width·height does not wrap. For rowSum = q·width + r, r < width, the definition's quotient
//   (0.5 + rowSum·height) / (width·height) = q + (0.5 + r·height) / (width·height)
// lies at least 0.5 / (width·height) > 2^-32 below q + 1 <= 256. The dividend is below 2^39 and
// has one binary place, so the double holds it exactly; doubles up to 256 are at most 2^-45 apart,
// so the rounded quotient, too, stays below q + 1, and truncates to q.
bool MeansAreOfRows(const RowTask& task) {
  const Blocks& blocks = task.blocks;
  return blocks.width >= 1 && blocks.height >= 1 && blocks.width <= kWidestWide &&
         std::int64_t{blocks.width} * blocks.height <= 0x7FFFFFFF &&
         task.sourceLayout != PixelLayout::kNone && task.sourceWidth <= kWidest &&
         task.resultWidth <= kWidest;
}

// The four bytes' means, each rounded down.
std::uint32_t MeanWord(const std::uint32_t* pixels, std::int32_t count) {
  if (count == 1) return *pixels;
  std::uint32_t result = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    std::uint32_t sum = 0;
    for (std::int32_t k = 0; k < count; ++k) sum += ByteOf(pixels[k], shift);
    result |= sum / static_cast<std::uint32_t>(count) << shift;
  }
  return result;
}

// Brings pixels into the second cache; changes nothing, and any address will do. Processors do so
// by themselves only where rows follow each other, and only within a page.
void ReadAhead(const std::uint32_t* pixels, std::int32_t count) {
  constexpr std::int32_t kLine = 64 / sizeof *pixels;
  for (std::int32_t i = 0; i < count; i += kLine) __builtin_prefetch(pixels + i, 0, 2);
}

}  // namespace

// The table and the row stay unset: they are filled before they are used, a call's whole picture
// long. NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): 32 KB would be cleared for nothing
FastRowScaler::FastRowScaler(const RowTask& task, std::int32_t resultHeight, VectorLevel level)
    : task_(task),
      kernels_(MeansAreOfRows(task) ? FastRowsFor(level) : nullptr),
      recolouring_(RecolouringOf(task.sourceLayout, task.resultLayout)),
      isSameWidth_(task.sourceWidth == task.resultWidth),
      repeats_(task.blocks.yStep < 1.0),
      streams_(repeats_ && std::int64_t{task.resultWidth} * resultHeight >= kStreamedPixels) {
  const bool hasOneTable = !isSameWidth_ && task.resultWidth <= kPiece;
  if (IsVectorised() && hasOneTable) FillColumns(0, task.resultWidth);
}

void FastRowScaler::FillColumns(std::int32_t first, std::int32_t count) {
  kernels_->columns(task_.blocks.xStep, first, count, columns_);
  const std::int32_t width = task_.blocks.width;
  const std::int32_t reach = width == 1 ? kernels_->pickReach : (width + 3) / 4 * 4;
  filled_ = count;
  while (filled_ > 0 && columns_[filled_ - 1] + reach > task_.sourceWidth) --filled_;
  if (filled_ < kernels_->least) filled_ = 0;
}

void FastRowScaler::Average(const std::uint32_t* source, const std::uint32_t* next,
                            std::uint32_t* result) const {
  const std::int32_t width = task_.blocks.width;
  const auto average = width <= kWidestNarrow ? kernels_->averageNarrow : kernels_->averageWide;
  std::int32_t count = 0;
  for (std::int32_t i = 0; i < filled_; i += count) {
    const std::int32_t left = filled_ - i;
    count = left < 2 * kAtOnce ? left : kAtOnce;  // never fewer than the kernels' least
    if (next != nullptr) {
      ReadAhead(next + columns_[i], columns_[i + count - 1] + width - columns_[i]);
      ReadAhead(result + i + kResultAhead, count);
    }
    average(source, columns_ + i, count, width, result + i);
  }
}

void FastRowScaler::Build(const std::uint32_t* source, const std::uint32_t* next,
                          std::int32_t first, std::int32_t count, std::uint32_t* result) const {
  if (isSameWidth_) return kernels_->recolour(recolouring_, source + first, count, result);
  const std::int32_t width = task_.blocks.width;
  if (width == 1) {
    kernels_->pick(source, columns_, filled_, result);
  } else {
    Average(source, next, result);
  }
  for (std::int32_t i = filled_; i < count; ++i) {
    result[i] = MeanWord(source + columns_[i], width);
  }
  kernels_->recolour(recolouring_, result, count, result);
}

void FastRowScaler::Scale(const std::uint32_t* source, std::uint32_t* result,
                          const std::uint32_t* next) {
  if (!IsVectorised()) return ScaleRowAsDefined(task_, source, result);
  const bool isOnePiece = task_.resultWidth <= kPiece;
  const bool isBuilt = isOnePiece && built_ == source;
  for (std::int32_t first = 0; first < task_.resultWidth; first += kPiece) {
    const std::int32_t left = task_.resultWidth - first;
    const std::int32_t count = left < kPiece ? left : kPiece;
    if (!isOnePiece && !isSameWidth_) FillColumns(first, count);
    if (!isBuilt) Build(source, next, first, count, repeats_ ? row_ : result + first);
    if (streams_) {
      kernels_->stream(row_, count, result + first);
    } else if (repeats_) {
      std::memcpy(result + first, row_, static_cast<std::size_t>(count) * sizeof *row_);
    }
  }
  if (repeats_) built_ = source;
}

void FastRowScaler::Settle() {
  built_ = nullptr;
  if (IsVectorised() && streams_) kernels_->settle();
}
