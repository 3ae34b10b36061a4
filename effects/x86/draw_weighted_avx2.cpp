// Blends with weights of any size for AVX2, in doubles, a whole pixel in a vector.
#include <immintrin.h>

#include "effects/x86/draw_rows_x86.h"

namespace {

// The channels of one pixel.
VARNELL_AVX2 inline __m256d Channels(std::uint32_t word) {
  return _mm256_cvtepi32_pd(_mm_cvtepu8_epi32(_mm_cvtsi32_si128(static_cast<int>(word))));
}

// Conversions of NaN and of what does not fit give -2^31.
VARNELL_AVX2 inline __m128i Truncated(__m256d channels, const double* weight) {
  return _mm256_cvttpd_epi32(_mm256_mul_pd(channels, _mm256_broadcast_sd(weight)));
}

VARNELL_AVX2 inline __m128i Moved(__m128i sums, const ChannelMoves& moves) {
  if (moves.down) sums = _mm_srli_si128(sums, 4);
  if (moves.exchange) sums = _mm_shuffle_epi32(sums, _MM_SHUFFLE(3, 0, 1, 2));
  return moves.up ? _mm_slli_si128(sums, 4) : sums;
}

// One column of samples: upper and lower channels, and the mask's reds.
struct Column {
  __m256d upper, lower;
  std::size_t upperRed, lowerRed;
};

// Reads columns of samples one after the other.
struct Samples {
  Neighbours source;
  const unsigned char* upperReds;
  const unsigned char* lowerReds;
};

template <bool masked>
VARNELL_AVX2 inline Column ColumnAt(const Samples& samples, std::size_t i) {
  return {Channels(samples.source.upper[i]), Channels(samples.source.lower[i]),
          masked ? samples.upperReds[4 * i] : std::size_t{0},
          masked ? samples.lowerReds[4 * i] : std::size_t{0}};
}

// The sums of one pixel, in dest's layout.
VARNELL_AVX2 inline __m128i PixelSums(const double (*weights)[256], const ChannelMoves& moves,
                                      const Column& left, const Column& right,
                                      const std::uint32_t* old) {
  const double* upperLeft = &weights[kUpperLeft][left.upperRed];
  const double* upperRight = &weights[kUpperRight][right.upperRed];
  const double* lowerRight = &weights[kLowerRight][right.lowerRed];
  const double* lowerLeft = &weights[kLowerLeft][left.lowerRed];
  const double left1 = ((1.0 - *upperLeft) - *upperRight) - *lowerRight;
  // 0 where it is NaN or not greater.
  const __m128d rest = _mm_max_sd(_mm_set_sd(left1 - *lowerLeft), _mm_setzero_pd());
  __m128i sums =
      _mm_add_epi32(Truncated(left.upper, upperLeft), Truncated(right.upper, upperRight));
  sums = _mm_add_epi32(sums, Truncated(right.lower, lowerRight));
  sums = _mm_add_epi32(sums, Truncated(left.lower, lowerLeft));
  if (moves.any) sums = Moved(sums, moves);
  const __m256d rests = _mm256_broadcastsd_pd(rest);
  return _mm_add_epi32(sums, _mm256_cvttpd_epi32(_mm256_mul_pd(Channels(*old), rests)));
}

template <bool masked>
VARNELL_AVX2 void BlendEach(std::uint32_t* dest, const WeightedBlend& blend, Samples samples,
                            std::size_t count) {
  // Copies, which no pixel that is written can change.
  const double(*const weights)[256] = blend.weights;
  const ChannelMoves moves(blend.source, blend.dest);
  const OpaqueBits bits(blend.dest);
  const __m128i colour = _mm_set1_epi32(static_cast<int>(bits.colour));
  const __m128i opaque = _mm_set1_epi32(static_cast<int>(bits.opaque));
  Column left = ColumnAt<masked>(samples, 0);
  std::size_t i = 0;
  for (; i + 2 <= count; i += 2) {
    const Column middle = ColumnAt<masked>(samples, i + 1);
    const __m128i first = PixelSums(weights, moves, left, middle, dest + i);
    left = ColumnAt<masked>(samples, i + 2);
    const __m128i second = PixelSums(weights, moves, middle, left, dest + i + 1);
    const __m128i halves = _mm_packs_epi32(first, second);
    const __m128i words = _mm_and_si128(_mm_packus_epi16(halves, halves), colour);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dest + i), _mm_or_si128(words, opaque));
  }
  if (i == count) return;
  const Column right = ColumnAt<masked>(samples, i + 1);
  const __m128i sums = PixelSums(weights, moves, left, right, dest + i);
  const __m128i halves = _mm_packs_epi32(sums, sums);
  const __m128i words = _mm_and_si128(_mm_packus_epi16(halves, halves), colour);
  dest[i] = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_or_si128(words, opaque)));
}

}  // namespace

void BlendWeightedAvx2(std::uint32_t* dest, const WeightedBlend& blend, const Neighbours& source,
                       const Neighbours& mask, std::size_t count) {
  if (!blend.masked) return BlendEach<false>(dest, blend, {source, nullptr, nullptr}, count);
  const int red = RedByte(blend.mask);
  const auto* upper = reinterpret_cast<const unsigned char*>(mask.upper) + red;
  const auto* lower = reinterpret_cast<const unsigned char*>(mask.lower) + red;
  BlendEach<true>(dest, blend, {source, upper, lower}, count);
}
