#include "effects/draw_picture.h"

#include <cmath>

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

// One row of the source with its mask's row.
struct SourceRow {
  const std::uint32_t* pixels = nullptr;  // null: outside the source
  const std::uint32_t* mask = nullptr;    // null: no mask
};

const std::uint32_t* PixelsOf(const PictureEditor& editor, std::int32_t row) {
  return reinterpret_cast<const std::uint32_t*>(editor.RowAddress(row));
}

// The pixel that is being made: channel sums that wrap, and what is left for its old colour.
class Blend {
 public:
  void Add(Rgb colour, double weight) {
    r_ = WrapAdd(r_, TruncateToInt32(colour.r * weight));
    g_ = WrapAdd(g_, TruncateToInt32(colour.g * weight));
    b_ = WrapAdd(b_, TruncateToInt32(colour.b * weight));
  }
  void AddSample(Rgb colour, double weight) {
    Add(colour, weight);
    rest_ -= weight;
  }
  double Rest() const { return rest_; }
  Rgb Clamped() const { return {ClampToByte(r_), ClampToByte(g_), ClampToByte(b_)}; }

 private:
  std::int32_t r_ = 0, g_ = 0, b_ = 0;
  double rest_ = 1.0;
};

class Drawing {
 public:
  // mask may be null.
  Drawing(PictureEditor& dest, const PictureEditor& source, const PictureEditor* mask,
          const Position& position)
      : dest_(dest), source_(source), mask_(mask), position_(position) {}

  void DrawRow(std::int32_t y) {
    const std::int32_t below = WrapSubtract(y, position_.fy);
    const SourceRow upper = RowOf(WrapSubtract(below, 1));
    const SourceRow lower = RowOf(below);
    dest_.GoToRow(y);
    for (std::int32_t x = 0; x < dest_.width; ++x) {
      const std::int32_t right = WrapSubtract(x, position_.fx);
      const std::int32_t left = WrapSubtract(right, 1);
      Blend blend;
      AddSample(blend, upper, left, position_.upperLeft);
      AddSample(blend, upper, right, position_.upperRight);
      AddSample(blend, lower, right, position_.lowerRight);
      AddSample(blend, lower, left, position_.lowerLeft);
      if (blend.Rest() > 0.0) blend.Add(Decode(dest_.Layout(), *dest_.cursor), blend.Rest());
      *dest_.cursor++ = EncodeOpaque(dest_.Layout(), blend.Clamped());
    }
  }

 private:
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
    const Rgb mask = Decode(mask_->Layout(), row.mask[within]);
    return ((255.0 - mask.r) * weight) / 255.0;
  }

  PictureEditor& dest_;
  const PictureEditor& source_;
  const PictureEditor* mask_;
  const Position& position_;
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
