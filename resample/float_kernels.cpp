#include "resample/float_kernels.h"

const FloatKernels* FloatKernelsFor([[maybe_unused]] VectorLevel level) {
#if defined(__i386__) || defined(__x86_64__)
  if (level >= VectorLevel::kAvx2) return &kFloatKernelsAvx2;
#endif
  return nullptr;
}
