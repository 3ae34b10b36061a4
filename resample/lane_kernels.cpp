#include "resample/lane_kernels.h"

const LaneKernels* LaneKernelsFor([[maybe_unused]] VectorLevel level) {
#if defined(__i386__) || defined(__x86_64__)
  if (level >= VectorLevel::kAvx2) return &kLaneKernelsAvx2;
  if (level >= VectorLevel::kSse2) return &kLaneKernelsSse2;
#endif
  return nullptr;
}
