// One row of the smooth enlarger with SSE2: the four bytes of a pixel side by side as floats.
#include <immintrin.h>

#include "scale/smooth_rows.h"

namespace {

constexpr std::int32_t kPiece = 256;  // columns of the result that are computed at a time
constexpr std::int32_t kBlended = kPiece + 1;
constexpr std::int32_t kGroup = 4;

__m128i LoadPixels(const unsigned char* address) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(address));
}

__m128i LoadPixel(const unsigned char* address) { return _mm_loadu_si32(address); }

// here·weights[0] + next·weights[1] for the 16-bit values in the lower halves of the registers.
__m128 Blend(__m128i here, __m128i next, const __m128* weights) {
  const __m128i zero = _mm_setzero_si128();
  const __m128 a = _mm_cvtepi32_ps(_mm_unpacklo_epi16(here, zero));
  const __m128 b = _mm_cvtepi32_ps(_mm_unpacklo_epi16(next, zero));
  return _mm_add_ps(_mm_mul_ps(a, weights[0]), _mm_mul_ps(b, weights[1]));
}

// Blends `count` pixels of two rows; the blend behind the last one is the last once more.
void BlendRows(const unsigned char* here, const unsigned char* next, std::int32_t count,
               const TapWeights& down, __m128* blended) {
  const __m128i zero = _mm_setzero_si128();
  const __m128 weights[2] = {_mm_set1_ps(down.entry[2]), _mm_set1_ps(down.entry[1])};
  std::int32_t x = 0;
  for (; x + kGroup <= count; x += kGroup) {
    const __m128i a = LoadPixels(here + x * 4);
    const __m128i b = LoadPixels(next + x * 4);
    const __m128i aLow = _mm_unpacklo_epi8(a, zero), aHigh = _mm_unpackhi_epi8(a, zero);
    const __m128i bLow = _mm_unpacklo_epi8(b, zero), bHigh = _mm_unpackhi_epi8(b, zero);
    blended[x] = Blend(aLow, bLow, weights);
    blended[x + 1] = Blend(_mm_srli_si128(aLow, 8), _mm_srli_si128(bLow, 8), weights);
    blended[x + 2] = Blend(aHigh, bHigh, weights);
    blended[x + 3] = Blend(_mm_srli_si128(aHigh, 8), _mm_srli_si128(bHigh, 8), weights);
  }
  for (; x < count; ++x) {
    blended[x] = Blend(_mm_unpacklo_epi8(LoadPixel(here + x * 4), zero),
                       _mm_unpacklo_epi8(LoadPixel(next + x * 4), zero), weights);
  }
  blended[count] = blended[count - 1];
}

// One new pixel, as four integers.
__m128i Along(const __m128* pair, __m128 here, __m128 next) {
  const __m128 value = _mm_add_ps(_mm_set1_ps(0.5F), _mm_mul_ps(pair[0], here));
  return _mm_cvttps_epi32(_mm_add_ps(value, _mm_mul_ps(pair[1], next)));
}

template <int kLane>
__m128 Broadcast(__m128 values) {
  return _mm_shuffle_ps(values, values, kLane * 0x55);
}

// `blended` is the blend of source column left[0].
void BlendColumns(const __m128* blended, const std::int32_t* left, const float* here,
                  const float* next, unsigned char* result, std::int32_t count) {
  const std::int32_t origin = left[0];
  std::int32_t i = 0;
  for (; i + kGroup <= count; i += kGroup) {
    const __m128 h = _mm_loadu_ps(here + i);
    const __m128 n = _mm_loadu_ps(next + i);
    const __m128i p0 = Along(blended + (left[i] - origin), Broadcast<0>(h), Broadcast<0>(n));
    const __m128i p1 = Along(blended + (left[i + 1] - origin), Broadcast<1>(h), Broadcast<1>(n));
    const __m128i p2 = Along(blended + (left[i + 2] - origin), Broadcast<2>(h), Broadcast<2>(n));
    const __m128i p3 = Along(blended + (left[i + 3] - origin), Broadcast<3>(h), Broadcast<3>(n));
    const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(p0, p1), _mm_packs_epi32(p2, p3));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(result + i * 4), bytes);
  }
  for (; i < count; ++i) {
    const __m128i pixel =
        Along(blended + (left[i] - origin), _mm_set1_ps(here[i]), _mm_set1_ps(next[i]));
    const __m128i words = _mm_packs_epi32(pixel, pixel);
    _mm_storeu_si32(result + i * 4, _mm_packus_epi16(words, words));
  }
}

void EnlargeRow(const SmoothSourceRows& source, const TapWeights& down, const SmoothTables& tables,
                unsigned char* result, std::int32_t width) {
  __m128 blended[kBlended + 1];
  for (std::int32_t first = 0; first < width; first += kPiece) {
    const std::int32_t count = width - first < kPiece ? width - first : kPiece;
    const std::int32_t* left = tables.Columns() + first;
    // As the source is no wider than the result, at most `count` columns and the one after them.
    const std::int32_t after = left[count - 1] + 2;
    const std::int32_t columns = (after < source.width ? after : source.width) - left[0];
    const auto offset = static_cast<std::size_t>(left[0]) * 4;
    BlendRows(source.taps[1] + offset, source.taps[2] + offset, columns, down, blended);
    BlendColumns(blended, left, tables.HereWeights() + first, tables.NextWeights() + first,
                 result + static_cast<std::size_t>(first) * 4, count);
  }
}

}  // namespace

const SmoothRows kSmoothRowsSse2 = {true, EnlargeRow};
