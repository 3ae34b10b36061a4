// Eight 32-bit lanes in one AVX2 register. Operations named after quarters work in both halves of
// four lanes alike.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstring>

#include "pixels/recolouring.h"
#include "plugin/processor.h"

#define LANES_FUNCTION VARNELL_AVX2 inline
#define LANES_INLINE [[gnu::always_inline]] VARNELL_AVX2 inline

namespace {

using Lanes = __m256i;

LANES_INLINE Lanes Load(const void* at) {
  return _mm256_loadu_si256(static_cast<const __m256i*>(at));
}
LANES_INLINE void Store(void* at, Lanes a) { _mm256_storeu_si256(static_cast<__m256i*>(at), a); }

// Four lanes from each address.
LANES_INLINE Lanes LoadHalves(const void* low, const void* high) {
  const __m128i first = _mm_loadu_si128(static_cast<const __m128i*>(low));
  const __m128i second = _mm_loadu_si128(static_cast<const __m128i*>(high));
  return _mm256_inserti128_si256(_mm256_castsi128_si256(first), second, 1);
}
LANES_INLINE void StoreHalves(void* low, void* high, Lanes a) {
  _mm_storeu_si128(static_cast<__m128i*>(low), _mm256_castsi256_si128(a));
  _mm_storeu_si128(static_cast<__m128i*>(high), _mm256_extracti128_si256(a, 1));
}

// The first four bytes of each half, the second ones 16 bytes after the first.
LANES_INLINE void StoreQuarters(std::uint8_t* at, Lanes a) {
  const std::int32_t low = _mm_cvtsi128_si32(_mm256_castsi256_si128(a));
  const std::int32_t high = _mm_cvtsi128_si32(_mm256_extracti128_si256(a, 1));
  std::memcpy(at, &low, sizeof low);
  std::memcpy(at + 16, &high, sizeof high);
}

// Sixteen bytes as halves of lanes.
LANES_INLINE Lanes Widened(const std::uint8_t* at) {
  return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)));
}

// One bit for each of 32 bytes that is not 0.
LANES_INLINE std::uint32_t NotZero(const std::uint8_t* at) {
  const __m256i isZero = _mm256_cmpeq_epi8(Load(at), _mm256_setzero_si256());
  return ~static_cast<std::uint32_t>(_mm256_movemask_epi8(isZero));
}

LANES_INLINE Lanes Zero() { return _mm256_setzero_si256(); }
LANES_INLINE Lanes Broadcast(std::uint32_t a) {
  return _mm256_set1_epi32(static_cast<std::int32_t>(a));
}
LANES_INLINE Lanes Add(Lanes a, Lanes b) { return _mm256_add_epi32(a, b); }
LANES_INLINE Lanes Subtract(Lanes a, Lanes b) { return _mm256_sub_epi32(a, b); }
LANES_INLINE Lanes And(Lanes a, Lanes b) { return _mm256_and_si256(a, b); }
LANES_INLINE Lanes Or(Lanes a, Lanes b) { return _mm256_or_si256(a, b); }
// Of b, what a is not.
LANES_INLINE Lanes AndNot(Lanes a, Lanes b) { return _mm256_andnot_si256(a, b); }
LANES_INLINE Lanes ShiftRight(Lanes a, __m128i bits) { return _mm256_sra_epi32(a, bits); }

// The sum of the products of the lanes' halves.
LANES_INLINE Lanes MultiplyPairs(Lanes a, Lanes b) { return _mm256_madd_epi16(a, b); }

// One bit for each lane where a < b.
LANES_INLINE unsigned Below(Lanes a, Lanes b) {
  const __m256i isBelow = _mm256_cmpgt_epi32(b, a);
  return static_cast<unsigned>(_mm256_movemask_ps(_mm256_castsi256_ps(isBelow)));
}

// (a + offset)·factor, truncated.
LANES_INLINE Lanes Scaled(Lanes a, float offset, float factor) {
  const __m256 sum = _mm256_add_ps(_mm256_cvtepi32_ps(a), _mm256_set1_ps(offset));
  return _mm256_cvttps_epi32(_mm256_mul_ps(sum, _mm256_set1_ps(factor)));
}

// Lanes limited to 0..255: of each half the four bytes of a, of b, of c, and of d.
LANES_INLINE Lanes Bytes(Lanes a, Lanes b, Lanes c, Lanes d) {
  return _mm256_packus_epi16(_mm256_packs_epi32(a, b), _mm256_packs_epi32(c, d));
}
// Turns those into lanes that hold a byte of a, of b, of c, and of d.
LANES_INLINE Lanes Woven(Lanes bytes) {
  const __m256i order = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
  return _mm256_shuffle_epi8(bytes, order);
}

LANES_INLINE Lanes WeaveLow16(Lanes a, Lanes b) { return _mm256_unpacklo_epi16(a, b); }
LANES_INLINE Lanes WeaveHigh16(Lanes a, Lanes b) { return _mm256_unpackhi_epi16(a, b); }
LANES_INLINE Lanes WeaveLow32(Lanes a, Lanes b) { return _mm256_unpacklo_epi32(a, b); }
LANES_INLINE Lanes WeaveHigh32(Lanes a, Lanes b) { return _mm256_unpackhi_epi32(a, b); }
LANES_INLINE Lanes WeaveLow64(Lanes a, Lanes b) { return _mm256_unpacklo_epi64(a, b); }
LANES_INLINE Lanes WeaveHigh64(Lanes a, Lanes b) { return _mm256_unpackhi_epi64(a, b); }

// The low halves of each lane of a and of b, and the high ones.
LANES_INLINE Lanes LowHalves(Lanes a, Lanes b) {
  return _mm256_blend_epi16(a, _mm256_slli_epi32(b, 16), 0xAA);
}
LANES_INLINE Lanes HighHalves(Lanes a, Lanes b) {
  return _mm256_blend_epi16(_mm256_srli_epi32(a, 16), b, 0xAA);
}
// The bytes of each half of a lane, as halves.
LANES_INLINE Lanes LowBytes(Lanes a) { return _mm256_and_si256(a, _mm256_set1_epi16(0xFF)); }
LANES_INLINE Lanes HighBytes(Lanes a) { return _mm256_srli_epi16(a, 8); }

// Any of eight pixels, by places of 0..7.
LANES_INLINE Lanes Picked(const std::uint32_t* source, const std::int32_t* places) {
  return _mm256_permutevar8x32_epi32(Load(source), Load(places));
}

// Words in another layout, made opaque.
class Recolourer {
 public:
  VARNELL_AVX2 explicit Recolourer(const Recolouring& change) {
    alignas(32) std::uint8_t order[32];
    for (int k = 0; k < 32; ++k) {
      const std::uint8_t byte = change.byteOrder[k % 4];
      order[k] = byte == 0x80 ? byte : static_cast<std::uint8_t>(byte + k % 16 / 4 * 4);
    }
    order_ = Load(order);
    opaque_ = Broadcast(change.opaque);
  }
  LANES_INLINE Lanes operator()(Lanes words) const {
    return _mm256_or_si256(_mm256_shuffle_epi8(words, order_), opaque_);
  }

 private:
  Lanes order_, opaque_;
};

}  // namespace
