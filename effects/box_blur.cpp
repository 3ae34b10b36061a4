#include "effects/box_blur.h"

#include <cstring>

namespace {

constexpr std::uint64_t kSpare = 20;  // bytes behind each array

std::uint64_t ColumnBytes(const PictureEditor& editor) {
  return static_cast<std::uint64_t>(editor.width) * 4 + kSpare;
}

}  // namespace

BoxBlur::BoxBlur(const PictureEditor& source, PictureEditor& result, std::int32_t radius)
    : source_(source),
      result_(result),
      radius_(radius),
      box_(std::int64_t{radius} * 2 + 1),
      quotients_(static_cast<std::uint64_t>(box_) * 1024 + 1024),
      first_(ColumnBytes(source)),
      second_(ColumnBytes(source)),
      third_(ColumnBytes(source)),
      row_(static_cast<std::uint64_t>(result.rowBytes) + kSpare),
      sums_{first_.Data(), second_.Data(), third_.Data()},
      rule_(BlurRuleOf(source.Layout(), result.Layout(), radius, quotients_.Data())),
      rows_(BlurRowsFor(ChosenVectorLevel(), rule_)) {}

bool BoxBlur::Complete() const { return quotients_ && first_ && second_ && third_ && row_; }

const std::uint32_t* BoxBlur::SourceRow(std::int64_t y) const {
  return reinterpret_cast<const std::uint32_t*>(source_.RowAddress(ClampIndex(y, source_.height)));
}

std::uint32_t* BoxBlur::ResultRow(std::int32_t y) const {
  return reinterpret_cast<std::uint32_t*>(result_.RowAddress(y));
}

void BoxBlur::Start() {
  if (rows_.readsQuotients) {
    for (std::int64_t sum = 0; sum < box_ * 256; ++sum) {
      quotients_[sum] = static_cast<std::int32_t>(sum / box_);
    }
  }
  ForStartOfWindow(radius_, source_.height, [this](std::int32_t row, std::int32_t times) {
    rows_.add(rule_, sums_, SourceRow(row), source_.width, times);
  });
}

bool BoxBlur::RowsLieApart() const {
  for (std::int32_t y = 1; y < source_.height; ++y) {
    const auto before = reinterpret_cast<std::uintptr_t>(ResultRow(y - 1));
    const auto row = reinterpret_cast<std::uintptr_t>(ResultRow(y));
    if (row < before || row - before < static_cast<std::uintptr_t>(source_.width) * 4) return false;
  }
  return true;
}

void BoxBlur::BlurColumns(std::int32_t y, std::uint32_t* dst) {
  const std::uint32_t* leaving = SourceRow(std::int64_t{y} - radius_);
  const std::uint32_t* entering = SourceRow(std::int64_t{y} + radius_ + 1);
  rows_.down(rule_, sums_, leaving, entering, dst, source_.width);
}

void BoxBlur::BlurCopiedRow(std::int32_t y) {
  rows_.along(rule_, row_.Data(), ResultRow(y), source_.width);
}

void BoxBlur::BlurColumnsInto(std::int32_t y) { BlurColumns(y, ResultRow(y)); }

void BoxBlur::BlurRow(std::int32_t y) {
  std::memcpy(row_.Data(), ResultRow(y), static_cast<std::size_t>(source_.width) * 4);
  BlurCopiedRow(y);
}

void BoxBlur::BlurColumnsAndRow(std::int32_t y) {
  BlurColumns(y, row_.Data());
  BlurCopiedRow(y);
}
