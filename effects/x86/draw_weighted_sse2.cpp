// Blends with weights of any size for SSE2, in doubles, half a pixel in a vector.
#include <immintrin.h>

#include "effects/x86/draw_rows_x86.h"

namespace {

using Vector = __m128i;

// The channels of one pixel: the first two and the others.
struct Channels {
  __m128d low, high;
};

inline Channels ChannelsOf(std::uint32_t word) {
  const Vector zero = _mm_setzero_si128();
  const Vector bytes = _mm_cvtsi32_si128(static_cast<int>(word));
  const Vector wide = _mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero);
  return {_mm_cvtepi32_pd(wide), _mm_cvtepi32_pd(_mm_unpackhi_epi64(wide, wide))};
}

// Conversions of NaN and of what does not fit give -2^31.
inline Vector Truncated(const Channels& channels, __m128d weight) {
  return _mm_unpacklo_epi64(_mm_cvttpd_epi32(_mm_mul_pd(channels.low, weight)),
                            _mm_cvttpd_epi32(_mm_mul_pd(channels.high, weight)));
}

inline Vector Moved(Vector sums, const ChannelMoves& moves) {
  if (moves.down) sums = _mm_srli_si128(sums, 4);
  if (moves.exchange) sums = _mm_shuffle_epi32(sums, _MM_SHUFFLE(3, 0, 1, 2));
  return moves.up ? _mm_slli_si128(sums, 4) : sums;
}

// One column of samples: upper and lower channels, and the mask's reds.
struct Column {
  Channels upper, lower;
  std::size_t upperRed, lowerRed;
};

// Reads columns of samples one after the other.
struct Samples {
  Neighbours source;
  const unsigned char* upperReds;
  const unsigned char* lowerReds;
};

template <bool masked>
inline Column ColumnAt(const Samples& samples, std::size_t i) {
  return {ChannelsOf(samples.source.upper[i]), ChannelsOf(samples.source.lower[i]),
          masked ? samples.upperReds[4 * i] : std::size_t{0},
          masked ? samples.lowerReds[4 * i] : std::size_t{0}};
}

// The sums of one pixel, in dest's layout.
inline Vector PixelSums(const double (*weights)[256], const ChannelMoves& moves, const Column& left,
                        const Column& right, const std::uint32_t* old) {
  const __m128d upperLeft = _mm_set1_pd(weights[kUpperLeft][left.upperRed]);
  const __m128d upperRight = _mm_set1_pd(weights[kUpperRight][right.upperRed]);
  const __m128d lowerRight = _mm_set1_pd(weights[kLowerRight][right.lowerRed]);
  const __m128d lowerLeft = _mm_set1_pd(weights[kLowerLeft][left.lowerRed]);
  const __m128d left2 = _mm_sub_pd(_mm_sub_pd(_mm_set1_pd(1.0), upperLeft), upperRight);
  const __m128d left0 = _mm_sub_pd(_mm_sub_pd(left2, lowerRight), lowerLeft);
  const __m128d rest = _mm_max_pd(left0, _mm_setzero_pd());  // 0 where NaN or not greater
  Vector sums = _mm_add_epi32(Truncated(left.upper, upperLeft), Truncated(right.upper, upperRight));
  sums = _mm_add_epi32(sums, Truncated(right.lower, lowerRight));
  sums = _mm_add_epi32(sums, Truncated(left.lower, lowerLeft));
  if (moves.any) sums = Moved(sums, moves);
  return _mm_add_epi32(sums, Truncated(ChannelsOf(*old), rest));
}

template <bool masked>
void BlendEach(std::uint32_t* dest, const WeightedBlend& blend, Samples samples,
               std::size_t count) {
  // Copies, which no pixel that is written can change.
  const double(*const weights)[256] = blend.weights;
  const ChannelMoves moves(blend.source, blend.dest);
  const OpaqueBits bits(blend.dest);
  Column left = ColumnAt<masked>(samples, 0);
  for (std::size_t i = 0; i < count; ++i) {
    const Column right = ColumnAt<masked>(samples, i + 1);
    const Vector sums = PixelSums(weights, moves, left, right, dest + i);
    const Vector halves = _mm_packs_epi32(sums, sums);
    const auto word =
        static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(halves, halves)));
    dest[i] = (word & bits.colour) | bits.opaque;
    left = right;
  }
}

}  // namespace

void BlendWeightedSse2(std::uint32_t* dest, const WeightedBlend& blend, const Neighbours& source,
                       const Neighbours& mask, std::size_t count) {
  if (!blend.masked) return BlendEach<false>(dest, blend, {source, nullptr, nullptr}, count);
  const int red = RedByte(blend.mask);
  const auto* upper = reinterpret_cast<const unsigned char*>(mask.upper) + red;
  const auto* lower = reinterpret_cast<const unsigned char*>(mask.lower) + red;
  BlendEach<true>(dest, blend, {source, upper, lower}, count);
}
