// The method ScalingZVQ: chooses the kernel.
#include "plugin/methods.h"
#include "resample/engine.h"
#include "resample/kernels.h"

REALpictureStruct* ScalingZVQ(REALpictureStruct* self, std::int32_t mode, std::int32_t width,
                              std::int32_t height, std::int32_t yieldPeriod) {
  if (width < 1 || self == nullptr || height < 1) return nullptr;
  switch (mode) {
    case 1:
      return Resample<TriangleFilter>(self, width, height, yieldPeriod);
    case 2:
      return Resample<BoxFilter>(self, width, height, yieldPeriod);
    case 3:
      return Resample<Lanczos3Filter>(self, width, height, yieldPeriod);
    case 4:
      return Resample<Lanczos8Filter>(self, width, height, yieldPeriod);
    case 5:
      return Resample<MitchellFilter>(self, width, height, yieldPeriod);
    case 6:
      return Resample<BicubicFilter>(self, width, height, yieldPeriod);
    case 7:
      return Resample<Cubic6Filter>(self, width, height, yieldPeriod);
    default:
      return nullptr;
  }
}
