// Access to four pixels of a row at a time, and to no word beyond it.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstring>

#include "effects/blur_rows.h"

namespace blur_sse2 {

constexpr std::int32_t kLanes = 4;

inline __m128i Load(const std::uint32_t* words) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(words));
}

inline void Store(std::uint32_t* words, __m128i value) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(words), value);
}

// The first `count` of four words, up to all; the rest are 0.
inline __m128i LoadSome(const std::uint32_t* words, std::int32_t count) {
  if (count >= kLanes) return Load(words);
  std::uint32_t some[kLanes];
  Store(some, _mm_setzero_si128());
  std::memcpy(some, words, static_cast<std::size_t>(count) * 4);
  return Load(some);
}

inline void StoreSome(std::uint32_t* words, __m128i value, std::int32_t count) {
  if (count >= kLanes) return Store(words, value);
  std::uint32_t some[kLanes];
  Store(some, value);
  std::memcpy(words, some, static_cast<std::size_t>(count) * 4);
}

// A row that its border pixels continue.
class EndlessRow {
 public:
  EndlessRow(const std::uint32_t* row, std::int32_t width) : row_(row), width_(width) {
    Store(before_, _mm_set1_epi32(static_cast<int>(row[0])));
    Store(behind_, _mm_set1_epi32(static_cast<int>(row[width - 1])));
  }

  // The four pixels from `first` on.
  __m128i At(std::int32_t first) {
    if (first >= 0 && first <= width_ - kLanes) return Load(row_ + first);
    return Load(first >= width_ - 1 ? behind_ : first <= 1 - kLanes ? before_ : Mixed(first));
  }

 private:
  const std::uint32_t* Mixed(std::int32_t first) {
    for (std::int32_t i = 0; i < kLanes; ++i) mixed_[i] = row_[ClampIndex(first + i, width_)];
    return mixed_;
  }

  const std::uint32_t* row_;
  std::int32_t width_;
  std::uint32_t before_[kLanes], behind_[kLanes], mixed_[kLanes];
};

}  // namespace blur_sse2
