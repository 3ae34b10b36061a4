// Access to eight pixels of a row at a time, and to no word beyond it.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstring>

#include "effects/blur_rows.h"

namespace blur_avx2 {

constexpr std::int32_t kLanes = 8;

VARNELL_AVX2 inline __m256i Load(const std::uint32_t* words) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(words));
}

VARNELL_AVX2 inline void Store(std::uint32_t* words, __m256i value) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(words), value);
}

// The first `count` of eight words, up to all; the rest are 0.
VARNELL_AVX2 inline __m256i LoadSome(const std::uint32_t* words, std::int32_t count) {
  if (count >= kLanes) return Load(words);
  std::uint32_t some[kLanes];
  Store(some, _mm256_setzero_si256());
  std::memcpy(some, words, static_cast<std::size_t>(count) * 4);
  return Load(some);
}

VARNELL_AVX2 inline void StoreSome(std::uint32_t* words, __m256i value, std::int32_t count) {
  if (count >= kLanes) return Store(words, value);
  std::uint32_t some[kLanes];
  Store(some, value);
  std::memcpy(words, some, static_cast<std::size_t>(count) * 4);
}

// A row that its border pixels continue.
class EndlessRow {
 public:
  VARNELL_AVX2 inline EndlessRow(const std::uint32_t* row, std::int32_t width)
      : row_(row), width_(width) {
    Store(before_, _mm256_set1_epi32(static_cast<int>(row[0])));
    Store(behind_, _mm256_set1_epi32(static_cast<int>(row[width - 1])));
  }

  // The eight pixels from `first` on.
  VARNELL_AVX2 inline __m256i At(std::int32_t first) {
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

}  // namespace blur_avx2
