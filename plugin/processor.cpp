#include "plugin/processor.h"

#if defined(__i386__) || defined(__x86_64__)
#include <cpuid.h>
#define VARNELL_X86 1
#endif

namespace {

#if defined(VARNELL_X86)
// The registers whose contents the system keeps when it switches between threads.
unsigned KeptRegisters() {
  unsigned low = 0;
  unsigned high = 0;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return low;
}

VectorLevel Ask() {
  constexpr unsigned kWideRegisters = 6;  // SSE's and AVX's
  unsigned a = 0, b = 0, c = 0, d = 0;
  if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (d & bit_SSE2) == 0) return VectorLevel::kScalar;
  if ((c & bit_SSSE3) == 0 || (c & bit_SSE4_1) == 0) return VectorLevel::kSse2;
  const bool kept = (c & bit_OSXSAVE) != 0 && (c & bit_AVX) != 0 &&
                    (KeptRegisters() & kWideRegisters) == kWideRegisters;
  const bool floats = (c & bit_FMA) != 0 && (c & bit_F16C) != 0;
  if (!kept || !floats || __get_cpuid_count(7, 0, &a, &b, &c, &d) == 0) return VectorLevel::kSse41;
  return (b & bit_AVX2) != 0 ? VectorLevel::kAvx2 : VectorLevel::kSse41;
}
#else
VectorLevel Ask() { return VectorLevel::kScalar; }
#endif

}  // namespace

VectorLevel BestVectorLevel() {
  static bool asked = false;
  static VectorLevel best = VectorLevel::kScalar;
  if (!asked) {
    best = Ask();
    asked = true;
  }
  return best;
}

VectorLevel ChosenVectorLevel() {
#if defined(VARNELL_FIXED_LEVEL)
  constexpr VectorLevel kFixed = VectorLevel::VARNELL_FIXED_LEVEL;
  return kFixed < BestVectorLevel() ? kFixed : BestVectorLevel();
#else
  return BestVectorLevel();
#endif
}
