// The drawing's rows for AVX2: fixed weights, opaque pixels and mask runs, eight pixels in a
// vector.
#include <immintrin.h>

#include <cstring>

#include "effects/x86/draw_rows_x86.h"

namespace {

using Vector = __m256i;

constexpr std::size_t kPixels = 8;  // in one vector

VARNELL_AVX2 inline Vector Load(const std::uint32_t* pixels) {
  return _mm256_loadu_si256(reinterpret_cast<const Vector*>(pixels));
}
VARNELL_AVX2 inline void Store(std::uint32_t* pixels, Vector words) {
  _mm256_storeu_si256(reinterpret_cast<Vector*>(pixels), words);
}
VARNELL_AVX2 inline Vector Words(std::uint32_t word) {
  return _mm256_set1_epi32(static_cast<int>(word));
}
VARNELL_AVX2 inline Vector Halves(std::uint32_t half) {
  return _mm256_set1_epi16(static_cast<short>(half));
}

// One sample, or the old colour, and its share.
struct Part {
  const std::uint32_t* pixels;
  Vector multiplier, whole;
  bool plain;  // a multiplier is all
  int patches;
  Vector value[FixedShare::kMostPatches], step[FixedShare::kMostPatches];
};

VARNELL_AVX2 void SetPart(Part& part, const std::uint32_t* pixels, const FixedShare& share) {
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

VARNELL_AVX2 inline Vector Products(const Part& part, Vector channels) {
  Vector products = _mm256_mulhi_epu16(channels, part.multiplier);
  if (part.plain) return products;
  products = _mm256_add_epi16(products, _mm256_and_si256(channels, part.whole));
  for (int i = 0; i < part.patches; ++i) {
    const Vector patched = _mm256_cmpeq_epi16(channels, part.value[i]);
    products = _mm256_add_epi16(products, _mm256_and_si256(patched, part.step[i]));
  }
  return products;
}

// Sums of the channels of eight pixels: bytes 0 and 2 of each, bytes 1 and 3. At most 5 * 2 * 255.
struct Sums {
  Vector even, odd;
};

VARNELL_AVX2 inline void AddPart(Sums& sums, const Part& part, std::size_t pixel) {
  const Vector words = Load(part.pixels + pixel);
  const Vector even = _mm256_and_si256(words, Words(0x00FF00FF));
  const Vector odd = _mm256_srli_epi16(words, 8);
  sums.even = _mm256_add_epi16(sums.even, Products(part, even));
  sums.odd = _mm256_add_epi16(sums.odd, Products(part, odd));
}

VARNELL_AVX2 inline void Move(Sums& sums, const ChannelMoves& moves) {
  if (moves.down) sums = {sums.odd, _mm256_srli_epi32(sums.even, 16)};
  if (moves.exchange) {
    sums.even = _mm256_or_si256(_mm256_slli_epi32(sums.even, 16), _mm256_srli_epi32(sums.even, 16));
  }
  if (moves.up) sums = {_mm256_slli_epi32(sums.odd, 16), sums.even};
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

VARNELL_AVX2 inline Vector WordsOf(const Sums& sums, Vector colour, Vector opaque) {
  const Vector even = _mm256_min_epu16(sums.even, Halves(255));
  const Vector odd = _mm256_slli_epi16(_mm256_min_epu16(sums.odd, Halves(255)), 8);
  return _mm256_or_si256(_mm256_and_si256(_mm256_or_si256(even, odd), colour), opaque);
}

VARNELL_AVX2 inline void DrawVector(std::uint32_t* dest, const Parts& parts, std::size_t pixel) {
  Sums sums = {_mm256_setzero_si256(), _mm256_setzero_si256()};
  for (int i = 0; i < parts.count; ++i) AddPart(sums, parts.samples[i], pixel);
  if (parts.moves.any) Move(sums, parts.moves);
  if (parts.hasRest) AddPart(sums, parts.rest, pixel);
  Store(dest + pixel, WordsOf(sums, parts.colour, parts.opaque));
}

// A blend to which all four samples count, and for each of them and the rest a multiplier is all.
struct PlainBlend {
  Vector multipliers[kCorners + 1];
  ChannelMoves moves;
  Vector colour, opaque;
};

// Nothing saturates here; but compilers keep such sums in order, and fewer registers are enough.
VARNELL_AVX2 inline void AddPlain(Sums& sums, Vector words, const Vector& multiplier) {
  const Vector even = _mm256_and_si256(words, Words(0x00FF00FF));
  sums.even = _mm256_adds_epu16(sums.even, _mm256_mulhi_epu16(even, multiplier));
  const Vector odd = _mm256_srli_epi16(words, 8);
  sums.odd = _mm256_adds_epu16(sums.odd, _mm256_mulhi_epu16(odd, multiplier));
}

// Eight pixels, or with kWhole false those that `lanes` says.
template <bool kWhole>
VARNELL_AVX2 inline Vector LoadLanes(const std::uint32_t* pixels, Vector lanes) {
  return kWhole ? Load(pixels) : _mm256_maskload_epi32(reinterpret_cast<const int*>(pixels), lanes);
}

template <bool kWhole>
VARNELL_AVX2 inline void DrawPlain(std::uint32_t* dest, const PlainBlend& blend,
                                   const std::uint32_t* upper, const std::uint32_t* lower,
                                   Vector lanes) {
  Sums sums = {_mm256_setzero_si256(), _mm256_setzero_si256()};
  AddPlain(sums, LoadLanes<kWhole>(upper, lanes), blend.multipliers[kUpperLeft]);
  AddPlain(sums, LoadLanes<kWhole>(upper + 1, lanes), blend.multipliers[kUpperRight]);
  AddPlain(sums, LoadLanes<kWhole>(lower + 1, lanes), blend.multipliers[kLowerRight]);
  AddPlain(sums, LoadLanes<kWhole>(lower, lanes), blend.multipliers[kLowerLeft]);
  if (blend.moves.any) Move(sums, blend.moves);
  AddPlain(sums, LoadLanes<kWhole>(dest, lanes), blend.multipliers[kCorners]);
  const Vector words = WordsOf(sums, blend.colour, blend.opaque);
  if (kWhole) {
    Store(dest, words);
  } else {
    _mm256_maskstore_epi32(reinterpret_cast<int*>(dest), lanes, words);
  }
}

bool IsPlain(const FixedBlend& blend) {
  bool plain = blend.rest.patches == 0 && blend.rest.whole == 0;
  for (const FixedShare& corner : blend.corners) {
    plain = plain && corner.patches == 0 && corner.whole == 0 && !corner.Nothing();
  }
  return plain;
}

VARNELL_AVX2 void BlendPlain(std::uint32_t* dest, const FixedBlend& shares,
                             const Neighbours& source, std::size_t count) {
  const OpaqueBits bits(shares.dest);
  PlainBlend blend = {{}, {shares.source, shares.dest}, Words(bits.colour), Words(bits.opaque)};
  for (int i = 0; i < kCorners; ++i) blend.multipliers[i] = Halves(shares.corners[i].multiplier);
  blend.multipliers[kCorners] = Halves(shares.rest.multiplier);
  const Vector all = Words(0xFFFFFFFF);
  std::size_t i = 0;
  for (; i + kPixels <= count; i += kPixels) {
    DrawPlain<true>(dest + i, blend, source.upper + i, source.lower + i, all);
  }
  if (i == count) return;
  const Vector lanes = _mm256_cmpgt_epi32(Words(static_cast<std::uint32_t>(count - i)),
                                          _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
  DrawPlain<false>(dest + i, blend, source.upper + i, source.lower + i, lanes);
}

VARNELL_AVX2 void BlendFixed(std::uint32_t* dest, const FixedBlend& blend, const Neighbours& source,
                             std::size_t count) {
  if (IsPlain(blend)) return BlendPlain(dest, blend, source, count);
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
  std::size_t pixel = 0;
  for (; pixel + kPixels <= count; pixel += kPixels) DrawVector(dest, parts, pixel);
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
  DrawVector(copies[kCorners], parts, 0);
  std::memcpy(dest + pixel, copies[kCorners], size);
}

// Most pixels are opaque already: reading is cheaper than writing.
VARNELL_AVX2 void MakeOpaque(std::uint32_t* dest, PixelLayout layout, std::size_t count) {
  const OpaqueBits bits(layout);
  const Vector colour = Words(bits.colour);
  const Vector opaque = Words(bits.opaque);
  std::size_t i = 0;
  for (; i + 2 * kPixels <= count; i += 2 * kPixels) {
    const Vector a = Load(dest + i);
    const Vector b = Load(dest + i + kPixels);
    const Vector madeA = _mm256_or_si256(_mm256_and_si256(a, colour), opaque);
    const Vector madeB = _mm256_or_si256(_mm256_and_si256(b, colour), opaque);
    const Vector changed = _mm256_or_si256(_mm256_xor_si256(a, madeA), _mm256_xor_si256(b, madeB));
    if (_mm256_testz_si256(changed, changed) != 0) continue;
    Store(dest + i, madeA);
    Store(dest + i + kPixels, madeB);
  }
  for (; i < count; ++i) dest[i] = (dest[i] & bits.colour) | bits.opaque;
}

VARNELL_AVX2 inline MaskRun WholeGroup(const Neighbours& mask, Vector reds) {
  const Vector any = _mm256_or_si256(_mm256_or_si256(Load(mask.upper), Load(mask.upper + kPixels)),
                                     _mm256_or_si256(Load(mask.lower), Load(mask.lower + kPixels)));
  const Vector all =
      _mm256_and_si256(_mm256_and_si256(Load(mask.upper), Load(mask.upper + kPixels)),
                       _mm256_and_si256(Load(mask.lower), Load(mask.lower + kPixels)));
  const Vector last = Words(mask.upper[kMaskGroup] | mask.lower[kMaskGroup]);
  if (_mm256_testz_si256(_mm256_or_si256(any, last), reds) != 0) return MaskRun::kBlack;
  const Vector lastAll = Words(mask.upper[kMaskGroup] & mask.lower[kMaskGroup]);
  const bool white = _mm256_testc_si256(_mm256_and_si256(all, lastAll), reds) != 0;
  return white ? MaskRun::kWhite : MaskRun::kMixed;
}

VARNELL_AVX2 std::size_t FindMaskRun(const Neighbours& mask, PixelLayout layout, std::size_t count,
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

const DrawRows kDrawRowsAvx2 = {BlendFixed, BlendWeightedAvx2, MakeOpaque, FindMaskRun};
