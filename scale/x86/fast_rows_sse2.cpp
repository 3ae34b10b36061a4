#include <immintrin.h>

#include <cstddef>

#include "plugin/arithmetic.h"
#include "scale/x86/fast_rows_x86.h"

namespace {

__m128i Load(const std::uint32_t* pixels) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
}
void Store(std::uint32_t* pixels, __m128i words) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(pixels), words);
}

// Ones for the pixels of a block's last four that are its own.
__m128i LastFourMask(std::int32_t blockWidth) {
  const __m128i places = _mm_setr_epi32(0, 1, 2, 3);
  return _mm_cmplt_epi32(places, _mm_set1_epi32((blockWidth - 1) % 4 + 1));
}

// Two pixels of 16-bit bytes: the four of `words` added by twos.
__m128i AddedByTwos(__m128i words) {
  const __m128i zero = _mm_setzero_si128();
  return _mm_add_epi16(_mm_unpacklo_epi8(words, zero), _mm_unpackhi_epi8(words, zero));
}

// A block's 16-bit sums, still for its even and odd pixels apart. Single: it has only the last
// four.
template <bool single>
[[gnu::always_inline]] inline __m128i SumByTwos(const std::uint32_t* block, std::int32_t before,
                                                __m128i lastMask) {
  if (single) return AddedByTwos(_mm_and_si128(Load(block), lastMask));
  __m128i sums = _mm_setzero_si128();
  for (std::int32_t g = 0; g < before; ++g, block += 4) {
    sums = _mm_add_epi16(sums, AddedByTwos(Load(block)));
  }
  return _mm_add_epi16(sums, AddedByTwos(_mm_and_si128(Load(block), lastMask)));
}

// The sums of two blocks, from their sums by twos.
__m128i SumsOfTwo(__m128i a, __m128i b) {
  return _mm_add_epi16(_mm_unpacklo_epi64(a, b), _mm_unpackhi_epi64(a, b));
}

template <bool single>
void Average(const std::uint32_t* source, const std::int32_t* columns, std::int32_t count,
             std::int32_t blockWidth, std::uint32_t* result) {
  const Division division = DivisionBy(blockWidth);
  const __m128i multiplier = _mm_set1_epi16(static_cast<short>(division.multiplier));
  const __m128i shift = _mm_cvtsi32_si128(division.shift);
  const __m128i mask = LastFourMask(blockWidth);
  const std::int32_t before = (blockWidth - 1) / 4;
  for (std::int32_t i = 0; i < count; i += 4) {
    // The last four may overlap the ones before.
    const std::int32_t at = i < count - 4 ? i : count - 4;
    const std::int32_t* x0 = columns + at;
    const __m128i ab = SumsOfTwo(SumByTwos<single>(source + x0[0], before, mask),
                                 SumByTwos<single>(source + x0[1], before, mask));
    const __m128i cd = SumsOfTwo(SumByTwos<single>(source + x0[2], before, mask),
                                 SumByTwos<single>(source + x0[3], before, mask));
    Store(result + at, _mm_packus_epi16(_mm_srl_epi16(_mm_mulhi_epu16(ab, multiplier), shift),
                                        _mm_srl_epi16(_mm_mulhi_epu16(cd, multiplier), shift)));
  }
}

void AverageNarrow(const std::uint32_t* source, const std::int32_t* columns, std::int32_t count,
                   std::int32_t blockWidth, std::uint32_t* result) {
  const auto average = blockWidth <= 4 ? Average<true> : Average<false>;
  average(source, columns, count, blockWidth, result);
}

// A channel's four words: its byte moved from one place to another.
__m128i Channel(__m128i words, std::int32_t from, std::int32_t to) {
  const __m128i alone =
      _mm_and_si128(_mm_srl_epi32(words, _mm_cvtsi32_si128(from)), _mm_set1_epi32(0xFF));
  return _mm_sll_epi32(alone, _mm_cvtsi32_si128(to));
}

void Recolour(const Recolouring& change, const std::uint32_t* source, std::int32_t count,
              std::uint32_t* result) {
  const __m128i opaque = _mm_set1_epi32(static_cast<std::int32_t>(change.opaque));
  std::int32_t i = 0;
  for (; i <= count - 4; i += 4) {
    const __m128i words = Load(source + i);
    const __m128i r = Channel(words, change.from[0], change.to[0]);
    const __m128i g = Channel(words, change.from[1], change.to[1]);
    const __m128i b = Channel(words, change.from[2], change.to[2]);
    Store(result + i, _mm_or_si128(_mm_or_si128(r, g), _mm_or_si128(b, opaque)));
  }
  for (; i < count; ++i) result[i] = Recoloured(change, source[i]);
}

