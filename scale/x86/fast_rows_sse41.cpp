#include <immintrin.h>

#include "scale/x86/fast_rows_x86.h"

namespace {

VARNELL_SSE41 __m128i Load(const std::uint32_t* pixels) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
}
VARNELL_SSE41 void Store(std::uint32_t* pixels, __m128i words) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(pixels), words);
}

// Brings equal bytes of four pixels together, with 0 for those after the first `pixels`.
VARNELL_SSE41 __m128i Together(std::int32_t pixels) {
  const __m128i all = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  const __m128i limit = _mm_set1_epi8(static_cast<char>(4 * pixels - 1));
  return _mm_or_si128(all, _mm_cmpgt_epi8(all, limit));
}

// The four bytes' sums, each in two 16-bit parts: at most 64·255. Single: the block has only the
// last four pixels.
template <bool single>
[[gnu::always_inline]] VARNELL_SSE41 inline __m128i PartSums(const std::uint32_t* block,
                                                             std::int32_t before, __m128i four,
                                                             __m128i last) {
  const __m128i ones = _mm_set1_epi8(1);
  if (single) return _mm_maddubs_epi16(_mm_shuffle_epi8(Load(block), last), ones);
  __m128i sums = _mm_setzero_si128();
  for (std::int32_t g = 0; g < before; ++g, block += 4) {
    sums = _mm_add_epi16(sums, _mm_maddubs_epi16(_mm_shuffle_epi8(Load(block), four), ones));
  }
  return _mm_add_epi16(sums, _mm_maddubs_epi16(_mm_shuffle_epi8(Load(block), last), ones));
}

// The sums of two blocks, at most 128·255 each.
VARNELL_SSE41 __m128i SumsOfTwo(__m128i a, __m128i b) {
  const __m128i ones = _mm_set1_epi16(1);
  return _mm_packs_epi32(_mm_madd_epi16(a, ones), _mm_madd_epi16(b, ones));
}

template <bool single>
VARNELL_SSE41 void Average(const std::uint32_t* source, const std::int32_t* columns,
                           std::int32_t count, std::int32_t blockWidth, std::uint32_t* result) {
  const Division division = DivisionBy(blockWidth);
  const __m128i multiplier = _mm_set1_epi16(static_cast<short>(division.multiplier));
  const __m128i shift = _mm_cvtsi32_si128(division.shift);
  const __m128i four = Together(4);
  const __m128i last = Together((blockWidth - 1) % 4 + 1);
  const std::int32_t before = (blockWidth - 1) / 4;
  for (std::int32_t i = 0; i < count; i += 4) {
    // The last four may overlap the ones before.
    const std::int32_t at = i < count - 4 ? i : count - 4;
    const std::int32_t* x0 = columns + at;
    const __m128i ab = SumsOfTwo(PartSums<single>(source + x0[0], before, four, last),
                                 PartSums<single>(source + x0[1], before, four, last));
    const __m128i cd = SumsOfTwo(PartSums<single>(source + x0[2], before, four, last),
                                 PartSums<single>(source + x0[3], before, four, last));
    Store(result + at, _mm_packus_epi16(_mm_srl_epi16(_mm_mulhi_epu16(ab, multiplier), shift),
                                        _mm_srl_epi16(_mm_mulhi_epu16(cd, multiplier), shift)));
  }
}

VARNELL_SSE41 void AverageNarrow(const std::uint32_t* source, const std::int32_t* columns,
                                 std::int32_t count, std::int32_t blockWidth,
                                 std::uint32_t* result) {
  const auto average = blockWidth <= 4 ? Average<true> : Average<false>;
  average(source, columns, count, blockWidth, result);
}

VARNELL_SSE41 void Recolour(const Recolouring& change, const std::uint32_t* source,
                            std::int32_t count, std::uint32_t* result) {
  const __m128i opaque = _mm_set1_epi32(static_cast<std::int32_t>(change.opaque));
  alignas(16) std::uint8_t order[16];
  for (int k = 0; k < 16; ++k) {
    const std::uint8_t byte = change.byteOrder[k % 4];
    order[k] = byte == 0x80 ? byte : static_cast<std::uint8_t>(byte + k / 4 * 4);
  }
  const __m128i shuffle = _mm_load_si128(reinterpret_cast<const __m128i*>(order));
  std::int32_t i = 0;
  for (; i <= count - 4; i += 4) {
    Store(result + i, _mm_or_si128(_mm_shuffle_epi8(Load(source + i), shuffle), opaque));
  }
  for (; i < count; ++i) result[i] = Recoloured(change, source[i]);
}

}  // namespace

const FastRows kFastRowsSse41 = {
    VectorLevel::kSse41, 4,        1,          ColumnsSse2, PickSse2, AverageNarrow,
    AverageWideSse2,     Recolour, StreamSse2, SettleSse2};
