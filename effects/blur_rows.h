// The two passes of a box blur on single rows of pixels, in one variant for each level of vector
// instructions. Nothing here allocates, fails or touches a word outside the rows.
#pragma once

#include <cstdint>

#include "effects/blur_division.h"
#include "pixels/pixel_format.h"
#include "plugin/processor.h"

struct BlurRule {
  PixelLayout source;   // how pixels are read
  PixelLayout result;   // how they are written; not kNone
  std::int32_t radius;  // 1..1048574
  BoxDivision division;
  const std::int32_t* quotients;  // sum / box for each sum; only for variants that read it

  std::int32_t Box() const { return 2 * radius + 1; }
};

// Sums over a window of rows, for each column: three arrays of width + 5 words, all 0 at first.
// What lies in them is the variant's own affair; they may be handed to one variant only.
struct ColumnSums {
  std::uint32_t* first;
  std::uint32_t* second;
  std::uint32_t* third;
};

struct BlurRows {
  // Lets a row enter the window, as if it were `times` rows.
  void (*add)(const BlurRule& rule, const ColumnSums& sums, const std::uint32_t* row,
              std::int32_t width, std::int32_t times);
  // Writes the truncated means of the columns, opaque, to dst; then lets one row leave the window
  // and another one enter it.
  void (*down)(const BlurRule& rule, const ColumnSums& sums, const std::uint32_t* leaving,
               const std::uint32_t* entering, std::uint32_t* dst, std::int32_t width);
  // dst[x] becomes the truncated mean of src[x - radius] .. src[x + radius], opaque; indexes beyond
  // the border are the border's. src and dst must not overlap.
  // Deliberate: src is read by the source's layout, although `down` wrote it by the result's.
  void (*along)(const BlurRule& rule, const std::uint32_t* src, std::uint32_t* dst,
                std::int32_t width);
  bool readsQuotients;
};

// The variant for this rule. kSse41 has none of its own. A source of layout kNone and radii that
// the rule does not allow get the scalar one.
const BlurRows& BlurRowsFor(VectorLevel level, const BlurRule& rule);

inline constexpr std::int32_t kLargestBlurRadius = 1048574;

// `radius` may be any; beyond the largest one the rule serves nothing.
BlurRule BlurRuleOf(PixelLayout source, PixelLayout result, std::int32_t radius,
                    const std::int32_t* quotients);

inline std::int32_t ClampIndex(std::int64_t index, std::int32_t size) {
  if (index < 0) return 0;
  return index < size ? static_cast<std::int32_t>(index) : size - 1;
}

// How often each index occurs among clamp(-r) .. clamp(r) of `size` indexes: the first r + 1 times,
// the last as often as is left. Calls add(index, times).
template <typename Add>
void ForStartOfWindow(std::int32_t radius, std::int32_t size, Add&& add) {
  add(0, radius + 1);
  const std::int32_t whole = radius < size - 1 ? radius : size - 1;
  for (std::int32_t i = 1; i <= whole; ++i) add(i, 1);
  if (radius > whole) add(size - 1, radius - whole);
}
