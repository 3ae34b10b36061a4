#include "effects/draw_share.h"

#include "plugin/arithmetic.h"

namespace {

// False when there are too many patches.
bool Fit(FixedShare& share) {
  share.patches = 0;
  for (std::uint32_t c = 0; c < 256; ++c) {
    const auto exact = static_cast<std::uint32_t>(TruncateToInt32(c * share.weight));
    const std::uint32_t found = (c & share.whole) + (c * share.multiplier >> 16);
    if (found == exact) continue;
    if (share.patches == FixedShare::kMostPatches) return false;
    share.value[share.patches] = static_cast<std::uint16_t>(c);
    share.step[share.patches] = static_cast<std::uint16_t>(exact - found);
    ++share.patches;
  }
  return true;
}

}  // namespace

// Fractions with denominators up to 255 lie at least 1 / (255 * 254) apart, more than 1 / 65536. So
// of the multiples of 1 / 65536 next to a weight, at least one has no such fraction between itself
// and the weight: it has the weight's own integer products. Rounding of the products may spoil
// that, hence the check.
bool FindFixedShare(double weight, FixedShare& share) {
  if (!(weight >= 0.0 && weight < 2.0)) return false;
  const std::int32_t below = TruncateToInt32(weight * 65536.0);
  FixedShare best;
  bool fits = false;
  for (std::int32_t scaled = below; scaled <= below + 1 && scaled < 0x20000; ++scaled) {
    FixedShare tried;
    tried.weight = weight;
    tried.multiplier = static_cast<std::uint16_t>(scaled & 0xFFFF);
    tried.whole = scaled >= 0x10000 ? 0xFFFF : 0;
    if (!Fit(tried) || (fits && tried.patches >= best.patches)) continue;
    best = tried;
    fits = true;
  }
  if (fits) share = best;
  return fits;
}
