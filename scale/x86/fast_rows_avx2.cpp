#include <immintrin.h>

#include "plugin/arithmetic.h"
#include "scale/x86/fast_rows_x86.h"

namespace {

VARNELL_AVX2 __m256i Load(const std::uint32_t* pixels) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
}
VARNELL_AVX2 void Store(std::uint32_t* pixels, __m256i words) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(pixels), words);
}

// Four pixels from a and four from b.
VARNELL_AVX2 __m256i LoadTwo(const std::uint32_t* a, const std::uint32_t* b) {
  const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a));
  const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b));
  return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

VARNELL_AVX2 void Columns(double step, std::int32_t first, std::int32_t count,
                          std::int32_t* columns) {
  const __m256d steps = _mm256_set1_pd(step);
  const __m256d eight = _mm256_set1_pd(8.0);
  __m256d low = _mm256_setr_pd(first, first + 1.0, first + 2.0, first + 3.0);
  __m256d high = _mm256_add_pd(low, _mm256_set1_pd(4.0));
  std::int32_t k = 0;
  for (; k <= count - 8; k += 8) {
    const __m128i a = _mm256_cvttpd_epi32(_mm256_mul_pd(steps, low));
    const __m128i b = _mm256_cvttpd_epi32(_mm256_mul_pd(steps, high));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(columns + k), a);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(columns + k + 4), b);
    low = _mm256_add_pd(low, eight);
    high = _mm256_add_pd(high, eight);
  }
  for (; k < count; ++k) columns[k] = TruncateToInt32(step * (first + k));
}

// Brings equal bytes of four pixels together, with 0 for those after the first `pixels`.
VARNELL_AVX2 __m256i Together(std::int32_t pixels) {
  const __m256i all = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
  const __m256i limit = _mm256_set1_epi8(static_cast<char>(4 * pixels - 1));
  return _mm256_or_si256(all, _mm256_cmpgt_epi8(all, limit));
}

struct Averaging {
  __m256i multiplier;
  __m128i shift;
  __m256i four, last;   // for a block's four pixels, and for its last ones
  std::int32_t before;  // groups of four before the last
};

// The four bytes' sums in a block of each half, in two 16-bit parts: at most 64·255.
template <bool single>
[[gnu::always_inline]] VARNELL_AVX2 inline __m256i PartSums(const Averaging& how,
                                                            const std::uint32_t* a,
                                                            const std::uint32_t* b) {
  const __m256i ones = _mm256_set1_epi8(1);
  if (single) return _mm256_maddubs_epi16(_mm256_shuffle_epi8(LoadTwo(a, b), how.last), ones);
  __m256i sums = _mm256_setzero_si256();
  for (std::int32_t g = 0; g < how.before; ++g, a += 4, b += 4) {
    const __m256i bytes = _mm256_shuffle_epi8(LoadTwo(a, b), how.four);
    sums = _mm256_add_epi16(sums, _mm256_maddubs_epi16(bytes, ones));
  }
  const __m256i bytes = _mm256_shuffle_epi8(LoadTwo(a, b), how.last);
  return _mm256_add_epi16(sums, _mm256_maddubs_epi16(bytes, ones));
}

// The 16-bit means of the blocks 0 and 1 (low half) and 4 and 5 (high half) of eight.
template <bool single>
[[gnu::always_inline]] VARNELL_AVX2 inline __m256i MeansOfFour(const Averaging& how,
                                                               const std::uint32_t* source,
                                                               const std::int32_t* x0) {
  const __m256i ones = _mm256_set1_epi16(1);
  const __m256i a = PartSums<single>(how, source + x0[0], source + x0[4]);
  const __m256i b = PartSums<single>(how, source + x0[1], source + x0[5]);
  const __m256i sums = _mm256_packs_epi32(_mm256_madd_epi16(a, ones), _mm256_madd_epi16(b, ones));
  return _mm256_srl_epi16(_mm256_mulhi_epu16(sums, how.multiplier), how.shift);
}

template <bool single>
VARNELL_AVX2 void Average(const Averaging& how, const std::uint32_t* source,
                          const std::int32_t* columns, std::int32_t count, std::uint32_t* result) {
  for (std::int32_t i = 0; i < count; i += 8) {
    // The last eight may overlap the ones before.
    const std::int32_t at = i < count - 8 ? i : count - 8;
    const __m256i low = MeansOfFour<single>(how, source, columns + at);
    const __m256i high = MeansOfFour<single>(how, source, columns + at + 2);
    Store(result + at, _mm256_packus_epi16(low, high));
  }
}

// Eight blocks of two pixels that lie side by side.
VARNELL_AVX2 __m256i MeansOfPairs(const std::uint32_t* pixels) {
  const __m256i ones = _mm256_set1_epi8(1);
  const __m256i pairs = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(0, 4, 1, 5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15));
  const __m256i a = _mm256_maddubs_epi16(_mm256_shuffle_epi8(Load(pixels), pairs), ones);
  const __m256i b = _mm256_maddubs_epi16(_mm256_shuffle_epi8(Load(pixels + 8), pairs), ones);
  const __m256i means = _mm256_packus_epi16(_mm256_srli_epi16(a, 1), _mm256_srli_epi16(b, 1));
  return _mm256_permute4x64_epi64(means, 0xD8);  // 0 1 4 5 | 2 3 6 7 in order
}