// 32-bit sums of a block's four bytes. Sums by twos of 128 groups stay below 2^16.
__m128i WideSum(const std::uint32_t* block, std::int32_t groups, __m128i lastMask) {
  constexpr std::int32_t kMost = 128;
  const __m128i zero = _mm_setzero_si128();
  const __m128i all = _mm_cmpeq_epi32(zero, zero);
  __m128i sums = zero;
  while (groups > 0) {
    const std::int32_t now = groups < kMost ? groups : kMost;
    const __m128i part = SumByTwos<false>(block, now - 1, now == groups ? lastMask : all);
    sums = _mm_add_epi32(
        sums, _mm_add_epi32(_mm_unpacklo_epi16(part, zero), _mm_unpackhi_epi16(part, zero)));
    block += static_cast<std::ptrdiff_t>(now) * 4;
    groups -= now;
  }
  return sums;
}

}  // namespace

void ColumnsSse2(double step, std::int32_t first, std::int32_t count, std::int32_t* columns) {
  const __m128d steps = _mm_set1_pd(step);
  const __m128d four = _mm_set1_pd(4.0);
  __m128d low = _mm_setr_pd(first, first + 1.0);
  __m128d high = _mm_setr_pd(first + 2.0, first + 3.0);
  std::int32_t k = 0;
  for (; k <= count - 4; k += 4) {
    const __m128i a = _mm_cvttpd_epi32(_mm_mul_pd(steps, low));
    const __m128i b = _mm_cvttpd_epi32(_mm_mul_pd(steps, high));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(columns + k), _mm_unpacklo_epi64(a, b));
    low = _mm_add_pd(low, four);
    high = _mm_add_pd(high, four);
  }
  for (; k < count; ++k) columns[k] = TruncateToInt32(step * (first + k));
}

void PickSse2(const std::uint32_t* source, const std::int32_t* columns, std::int32_t count,
              std::uint32_t* result) {
  for (std::int32_t i = 0; i < count; ++i) result[i] = source[columns[i]];
}

// Single precision divides sums up to 255·2^16 < 2^24 exactly enough: a quotient that is not whole
// lies at least 1/blockWidth >= 2^-16 below the next integer, at most 255, where neighbours are
// 2^-16 apart or less: rounding cannot reach that integer.
void AverageWideSse2(const std::uint32_t* source, const std::int32_t* columns, std::int32_t count,
                     std::int32_t blockWidth, std::uint32_t* result) {
  const __m128 divisor = _mm_set1_ps(static_cast<float>(blockWidth));
  const __m128i mask = LastFourMask(blockWidth);
  const std::int32_t groups = (blockWidth + 3) / 4;
  for (std::int32_t i = 0; i < count; ++i) {
    const __m128i sum = WideSum(source + columns[i], groups, mask);
    const __m128i mean = _mm_cvttps_epi32(_mm_div_ps(_mm_cvtepi32_ps(sum), divisor));
    const __m128i words = _mm_packs_epi32(mean, mean);
    result[i] = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
  }
}

void StreamSse2(const std::uint32_t* source, std::int32_t count, std::uint32_t* result) {
  std::int32_t i = 0;
  for (; i < count && reinterpret_cast<std::uintptr_t>(result + i) % 64 != 0; ++i) {
    result[i] = source[i];
  }
  for (; i <= count - 16; i += 16) {
    auto* line = reinterpret_cast<__m128i*>(result + i);
    _mm_stream_si128(line, Load(source + i));
    _mm_stream_si128(line + 1, Load(source + i + 4));
    _mm_stream_si128(line + 2, Load(source + i + 8));
    _mm_stream_si128(line + 3, Load(source + i + 12));
  }
  for (; i < count; ++i) result[i] = source[i];
}

void SettleSse2() { _mm_sfence(); }

const FastRows kFastRowsSse2 = {
    VectorLevel::kSse2, 4,        1,          ColumnsSse2, PickSse2, AverageNarrow,
    AverageWideSse2,    Recolour, StreamSse2, SettleSse2};
