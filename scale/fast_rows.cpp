#include "scale/fast_rows.h"

#if defined(__i386__) || defined(__x86_64__)
#include "scale/x86/fast_rows_x86.h"
#endif

Division DivisionBy(std::int32_t divisor) {
  std::int32_t shift = 0;
  while ((2 << shift) <= divisor) ++shift;  // 2^shift <= divisor < 2^(shift + 1)
  if ((1 << shift) == divisor) --shift;     // 2^16 would not fit
  // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): divisors are 2 at least
  const std::uint32_t power = 65536U << shift;
  const auto by = static_cast<std::uint32_t>(divisor);
  return {static_cast<std::uint16_t>((power + by - 1) / by), shift};
}

const FastRows* FastRowsFor(VectorLevel level) {
#if defined(__i386__) || defined(__x86_64__)
  switch (level) {
    case VectorLevel::kScalar:
      return nullptr;
    case VectorLevel::kSse2:
      return &kFastRowsSse2;
    case VectorLevel::kSse41:
      return &kFastRowsSse41;
    case VectorLevel::kAvx2:
      return &kFastRowsAvx2;
  }
#endif
  static_cast<void>(level);
  return nullptr;
}