// 32-bit sums of the two blocks of four pixels that eight pixels are.
VARNELL_AVX2 __m256i SumsOfFours(const std::uint32_t* pixels) {
  const __m256i bytes = _mm256_shuffle_epi8(Load(pixels), Together(4));
  return _mm256_madd_epi16(_mm256_maddubs_epi16(bytes, _mm256_set1_epi8(1)), _mm256_set1_epi16(1));
}

// Eight blocks of four pixels that lie side by side.
VARNELL_AVX2 __m256i MeansOfFours(const std::uint32_t* pixels) {
  const __m256i a = _mm256_packs_epi32(SumsOfFours(pixels), SumsOfFours(pixels + 8));
  const __m256i b = _mm256_packs_epi32(SumsOfFours(pixels + 16), SumsOfFours(pixels + 24));
  const __m256i means = _mm256_packus_epi16(_mm256_srli_epi16(a, 2), _mm256_srli_epi16(b, 2));
  return _mm256_permutevar8x32_epi32(means, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

template <std::int32_t blockWidth>
VARNELL_AVX2 void AverageAdjacent(const std::uint32_t* source, std::int32_t count,
                                  std::uint32_t* result) {
  for (std::int32_t i = 0; i < count; i += 8) {
    // The last eight may overlap the ones before.
    const std::int32_t at = i < count - 8 ? i : count - 8;
    const std::uint32_t* pixels = source + at * blockWidth;
    Store(result + at, blockWidth == 2 ? MeansOfPairs(pixels) : MeansOfFours(pixels));
  }
}

// Columns grow by at most the width of a block.
VARNELL_AVX2 bool AreAdjacent(const std::int32_t* columns, std::int32_t count,
                              std::int32_t blockWidth) {
  return count > 0 && columns[count - 1] - columns[0] == (count - 1) * blockWidth;
}

VARNELL_AVX2 void AverageNarrow(const std::uint32_t* source, const std::int32_t* columns,
                                std::int32_t count, std::int32_t blockWidth,
                                std::uint32_t* result) {
  if (blockWidth == 2 && AreAdjacent(columns, count, 2)) {
    return AverageAdjacent<2>(source + columns[0], count, result);
  }
  if (blockWidth == 4 && AreAdjacent(columns, count, 4)) {
    return AverageAdjacent<4>(source + columns[0], count, result);
  }
  const Division division = DivisionBy(blockWidth);
  const Averaging how = {_mm256_set1_epi16(static_cast<short>(division.multiplier)),
                         _mm_cvtsi32_si128(division.shift), Together(4),
                         Together((blockWidth - 1) % 4 + 1), (blockWidth - 1) / 4};
  if (how.before == 0) {
    Average<true>(how, source, columns, count, result);
  } else {
    Average<false>(how, source, columns, count, result);
  }
}

// Eight columns that grow by 0 or 1 lie within eight pixels from the first of them on.
VARNELL_AVX2 void Pick(const std::uint32_t* source, const std::int32_t* columns, std::int32_t count,
                       std::uint32_t* result) {
  for (std::int32_t i = 0; i < count; i += 8) {
    // The last eight may overlap the ones before.
    const std::int32_t at = i < count - 8 ? i : count - 8;
    const __m256i places = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(columns + at));
    const __m256i first = _mm256_set1_epi32(columns[at]);
    const __m256i pixels = Load(source + columns[at]);
    Store(result + at, _mm256_permutevar8x32_epi32(pixels, _mm256_sub_epi32(places, first)));
  }
}

VARNELL_AVX2 void Recolour(const Recolouring& change, const std::uint32_t* source,
                           std::int32_t count, std::uint32_t* result) {
  const __m256i opaque = _mm256_set1_epi32(static_cast<std::int32_t>(change.opaque));
  alignas(16) std::uint8_t order[16];
  for (int k = 0; k < 16; ++k) {
    const std::uint8_t byte = change.byteOrder[k % 4];
    order[k] = byte == 0x80 ? byte : static_cast<std::uint8_t>(byte + k / 4 * 4);
  }
  const __m256i shuffle =
      _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(order)));
  std::int32_t i = 0;
  for (; i <= count - 8; i += 8) {
    Store(result + i, _mm256_or_si256(_mm256_shuffle_epi8(Load(source + i), shuffle), opaque));
  }
  for (; i < count; ++i) result[i] = Recoloured(change, source[i]);
}

}  // namespace

const FastRows kFastRowsAvx2 = {
    VectorLevel::kAvx2, 8,        8,          Columns,   Pick, AverageNarrow,
    AverageWideSse2,    Recolour, StreamSse2, SettleSse2};
