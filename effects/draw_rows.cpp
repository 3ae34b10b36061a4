#include "effects/draw_rows.h"

#include "effects/draw_blend.h"
#include "effects/x86/draw_rows_x86.h"

namespace {

std::uint32_t PixelAt(const Neighbours& rows, int corner, std::size_t i) {
  const std::uint32_t* row =
      corner == kUpperLeft || corner == kUpperRight ? rows.upper : rows.lower;
  return row[corner == kUpperRight || corner == kLowerRight ? i + 1 : i];
}

void BlendFixed(std::uint32_t* dest, const FixedBlend& blend, const Neighbours& source,
                std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    Blend made;
    for (int corner = 0; corner < kCorners; ++corner) {
      made.Add(Decode(blend.source, PixelAt(source, corner, i)), blend.corners[corner].weight);
    }
    made.Add(Decode(blend.dest, dest[i]), blend.rest.weight);
    dest[i] = EncodeOpaque(blend.dest, made.Clamped());
  }
}

void BlendWeighted(std::uint32_t* dest, const WeightedBlend& blend, const Neighbours& source,
                   const Neighbours& mask, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    Blend made;
    for (int corner = 0; corner < kCorners; ++corner) {
      const std::uint32_t red = blend.masked ? Decode(blend.mask, PixelAt(mask, corner, i)).r : 0;
      made.AddSample(Decode(blend.source, PixelAt(source, corner, i)), blend.weights[corner][red]);
    }
    made.AddRest(Decode(blend.dest, dest[i]));
    dest[i] = EncodeOpaque(blend.dest, made.Clamped());
  }
}

void MakeOpaque(std::uint32_t* dest, PixelLayout layout, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) dest[i] = EncodeOpaque(layout, Decode(layout, dest[i]));
}

std::size_t FindMaskRun(const Neighbours& mask, PixelLayout layout, std::size_t count,
                        MaskRun& found) {
  std::size_t end = 0;
  while (end < count) {
    const std::size_t group = count - end < kMaskGroup ? count - end : kMaskGroup;
    const MaskRun sort = MaskGroup(mask.From(end), layout, group);
    if (end == 0) found = sort;
    if (sort != found) break;
    end += group;
  }
  return end;
}

constexpr DrawRows kScalarRows = {BlendFixed, BlendWeighted, MakeOpaque, FindMaskRun};

}  // namespace

MaskRun MaskGroup(const Neighbours& mask, PixelLayout layout, std::size_t count) {
  const std::uint32_t first = Decode(layout, mask.upper[0]).r;
  if (first != 0 && first != 255) return MaskRun::kMixed;
  for (std::size_t i = 0; i <= count; ++i) {
    if (Decode(layout, mask.upper[i]).r != first) return MaskRun::kMixed;
    if (Decode(layout, mask.lower[i]).r != first) return MaskRun::kMixed;
  }
  return first == 0 ? MaskRun::kBlack : MaskRun::kWhite;
}

const DrawRows& DrawRowsFor(VectorLevel level) {
#if defined(__i386__) || defined(__x86_64__)
  if (level >= VectorLevel::kAvx2) return kDrawRowsAvx2;
  if (level >= VectorLevel::kSse2) return kDrawRowsSse2;
#else
  (void)level;
#endif
  return kScalarRows;
}
