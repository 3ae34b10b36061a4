// The method BlurZVQ: makes the result picture and runs both passes of the blur.
#include "effects/box_blur.h"
#include "plugin/arithmetic.h"
#include "plugin/held_object.h"
#include "plugin/methods.h"
#include "plugin/yield.h"

namespace {

// False, with nothing written, when memory is short. The working memory ends with the call.
bool Blur(const PictureEditor& source, PictureEditor& result, std::int32_t radius,
          YieldData& yields) {
  BoxBlur blur(source, result, radius);
  if (!blur.Complete()) return false;
  yields.YieldPoint();
  blur.Start();
  // Together, the passes still have a yield point for each row of either.
  const bool together = blur.RowsLieApart();
  for (std::int32_t y = 0; y < source.height; ++y) {
    together ? blur.BlurColumnsAndRow(y) : blur.BlurColumnsInto(y);
    yields.YieldPoint();
  }
  for (std::int32_t y = 0; y < source.height; ++y) {
    if (!together) blur.BlurRow(y);
    yields.YieldPoint();
  }
  return true;
}

}  // namespace

REALpictureStruct* BlurZVQ(REALpictureStruct* self, double Radius, std::int32_t yieldPeriod) {
  const std::int32_t radius = TruncateToInt32(Radius);
  if (radius < 1) {
    if (self != nullptr) REALLockObject(self);
    return self;
  }
  PictureReader source;
  if (source.GetPictureEditor(self, 1, 0) == 0) return nullptr;
  PictureWriter result;
  if (!result.NewOpaqueWriter(source.width, source.height)) return nullptr;
  YieldData yields;
  yields.Start(yieldPeriod);
  // Deliberate: without the memory to blur, the new picture is the result as the host made it.
  Blur(source, result, radius, yields);
  yields.YieldPoint();
  return result.RenderPictureWriter();
}
