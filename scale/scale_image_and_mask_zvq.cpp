// The method ScaleImageAndMaskZVQ: turns a picture with an alpha channel into one with a mask, then
// scales both.
#include "pixels/picture_copy.h"
#include "plugin/held_object.h"
#include "plugin/methods.h"
#include "plugin/yield.h"
#include "scale/scale_image_and_mask.h"

namespace {

// Gives `target` a copy of the alpha channel of `source` as its mask, where the host can make one.
void CopyAlphaAsMask(REALpicture source, REALpicture target) {
  REALroutine copyMask = REALLoadObjectMethod(source, kCopyMaskDeclaration);
  if (copyMask == nullptr) return;
  REALpicture mask = reinterpret_cast<CopyMaskMethod*>(copyMask)(source);
  if (mask == nullptr) return;
  const HeldObject heldMask(mask);
  if (REALroutine assignMask = REALLoadObjectMethod(target, kAssignMaskDeclaration)) {
    reinterpret_cast<AssignMaskMethod*>(assignMask)(target, mask);
  }
}

// An opaque picture of width × height with a mask, showing the top left of `source`; one reference
// for the caller, or null. Deliberate: converts without scaling, whatever the size of `source`.
REALpicture NewMaskedPicture(REALpicture source, std::int32_t width, std::int32_t height) {
  REALpicture converted = REALNewPicture(width, height, 32);
  if (converted == nullptr) return nullptr;
  HeldObject held(converted);
  GraphicsDrawPicture(converted, source, 0, 0, width, height, 0, 0, width, height);
  CopyAlphaAsMask(source, converted);
  held.Keep();
  return converted;
}

}  // namespace

REALpictureStruct* ScaleImageAndMaskZVQ(REALpictureStruct* self, std::int32_t width,
                                        std::int32_t height, REALbooleanSlot AntiAlias,
                                        std::int32_t YieldTicks) {
  if (self == nullptr) return nullptr;
  yield.Start(YieldTicks);
  const std::int32_t sourceWidth = REALGetPropValueInteger(self, "Width");
  const std::int32_t sourceHeight = REALGetPropValueInteger(self, "Height");
  if (sourceWidth == width && sourceHeight == height) {
    REALLockObject(self);
    return self;
  }
  const signed char antiAlias = IsTrue(AntiAlias) ? 1 : 0;
  if (!REALGetPropValueBoolean(self, "HasAlphaChannel")) {
    return ScaleImageAndMaskInternal(self, width, height, antiAlias, sourceWidth, sourceHeight);
  }
  REALpicture converted = NewMaskedPicture(self, width, height);
  if (converted == nullptr) return nullptr;
  const HeldObject held(converted);
  return ScaleImageAndMaskInternal(converted, width, height, antiAlias, sourceWidth, sourceHeight);
}
