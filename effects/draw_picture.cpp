#include "effects/draw_picture.h"

#include <cmath>

#include "effects/draw_blend.h"
#include "effects/draw_inner.h"
#include "pixels/picture_editor.h"
#include "plugin/arithmetic.h"
#include "plugin/exceptions.h"
#include "plugin/held_object.h"
#include "plugin/yield.h"

namespace {

// Where the picture lies, as whole pixels and fractions, and what its four neighbours weigh.
struct Position {
  std::int32_t fx, fy;
  double upperLeft, upperRight, lowerRight, lowerLeft;

  Position(double x, double y, double alpha)
      : fx(TruncateToInt32(std::floor(x))), fy(TruncateToInt32(std::floor(y))) {
    const double ax = std::fabs(x - fx);
    const double ay = std::fabs(y - fy);
    upperLeft = (ax * ay) * alpha;
    upperRight = ((1.0 - ax) * ay) * alpha;
    lowerRight = ((1.0 - ax) * (1.0 - ay)) * alpha;
    lowerLeft = ((1.0 - ay) * ax) * alpha;
  }
};

const std::uint32_t* PixelsOf(const PictureEditor& editor, std::int32_t row) {
  return reinterpret_cast<const std::uint32_t*>(editor.RowAddress(row));
}

// One row of the source with its mask's row.
struct SourceRow {
  const std::uint32_t* pixels = nullptr;  // null: outside the source
  const std::uint32_t* mask = nullptr;    // null: no mask
};

// So many inner pixels are drawn one by one before tables for them would be filled.
constexpr std::int64_t kFewPixels = 256;

class Drawing {
 public:
  // mask may be null.
  Drawing(PictureEditor& dest, const PictureEditor& source, const PictureEditor* mask,
          const Position& position)
      : dest_(dest), source_(source), mask_(mask), position_(position), inner_(dest, source, mask) {
    const std::int64_t fx = position.fx;
    begin_ = Within(fx);
    innerBegin_ = Within(fx + 1);
    innerEnd_ = Within(fx + (inner_.Columns() > 1 ? inner_.Columns() : 1));
    end_ = Within(fx + 1 + (source.width > 0 ? source.width : 0));
    const std::int64_t firstRow = position.fy >= 0 ? position.fy + std::int64_t{1} : 0;
    const std::int64_t belowSource = position.fy + std::int64_t{source.height};
    const std::int64_t rows = (belowSource < dest.height ? belowSource : dest.height) - firstRow;
    worthwhile_ = rows > 0 && rows * (innerEnd_ - innerBegin_) >= kFewPixels;
    if (worthwhile_) {
      inner_.Prepare(
          {position.upperLeft, position.upperRight, position.lowerRight, position.lowerLeft});
    }
  }

  void DrawRow(std::int32_t y) {
    const std::int32_t below = WrapSubtract(y, position_.fy);
    const SourceRow upper = RowOf(WrapSubtract(below, 1));
    const SourceRow lower = RowOf(below);
    dest_.GoToRow(y);
    if (!inner_.Possible()) return DrawPixels(upper, lower, 0, dest_.width);
    if (upper.pixels == nullptr && lower.pixels == nullptr) return MakeOpaque(0, dest_.width);
    const bool inner = worthwhile_ && upper.pixels != nullptr && lower.pixels != nullptr &&
                       Apart(upper) && Apart(lower);
    MakeOpaque(0, begin_);
    if (inner) {
      DrawPixels(upper, lower, begin_, innerBegin_);
      DrawInner(upper, lower);
      DrawPixels(upper, lower, innerEnd_, end_);
    } else {
      DrawPixels(upper, lower, begin_, end_);
    }
    MakeOpaque(end_, dest_.width);
  }

 private:
  // The columns from `from` on and before `to`, one by one. Samples outside the source leave their
  // shares to the old colour.
  void DrawPixels(const SourceRow& upper, const SourceRow& lower, std::int32_t from,
                  std::int32_t to) {
    std::uint32_t* pixel = dest_.cursor + from;
    for (std::int32_t x = from; x < to; ++x) {
      const std::int32_t right = WrapSubtract(x, position_.fx);
      const std::int32_t left = WrapSubtract(right, 1);
      Blend blend;
      AddSample(blend, upper, left, position_.upperLeft);
      AddSample(blend, upper, right, position_.upperRight);
      AddSample(blend, lower, right, position_.lowerRight);
      AddSample(blend, lower, left, position_.lowerLeft);
      blend.AddRest(Decode(dest_.Layout(), *pixel));
      *pixel++ = EncodeOpaque(dest_.Layout(), blend.Clamped());
    }
  }

