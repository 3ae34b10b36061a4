// What the AVX2 files of the smooth enlarger share.
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "plugin/processor.h"
#include "scale/smooth_rows.h"

// Enlarges a row two or four times with integers: true when that gives the floats' bits, and done;
// else nothing is written.
bool EnlargeSmoothRowExactly(const SmoothSourceRows& source, const TapWeights& down,
                             const SmoothTables& tables, unsigned char* result, std::int32_t width);

namespace {

// Lanes 0 to count - 1, or all of them.
VARNELL_AVX2 inline __m256i FirstLanes(std::int32_t count) {
  return _mm256_cmpgt_epi32(_mm256_set1_epi32(count), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
}

// Eight pixels of which `count`, or all if more, are read; the others are 0.
VARNELL_AVX2 inline __m256i LoadPixels(const unsigned char* address, std::int32_t count) {
  if (count >= 8) return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(address));
  return _mm256_maskload_epi32(reinterpret_cast<const int*>(address), FirstLanes(count));
}

// Writes the first `count` of eight pixels, or all if there are more.
VARNELL_AVX2 inline void StorePixels(unsigned char* address, __m256i pixels, std::int32_t count) {
  if (count >= 8) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(address), pixels);
  } else {
    _mm256_maskstore_epi32(reinterpret_cast<int*>(address), FirstLanes(count), pixels);
  }
}

}  // namespace
