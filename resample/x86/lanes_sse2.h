// Eight 32-bit lanes in two SSE2 registers of four. Operations are those of lanes_avx2.h, which
// describes them.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstring>

#include "pixels/recolouring.h"

#define LANES_FUNCTION inline
#define LANES_INLINE [[gnu::always_inline]] inline

namespace {

struct Lanes {
  __m128i low, high;
};

LANES_INLINE Lanes LoadHalves(const void* low, const void* high) {
  return {_mm_loadu_si128(static_cast<const __m128i*>(low)),
          _mm_loadu_si128(static_cast<const __m128i*>(high))};
}
LANES_INLINE void StoreHalves(void* low, void* high, Lanes a) {
  _mm_storeu_si128(static_cast<__m128i*>(low), a.low);
  _mm_storeu_si128(static_cast<__m128i*>(high), a.high);
}
LANES_INLINE Lanes Load(const void* at) {
  return LoadHalves(at, static_cast<const std::uint8_t*>(at) + 16);
}
LANES_INLINE void Store(void* at, Lanes a) {
  StoreHalves(at, static_cast<std::uint8_t*>(at) + 16, a);
}

LANES_INLINE void StoreQuarters(std::uint8_t* at, Lanes a) {
  const std::int32_t low = _mm_cvtsi128_si32(a.low);
  const std::int32_t high = _mm_cvtsi128_si32(a.high);
  std::memcpy(at, &low, sizeof low);
  std::memcpy(at + 16, &high, sizeof high);
}

LANES_INLINE Lanes Widened(const std::uint8_t* at) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
  return {_mm_unpacklo_epi8(bytes, _mm_setzero_si128()),
          _mm_unpackhi_epi8(bytes, _mm_setzero_si128())};
}

LANES_INLINE std::uint32_t NotZero(const std::uint8_t* at) {
  const Lanes bytes = Load(at);
  const __m128i zero = _mm_setzero_si128();
  const auto low = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes.low, zero)));
  const auto high = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes.high, zero)));
  return ~(low | high << 16);
}

LANES_INLINE Lanes Zero() { return {_mm_setzero_si128(), _mm_setzero_si128()}; }
LANES_INLINE Lanes Broadcast(std::uint32_t a) {
  const __m128i all = _mm_set1_epi32(static_cast<std::int32_t>(a));
  return {all, all};
}
LANES_INLINE Lanes Add(Lanes a, Lanes b) {
  return {_mm_add_epi32(a.low, b.low), _mm_add_epi32(a.high, b.high)};
}
LANES_INLINE Lanes Subtract(Lanes a, Lanes b) {
  return {_mm_sub_epi32(a.low, b.low), _mm_sub_epi32(a.high, b.high)};
}
LANES_INLINE Lanes And(Lanes a, Lanes b) {
  return {_mm_and_si128(a.low, b.low), _mm_and_si128(a.high, b.high)};
}
LANES_INLINE Lanes Or(Lanes a, Lanes b) {
  return {_mm_or_si128(a.low, b.low), _mm_or_si128(a.high, b.high)};
}
LANES_INLINE Lanes AndNot(Lanes a, Lanes b) {
  return {_mm_andnot_si128(a.low, b.low), _mm_andnot_si128(a.high, b.high)};
}
LANES_INLINE Lanes ShiftRight(Lanes a, __m128i bits) {
  return {_mm_sra_epi32(a.low, bits), _mm_sra_epi32(a.high, bits)};
}
LANES_INLINE Lanes MultiplyPairs(Lanes a, Lanes b) {
  return {_mm_madd_epi16(a.low, b.low), _mm_madd_epi16(a.high, b.high)};
}
LANES_INLINE unsigned Below(Lanes a, Lanes b) {
  const __m128i isBelow = _mm_packs_epi16(
      _mm_packs_epi32(_mm_cmplt_epi32(a.low, b.low), _mm_cmplt_epi32(a.high, b.high)),
      _mm_setzero_si128());
  return static_cast<unsigned>(_mm_movemask_epi8(isBelow));
}

LANES_INLINE __m128i ScaledHalf(__m128i a, float offset, float factor) {
  const __m128 sum = _mm_add_ps(_mm_cvtepi32_ps(a), _mm_set1_ps(offset));
  return _mm_cvttps_epi32(_mm_mul_ps(sum, _mm_set1_ps(factor)));
}
LANES_INLINE Lanes Scaled(Lanes a, float offset, float factor) {
  return {ScaledHalf(a.low, offset, factor), ScaledHalf(a.high, offset, factor)};
}