  // Columns that no sample lies at: all of the old colour is left.
  void MakeOpaque(std::int32_t from, std::int32_t to) {
    if (from < to) inner_.MakeOpaque(dest_.cursor + from, static_cast<std::size_t>(to - from));
  }

  // Columns with four samples.
  void DrawInner(const SourceRow& upper, const SourceRow& lower) {
    const auto left = static_cast<std::size_t>(innerBegin_ - position_.fx - 1);
    const auto count = static_cast<std::size_t>(innerEnd_ - innerBegin_);
    Neighbours mask;
    if (mask_ != nullptr) mask = {upper.mask + left, lower.mask + left};
    inner_.Draw(dest_.cursor + innerBegin_, {upper.pixels + left, lower.pixels + left}, mask,
                count);
  }

  // A row that is read while it is written is drawn pixel by pixel.
  bool Apart(const SourceRow& row) const {
    return Apart(row.pixels, source_.width) && (mask_ == nullptr || Apart(row.mask, mask_->width));
  }
  bool Apart(const std::uint32_t* row, std::int32_t width) const {
    const auto read = reinterpret_cast<std::uintptr_t>(row);
    const auto written = reinterpret_cast<std::uintptr_t>(dest_.cursor);
    return read >= written + 4 * static_cast<std::size_t>(dest_.width) ||
           written >= read + 4 * static_cast<std::size_t>(width);
  }

  // The column, or the end of dest that it lies beyond.
  std::int32_t Within(std::int64_t column) const {
    if (column < 0) return 0;
    return column < dest_.width ? static_cast<std::int32_t>(column) : dest_.width;
  }

  SourceRow RowOf(std::int32_t row) const {
    SourceRow found;
    if (row < 0 || row >= source_.height) return found;
    found.pixels = PixelsOf(source_, row);
    if (mask_ != nullptr) found.mask = PixelsOf(*mask_, row);
    return found;
  }

  // A sample outside the source contributes nothing and leaves its share to the old colour.
  void AddSample(Blend& blend, const SourceRow& row, std::int32_t column, double weight) const {
    if (row.pixels == nullptr || column < 0 || column >= source_.width) return;
    blend.AddSample(Decode(source_.Layout(), row.pixels[column]), Masked(row, column, weight));
  }

  double Masked(const SourceRow& row, std::int32_t column, double weight) const {
    if (row.mask == nullptr) return weight;
    const std::int32_t within = column < mask_->width ? column : mask_->width - 1;
    return MaskedWeight(Decode(mask_->Layout(), row.mask[within]).r, weight);
  }

  PictureEditor& dest_;
  const PictureEditor& source_;
  const PictureEditor* mask_;
  const Position& position_;
  InnerPixels inner_;
  // Columns of dest: with samples, and with all four of them.
  std::int32_t begin_, innerBegin_, innerEnd_, end_;
  bool worthwhile_;
};

bool RaiseNil(const char* message) {
  RaiseException("NilObjectException", message, 0, 0);
  return false;
}

}  // namespace

bool DrawPictureF(REALpictureStruct* dest, REALpictureStruct* pic, double x, double y, double alpha,
                  int yieldPeriod) {
  // Deliberate: the picture that is drawn into is called the source here.
  if (dest == nullptr) return RaiseNil("source is nil");
  if (pic == nullptr) return RaiseNil("picture is nil");

  // Released from the last to the first.
  const HeldObject mask(REALGetPictureMask(pic, 0));
  PictureReader maskEditor;
  PictureReader destEditor;
  PictureReader sourceEditor;
  auto* maskPicture = static_cast<REALpicture>(mask.Get());
  if (maskPicture != nullptr && maskEditor.GetPictureEditor(maskPicture, 1, 1) == 0) return false;
  if (destEditor.GetPictureEditor(dest, 1, 1) == 0) return false;
  if (sourceEditor.GetPictureEditor(pic, 1, 0) == 0) return false;

  YieldData yields;
  yields.Start(yieldPeriod);
  yields.YieldPoint();
  const Position position(x, y, alpha);
  Drawing drawing(destEditor, sourceEditor, maskPicture != nullptr ? &maskEditor : nullptr,
                  position);
  for (std::int32_t row = 0; row < destEditor.height; ++row) {
    drawing.DrawRow(row);
    yields.YieldPoint();
  }
  yields.YieldPoint();
  return true;
}
