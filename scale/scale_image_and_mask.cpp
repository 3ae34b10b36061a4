#include "scale/scale_image_and_mask.h"

#include "pixels/picture_copy.h"
#include "plugin/held_object.h"
#include "scale/fast_scaler.h"
#include "scale/smooth_enlarger.h"

namespace {

using Scaler = REALpictureStruct*(REALpictureStruct* source, int width, int height);

REALpicture AsPicture(const HeldObject& held) { return static_cast<REALpicture>(held.Get()); }

// Puts the mask of pic, scaled, on result. The order of the host calls is fixed.
void ScaleMask(REALpicture pic, REALpicture result, int width, int height, Scaler* scale) {
  const HeldObject mask(REALGetPictureMask(pic, 0));
  if (mask.Get() == nullptr) return;
  const HeldObject scaled(scale(AsPicture(mask), width, height));
  if (scaled.Get() == nullptr) return;
  const HeldObject target(REALGetPictureMask(result, 1));
  if (target.Get() == nullptr) return;
  GraphicsDrawPicture(AsPicture(target), AsPicture(scaled), 0, 0, width, height, 0, 0, width,
                      height);
}

REALpicture ScaleBoth(REALpicture pic, int width, int height, Scaler* scale) {
  HeldObject result(scale(pic, width, height));
  if (result.Get() == nullptr) return nullptr;
  ScaleMask(pic, AsPicture(result), width, height, scale);
  return static_cast<REALpicture>(result.Keep());
}

}  // namespace

REALpictureStruct* ScaleImageAndMaskInternal(REALpictureStruct* pic, int width, int height,
                                             signed char antiAlias, int sourceWidth,
                                             int sourceHeight) {
  if (antiAlias != 0 && sourceWidth < width && sourceHeight < height) {
    if (REALpicture result = ScaleBoth(pic, width, height, ScalePictureNiceBigger)) return result;
  }
  return ScaleBoth(pic, width, height, ScalePictureFast);
}
