// The drawing's rows for SSE2: fixed weights, opaque pixels and mask runs, four pixels in a vector.
#include <immintrin.h>

#include <cstring>

#include "effects/x86/draw_rows_x86.h"

namespace {

using Vector = __m128i;

constexpr std::size_t kPixels = 4;  // in one vector

inline Vector Load(const std::uint32_t* pixels) {
  return _mm_loadu_si128(reinterpret_cast<const Vector*>(pixels));
}
inline void Store(std::uint32_t* pixels, Vector words) {
  _mm_storeu_si128(reinterpret_cast<Vector*>(pixels), words);
}
inline Vector Words(std::uint32_t word) { return _mm_set1_epi32(static_cast<int>(word)); }
inline Vector Halves(std::uint32_t half) { return _mm_set1_epi16(static_cast<short>(half)); }

// One sample, or the old colour, and its share.
struct Part {
  const std::uint32_t* pixels;
  Vector multiplier, whole;
  bool plain;  // a multiplier is all
  int patches;
  Vector value[FixedShare::kMostPatches], step[FixedShare::kMostPatches];
};

void SetPart(Part& part, const std::uint32_t* pixels, const FixedShare& share) {
  part.pixels = pixels;
  part.multiplier = Halves(share.multiplier);
  part.whole = Halves(share.whole);
  part.patches = share.patches;
  part.plain = share.patches == 0 && share.whole == 0;
  for (int i = 0; i < share.patches; ++i) {
    part.value[i] = Halves(share.value[i]);
    part.step[i] = Halves(share.step[i]);
  }
}

inline Vector Products(const Part& part, Vector channels, bool plain) {
  Vector products = _mm_mulhi_epu16(channels, part.multiplier);
  if (plain) return products;
  products = _mm_add_epi16(products, _mm_and_si128(channels, part.whole));
  for (int i = 0; i < part.patches; ++i) {
    const Vector patched = _mm_cmpeq_epi16(channels, part.value[i]);
    products = _mm_add_epi16(products, _mm_and_si128(patched, part.step[i]));
  }
  return products;
}

// Sums of the channels of four pixels: bytes 0 and 2 of each, bytes 1 and 3. At most 5 * 2 * 255.
struct Sums {
  Vector even, odd;
};

inline void AddPart(Sums& sums, const Part& part, std::size_t pixel, bool plain) {
  const Vector words = Load(part.pixels + pixel);
  const Vector even = _mm_and_si128(words, Words(0x00FF00FF));
  const Vector odd = _mm_srli_epi16(words, 8);
  sums.even = _mm_add_epi16(sums.even, Products(part, even, plain));
  sums.odd = _mm_add_epi16(sums.odd, Products(part, odd, plain));
}

inline void Move(Sums& sums, const ChannelMoves& moves) {
  if (moves.down) sums = {sums.odd, _mm_srli_epi32(sums.even, 16)};
  if (moves.exchange) {
    sums.even = _mm_or_si128(_mm_slli_epi32(sums.even, 16), _mm_srli_epi32(sums.even, 16));
  }
  if (moves.up) sums = {_mm_slli_epi32(sums.odd, 16), sums.even};
}

// The parts of a blend that are not nothing, the old colour's last.
struct Parts {
  Part samples[kCorners];
  int count;
  Part rest;
  bool hasRest;
  ChannelMoves moves;
  Vector colour, opaque;
};

// kCommon: all four samples and the rest count, and for each a multiplier is all.
template <bool kCommon>
inline void DrawVector(std::uint32_t* dest, const Parts& parts, std::size_t pixel) {
  Sums sums = {_mm_setzero_si128(), _mm_setzero_si128()};
  if (kCommon) {
    for (const Part& part : parts.samples) AddPart(sums, part, pixel, true);
  } else {
    for (int i = 0; i < parts.count; ++i)
      AddPart(sums, parts.samples[i], pixel, parts.samples[i].plain);
  }
  if (parts.moves.any) Move(sums, parts.moves);
  if (kCommon) {
    AddPart(sums, parts.rest, pixel, true);
  } else if (parts.hasRest) {
    AddPart(sums, parts.rest, pixel, parts.rest.plain);
  }
  const Vector even = _mm_min_epi16(sums.even, Halves(255));
  const Vector odd = _mm_slli_epi16(_mm_min_epi16(sums.odd, Halves(255)), 8);
  const Vector words = _mm_and_si128(_mm_or_si128(even, odd), parts.colour);
  Store(dest + pixel, _mm_or_si128(words, parts.opaque));
}

void BlendFixed(std::uint32_t* dest, const FixedBlend& blend, const Neighbours& source,
                std::size_t count) {
  const OpaqueBits bits(blend.dest);
  Parts parts = {{},
                 0,
                 {},
                 !blend.rest.Nothing(),
                 {blend.source, blend.dest},
                 Words(bits.colour),
                 Words(bits.opaque)};
  const std::uint32_t* pixels[kCorners] = {source.upper, source.upper + 1, source.lower + 1,
                                           source.lower};
  for (int corner = 0; corner < kCorners; ++corner) {
    if (blend.corners[corner].Nothing()) continue;
    SetPart(parts.samples[parts.count++], pixels[corner], blend.corners[corner]);
  }
  SetPart(parts.rest, dest, blend.rest);
  bool common = parts.count == kCorners && parts.hasRest && parts.rest.plain;
  for (int i = 0; i < parts.count; ++i) common = common && parts.samples[i].plain;
  std::size_t pixel = 0;
  if (common) {
    for (; pixel + kPixels <= count; pixel += kPixels) DrawVector<true>(dest, parts, pixel);
  } else {
    for (; pixel + kPixels <= count; pixel += kPixels) DrawVector<false>(dest, parts, pixel);
  }
  if (pixel == count) return;
  // The last few in a copy, since a whole vector would touch what lies behind the rows.
  std::uint32_t copies[kCorners + 1][kPixels] = {};
  const std::size_t size = (count - pixel) * sizeof(std::uint32_t);
  for (int i = 0; i < parts.count; ++i) {
    std::memcpy(copies[i], parts.samples[i].pixels + pixel, size);
    parts.samples[i].pixels = copies[i];
  }
  std::memcpy(copies[kCorners], dest + pixel, size);
  parts.rest.pixels = copies[kCorners];
  DrawVector<false>(copies[kCorners], parts, 0);
  std::memcpy(dest + pixel, copies[kCorners], size);
}

inline bool IsZero(Vector words) {
  return _mm_movemask_epi8(_mm_cmpeq_epi8(words, _mm_setzero_si128())) == 0xFFFF;
}

// Most pixels are opaque already: reading is cheaper than writing.
void MakeOpaque(std::uint32_t* dest, PixelLayout layout, std::size_t count) {
  const OpaqueBits bits(layout);
  const Vector colour = Words(bits.colour);
  const Vector opaque = Words(bits.opaque);
  std::size_t i = 0;
  for (; i + 2 * kPixels <= count; i += 2 * kPixels) {
    const Vector a = Load(dest + i);
    const Vector b = Load(dest + i + kPixels);
    const Vector madeA = _mm_or_si128(_mm_and_si128(a, colour), opaque);
    const Vector madeB = _mm_or_si128(_mm_and_si128(b, colour), opaque);
    const Vector changed = _mm_or_si128(_mm_xor_si128(a, madeA), _mm_xor_si128(b, madeB));
    if (IsZero(changed)) continue;
    Store(dest + i, madeA);
    Store(dest + i + kPixels, madeB);
  }
  for (; i < count; ++i) dest[i] = (dest[i] & bits.colour) | bits.opaque;
}

inline MaskRun WholeGroup(const Neighbours& mask, Vector reds) {
  Vector any = Words(mask.upper[kMaskGroup] | mask.lower[kMaskGroup]);
  Vector all = Words(mask.upper[kMaskGroup] & mask.lower[kMaskGroup]);
  for (std::size_t i = 0; i < kMaskGroup; i += kPixels) {
    const Vector upper = Load(mask.upper + i);
    const Vector lower = Load(mask.lower + i);
    any = _mm_or_si128(any, _mm_or_si128(upper, lower));
    all = _mm_and_si128(all, _mm_and_si128(upper, lower));
  }
  if (IsZero(_mm_and_si128(any, reds))) return MaskRun::kBlack;
  return IsZero(_mm_andnot_si128(all, reds)) ? MaskRun::kWhite : MaskRun::kMixed;
}

std::size_t FindMaskRun(const Neighbours& mask, PixelLayout layout, std::size_t count,
                        MaskRun& found) {
  const Vector reds = Words(0xFFU << (8 * RedByte(layout)));
  std::size_t end = 0;
  while (end < count) {
    const bool whole = count - end >= kMaskGroup;
    const std::size_t group = whole ? kMaskGroup : count - end;
    const Neighbours at = mask.From(end);
    const MaskRun sort = whole ? WholeGroup(at, reds) : MaskGroup(at, layout, group);
    if (end == 0) found = sort;
    if (sort != found) break;
    end += group;
  }
  return end;
}

}  // namespace

const DrawRows kDrawRowsSse2 = {BlendFixed, BlendWeightedSse2, MakeOpaque, FindMaskRun};