LANES_INLINE Lanes Bytes(Lanes a, Lanes b, Lanes c, Lanes d) {
  return {_mm_packus_epi16(_mm_packs_epi32(a.low, b.low), _mm_packs_epi32(c.low, d.low)),
          _mm_packus_epi16(_mm_packs_epi32(a.high, b.high), _mm_packs_epi32(c.high, d.high))};
}
LANES_INLINE __m128i WovenHalf(__m128i bytes) {
  const __m128i ab = _mm_unpacklo_epi8(bytes, _mm_shuffle_epi32(bytes, 0x01));
  const __m128i cd = _mm_unpackhi_epi8(bytes, _mm_shuffle_epi32(bytes, 0x30));
  return _mm_unpacklo_epi16(ab, cd);
}
LANES_INLINE Lanes Woven(Lanes bytes) { return {WovenHalf(bytes.low), WovenHalf(bytes.high)}; }

LANES_INLINE Lanes WeaveLow16(Lanes a, Lanes b) {
  return {_mm_unpacklo_epi16(a.low, b.low), _mm_unpacklo_epi16(a.high, b.high)};
}
LANES_INLINE Lanes WeaveHigh16(Lanes a, Lanes b) {
  return {_mm_unpackhi_epi16(a.low, b.low), _mm_unpackhi_epi16(a.high, b.high)};
}
LANES_INLINE Lanes WeaveLow32(Lanes a, Lanes b) {
  return {_mm_unpacklo_epi32(a.low, b.low), _mm_unpacklo_epi32(a.high, b.high)};
}
LANES_INLINE Lanes WeaveHigh32(Lanes a, Lanes b) {
  return {_mm_unpackhi_epi32(a.low, b.low), _mm_unpackhi_epi32(a.high, b.high)};
}
LANES_INLINE Lanes WeaveLow64(Lanes a, Lanes b) {
  return {_mm_unpacklo_epi64(a.low, b.low), _mm_unpacklo_epi64(a.high, b.high)};
}
LANES_INLINE Lanes WeaveHigh64(Lanes a, Lanes b) {
  return {_mm_unpackhi_epi64(a.low, b.low), _mm_unpackhi_epi64(a.high, b.high)};
}

LANES_INLINE __m128i LowHalvesHalf(__m128i a, __m128i b) {
  return _mm_or_si128(_mm_and_si128(a, _mm_set1_epi32(0xFFFF)), _mm_slli_epi32(b, 16));
}
LANES_INLINE __m128i HighHalvesHalf(__m128i a, __m128i b) {
  return _mm_or_si128(_mm_srli_epi32(a, 16), _mm_andnot_si128(_mm_set1_epi32(0xFFFF), b));
}
LANES_INLINE Lanes LowHalves(Lanes a, Lanes b) {
  return {LowHalvesHalf(a.low, b.low), LowHalvesHalf(a.high, b.high)};
}
LANES_INLINE Lanes HighHalves(Lanes a, Lanes b) {
  return {HighHalvesHalf(a.low, b.low), HighHalvesHalf(a.high, b.high)};
}
LANES_INLINE Lanes LowBytes(Lanes a) {
  const __m128i mask = _mm_set1_epi16(0xFF);
  return {_mm_and_si128(a.low, mask), _mm_and_si128(a.high, mask)};
}
LANES_INLINE Lanes HighBytes(Lanes a) {
  return {_mm_srli_epi16(a.low, 8), _mm_srli_epi16(a.high, 8)};
}

LANES_INLINE Lanes Picked(const std::uint32_t* source, const std::int32_t* places) {
  const auto pixel = [=](int i) { return static_cast<std::int32_t>(source[places[i]]); };
  return {_mm_setr_epi32(pixel(0), pixel(1), pixel(2), pixel(3)),
          _mm_setr_epi32(pixel(4), pixel(5), pixel(6), pixel(7))};
}

class Recolourer {
 public:
  explicit Recolourer(const Recolouring& change) : opaque_(Broadcast(change.opaque)) {
    for (int channel = 0; channel < 3; ++channel) {
      from_[channel] = _mm_cvtsi32_si128(change.from[channel]);
      to_[channel] = _mm_cvtsi32_si128(change.to[channel]);
    }
  }
  LANES_INLINE Lanes operator()(Lanes words) const { return {Half(words.low), Half(words.high)}; }

 private:
  LANES_INLINE __m128i Half(__m128i words) const {
    __m128i result = opaque_.low;
    for (int channel = 0; channel < 3; ++channel) {
      const __m128i value =
          _mm_and_si128(_mm_srl_epi32(words, from_[channel]), _mm_set1_epi32(0xFF));
      result = _mm_or_si128(result, _mm_sll_epi32(value, to_[channel]));
    }
    return result;
  }

  Lanes opaque_;
  __m128i from_[3], to_[3];
};

}  // namespace
