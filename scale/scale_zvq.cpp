// The method ScaleZVQ: chooses the scaler.
#include "plugin/methods.h"
#include "plugin/wrappers.h"
#include "plugin/yield.h"
#include "scale/fast_scaler.h"
#include "scale/smooth_enlarger.h"

REALpictureStruct* ScaleZVQ(REALpictureStruct* self, std::int32_t width, std::int32_t height,
                            REALbooleanSlot AntiAlias, std::int32_t YieldTicks) {
  yield.Start(YieldTicks);
  const std::int32_t sourceWidth = self == nullptr ? 0 : REALGetPropValueInteger(self, "Width");
  const std::int32_t sourceHeight = self == nullptr ? 0 : REALGetPropValueInteger(self, "Height");
  if (sourceWidth == width && sourceHeight == height) {
    if (self != nullptr) REALLockObject(self);
    return self;
  }
  if (IsTrue(AntiAlias) && sourceWidth < width && sourceHeight < height) {
    if (REALpicture result = ScalePictureNiceBigger(self, width, height)) return result;
  }
  return ScalePictureFast(self, width, height);
}
