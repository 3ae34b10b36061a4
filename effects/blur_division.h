// Division of the blur's sums by the size of its box, as a multiplication and a shift.
#pragma once

#include <cstdint>

// Boxes up to this many pixels have sums, of at most 255 each, that fit 16 bits: 255 · 257 = 65535.
inline constexpr std::int32_t kLargestNarrowBox = 257;

// floor(sum / box) == (sum + bias) · multiplier >> shift for every sum from 0 to 255 · box.
//
// Let m = 2^shift, and q = floor(sum / box). A multiplier rounded up, (m + e) / box, with bias 0
// gives (sum + sum · e / m) / box, which is not below q, and below (sum + 1) / box <= q + 1 if sum
// · e < m. One rounded down, (m - e) / box, with bias 1 gives (sum + 1 - (sum + 1) · e / m) / box,
// which is below q + 1 likewise, and not below sum / box >= q if (sum + 1) · e <= m.
struct BoxDivision {
  std::uint32_t multiplier;
  std::uint32_t bias;
  std::int32_t shift;
};

// The number of bits of box, which is odd and thus no power of two: 2^(bits - 1) < box < 2^bits.
constexpr std::int32_t BitsOf(std::int32_t box) {
  std::int32_t bits = 0;
  for (; box != 0; box >>= 1) ++bits;
  return bits;
}

// For odd boxes from 3 to kLargestNarrowBox. Multiplier and biased sums fit 16 bits; 16 <= shift.
//
// The errors of rounding up and down add up to the box, so the smaller one, e, is below box / 2,
// and (sum + 1) · e < 127.5 · box² < 2^15 · box < 2^shift, as 127.5 · 257 < 2^15. The largest box
// is rounded up: its sums go without a bias, which would not fit.
constexpr BoxDivision NarrowDivision(std::int32_t box) {
  const auto divisor = static_cast<std::uint32_t>(box);
  const std::int32_t shift = 15 + BitsOf(box);
  // NOLINTNEXTLINE(clang-analyzer-core.DivideZero): boxes are 3 at least
  const std::uint32_t below = (1U << shift) / divisor;
  const std::uint32_t rest = (1U << shift) % divisor;
  if (divisor - rest <= rest) return {below + 1, 0, shift};
  return {below, 1, shift};
}

// For odd boxes from 3 to 2^21 - 1. The multiplier fits 32 bits; 32 <= shift < 64. Rounded up, with
// an error below the box: sum · e < 255 · box² < 2^(8 + 2 · bits) <= 2^shift, as bits <= 21.
constexpr BoxDivision WideDivision(std::int32_t box) {
  const std::int32_t shift = 31 + BitsOf(box);
  const auto divisor = static_cast<std::uint64_t>(box);
  return {static_cast<std::uint32_t>((std::uint64_t{1} << shift) / divisor + 1), 0, shift};
}
