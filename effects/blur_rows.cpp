#include "effects/blur_rows.h"

#if defined(__i386__) || defined(__x86_64__)
#include "effects/x86/blur_variants.h"
#define VARNELL_X86 1
#endif

namespace {

// Sums of the three channels, with `times` below 0 for what leaves.
struct Window {
  std::uint32_t r = 0, g = 0, b = 0;

  void Add(Rgb colour, std::int32_t times) {
    r += colour.r * static_cast<std::uint32_t>(times);
    g += colour.g * static_cast<std::uint32_t>(times);
    b += colour.b * static_cast<std::uint32_t>(times);
  }
};

Window WindowAt(const ColumnSums& sums, std::int32_t x) {
  return {sums.first[x], sums.second[x], sums.third[x]};
}

void Put(const ColumnSums& sums, std::int32_t x, const Window& window) {
  sums.first[x] = window.r;
  sums.second[x] = window.g;
  sums.third[x] = window.b;
}

std::uint32_t Mean(const BlurRule& rule, const Window& window) {
  const auto quotient = [&](std::uint32_t sum) {
    return static_cast<std::uint32_t>(rule.quotients[sum]);
  };
  return EncodeOpaque(rule.result, {quotient(window.r), quotient(window.g), quotient(window.b)});
}

void Add(const BlurRule& rule, const ColumnSums& sums, const std::uint32_t* row, std::int32_t width,
         std::int32_t times) {
  for (std::int32_t x = 0; x < width; ++x) {
    Window window = WindowAt(sums, x);
    window.Add(Decode(rule.source, row[x]), times);
    Put(sums, x, window);
  }
}

void Down(const BlurRule& rule, const ColumnSums& sums, const std::uint32_t* leaving,
          const std::uint32_t* entering, std::uint32_t* dst, std::int32_t width) {
  WithLayout(rule.source, [&](auto layout) {
    for (std::int32_t x = 0; x < width; ++x) {
      Window window = WindowAt(sums, x);
      dst[x] = Mean(rule, window);
      window.Add(Decode(layout.value, leaving[x]), -1);
      window.Add(Decode(layout.value, entering[x]), 1);
      Put(sums, x, window);
    }
  });
}

void Along(const BlurRule& rule, const std::uint32_t* src, std::uint32_t* dst, std::int32_t width) {
  Window window;
  ForStartOfWindow(rule.radius, width, [&](std::int32_t x, std::int32_t times) {
    window.Add(Decode(rule.source, src[x]), times);
  });
  for (std::int32_t x = 0; x < width; ++x) {
    dst[x] = Mean(rule, window);
    window.Add(Decode(rule.source, src[ClampIndex(std::int64_t{x} + rule.radius + 1, width)]), 1);
    window.Add(Decode(rule.source, src[ClampIndex(std::int64_t{x} - rule.radius, width)]), -1);
  }
}

constexpr BlurRows kScalarRows = {Add, Down, Along, true};

}  // namespace

const BlurRows& BlurRowsFor(VectorLevel level, const BlurRule& rule) {
  const bool scalar = rule.source == PixelLayout::kNone || rule.radius > kLargestBlurRadius;
  if (scalar || level == VectorLevel::kScalar) return kScalarRows;
#if defined(VARNELL_X86)
  const bool narrow = rule.Box() <= kLargestNarrowBox;
  if (level == VectorLevel::kAvx2) return narrow ? kNarrowBlurAvx2 : kWideBlurAvx2;
  return narrow ? kNarrowBlurSse2 : kWideBlurSse2;
#else
  return kScalarRows;
#endif
}

BlurRule BlurRuleOf(PixelLayout source, PixelLayout result, std::int32_t radius,
                    const std::int32_t* quotients) {
  if (radius > kLargestBlurRadius) return {source, result, radius, {}, quotients};
  const std::int32_t box = 2 * radius + 1;
  const BoxDivision division = box <= kLargestNarrowBox ? NarrowDivision(box) : WideDivision(box);
  return {source, result, radius, division, quotients};
}
