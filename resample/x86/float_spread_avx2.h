// How eight rows of pixel words become columns of single precision. Included by the files that say,
// by including lanes_avx2.h first, what Lanes are.
#pragma once

#include <cstdint>

#include "resample/float_kernels.h"

#define FLOAT_FUNCTION VARNELL_AVX2_FMA inline
#define FLOAT_INLINE [[gnu::always_inline]] VARNELL_AVX2_FMA inline

namespace {

using Floats = __m256;

FLOAT_INLINE Floats LoadFloats(const float* at) { return _mm256_loadu_ps(at); }
FLOAT_INLINE Floats LoadFloats(const std::uint16_t* at) {
  return _mm256_cvtph_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)));
}

FLOAT_INLINE Floats BroadcastFloat(const float& a) { return _mm256_broadcast_ss(&a); }

// In which byte of a word a channel lies.
constexpr int ByteOfChannel(PixelLayout layout, int channel) {
  if (layout == PixelLayout::kBlueFirst) return 2 - channel;
  return layout == PixelLayout::kAlphaFirst ? channel + 1 : channel;
}

// One byte of each lane, as a number.
template <int byte>
FLOAT_INLINE Floats ByteAsFloat(Lanes words) {
  constexpr int kNone = -1;
  const Lanes order = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(byte, kNone, kNone, kNone, byte + 4, kNone, kNone, kNone, byte + 8, kNone,
                    kNone, kNone, byte + 12, kNone, kNone, kNone));
  return _mm256_cvtepi32_ps(_mm256_shuffle_epi8(words, order));
}

template <PixelLayout layout>
FLOAT_INLINE void StoreColumn(Lanes words, FloatColumn& column) {
  _mm256_storeu_ps(column[0], ByteAsFloat<ByteOfChannel(layout, 0)>(words));
  _mm256_storeu_ps(column[1], ByteAsFloat<ByteOfChannel(layout, 1)>(words));
  _mm256_storeu_ps(column[2], ByteAsFloat<ByteOfChannel(layout, 2)>(words));
}

// Four columns, from the first half of eight rows and from the second.
template <PixelLayout layout>
FLOAT_INLINE void StoreFour(Lanes a, Lanes b, Lanes c, Lanes d, FloatColumn* columns) {
  const Lanes ab = WeaveLow32(a, b), cd = WeaveLow32(c, d);
  StoreColumn<layout>(WeaveLow64(ab, cd), columns[0]);
  StoreColumn<layout>(WeaveHigh64(ab, cd), columns[1]);
  const Lanes upperAb = WeaveHigh32(a, b), upperCd = WeaveHigh32(c, d);
  StoreColumn<layout>(WeaveLow64(upperAb, upperCd), columns[2]);
  StoreColumn<layout>(WeaveHigh64(upperAb, upperCd), columns[3]);
}

template <PixelLayout layout>
FLOAT_FUNCTION void SpreadAs(const std::uint32_t* const rows[kLanes], std::int32_t width,
                             std::int32_t first, std::int32_t last, FloatColumn* columns) {
  std::int32_t x = first;
  for (; x + 4 <= last && x + 4 <= width; x += 4) {
    StoreFour<layout>(LoadHalves(rows[0] + x, rows[4] + x), LoadHalves(rows[1] + x, rows[5] + x),
                      LoadHalves(rows[2] + x, rows[6] + x), LoadHalves(rows[3] + x, rows[7] + x),
                      columns + x);
  }
  for (; x < last; ++x) {
    std::uint32_t words[kLanes];
    for (std::int32_t row = 0; row < kLanes; ++row) words[row] = rows[row][x];
    StoreColumn<layout>(Load(words), columns[x]);
  }
}

FLOAT_FUNCTION void Spread(const std::uint32_t* const rows[kLanes], PixelLayout layout,
                           std::int32_t width, std::int32_t first, std::int32_t last,
                           FloatColumn* columns) {
  switch (layout) {
    case PixelLayout::kRedFirst:
      return SpreadAs<PixelLayout::kRedFirst>(rows, width, first, last, columns);
    case PixelLayout::kAlphaFirst:
      return SpreadAs<PixelLayout::kAlphaFirst>(rows, width, first, last, columns);
    default:
      return SpreadAs<PixelLayout::kBlueFirst>(rows, width, first, last, columns);
  }
}

}  // namespace
