// Down columns by small exact weights, sixteen pixels at a time: a byte is enough for each weight,
// and sixteen bits for each sum. Included after lanes_avx2.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "resample/lane_kernels.h"
#include "resample/x86/lane_words.h"

namespace {

inline constexpr std::int32_t kSmallBits = 6;  // behind the channel
inline constexpr std::int32_t kMostSmallPairs = 4;

// A list's weights in bytes, those of a pair in each 16 bits.
using SmallWeights = std::int16_t[kMostSmallPairs];

// False where they need more. Weights are at most 2^kSmallBits all together, or a bit more: sums of
// 255 times as much, with half of 2^kSmallBits, have 15 bits then.
inline bool FindSmallWeights(const FixedWeights& list, SmallWeights& small) {
  const std::int32_t shift = list.heads->bits - kSmallBits;
  if (list.pairs > kMostSmallPairs || shift < 0) return false;
  std::int32_t size = 0;
  for (std::int32_t k = 0; k < list.pairs; ++k) {
    const auto even = static_cast<std::int16_t>(list.coarse[k] & 0xFFFF);
    const auto odd = static_cast<std::int16_t>(list.coarse[k] >> 16);
    if (((even | odd) & ((1 << shift) - 1)) != 0) return false;
    size += (even < 0 ? -even : even) + (odd < 0 ? -odd : odd);
    const auto low = static_cast<unsigned>(even >> shift) & 0xFFU;
    const auto high = static_cast<unsigned>(odd >> shift) & 0xFFU;
    small[k] = static_cast<std::int16_t>(low | high << 8);
  }
  return size >> shift <= 127;
}

// A channel of two neighbouring blocks.
LANES_INLINE Lanes TwoBlocks(const RingBlock* blocks, int channel) {
  return LoadHalves(blocks[0][channel], blocks[1][channel]);
}

// A channel of sixteen columns in 16 bits, not limited.
template <int pairs>
LANES_INLINE Lanes SmallChannel(const RingBlock* const (&blocks)[pairs], int channel,
                                const SmallWeights& small) {
  Lanes sum = _mm256_maddubs_epi16(TwoBlocks(blocks[0], channel), _mm256_set1_epi16(small[0]));
  for (int k = 1; k < pairs; ++k) {
    const Lanes weights = _mm256_set1_epi16(small[k]);
    sum = _mm256_add_epi16(sum, _mm256_maddubs_epi16(TwoBlocks(blocks[k], channel), weights));
  }
  const Lanes half = _mm256_set1_epi16(1 << (kSmallBits - 1));
  return _mm256_srai_epi16(_mm256_add_epi16(sum, half), kSmallBits);
}

// Words of which a has the first and third bytes and b the second and fourth, eight of each in
// either half.
LANES_INLINE void StoreSixteen(Lanes a, Lanes b, std::uint32_t* result) {
  const Lanes low = _mm256_unpacklo_epi8(a, b), high = _mm256_unpackhi_epi8(a, b);
  const Lanes first = WeaveLow16(low, high), second = WeaveHigh16(low, high);
  Store(result, _mm256_permute2x128_si256(first, second, 0x20));
  Store(result + 8, _mm256_permute2x128_si256(first, second, 0x31));
}

template <PixelLayout layout, int pairs>
LANES_FUNCTION void FilterDownSixteens(const SmallWeights& small, const RingBlock* const* rows,
                                       Piece piece, std::uint32_t* result) {
  const RingBlock* blocks[pairs];
  for (int k = 0; k < pairs; ++k) blocks[k] = rows[k] + piece.first / kLanes;
  for (std::int32_t left = piece.count; left > 0; left -= 2 * kLanes) {
    const Lanes red = SmallChannel<pairs>(blocks, 0, small);
    const Lanes green = SmallChannel<pairs>(blocks, 1, small);
    const Lanes blue = SmallChannel<pairs>(blocks, 2, small);
    const Lanes opaque = _mm256_set1_epi16(255);
    if (layout == PixelLayout::kRedFirst) {
      StoreSixteen(_mm256_packus_epi16(red, blue), _mm256_packus_epi16(green, opaque), result);
    } else if (layout == PixelLayout::kAlphaFirst) {
      StoreSixteen(_mm256_packus_epi16(opaque, green), _mm256_packus_epi16(red, blue), result);
    } else {
      StoreSixteen(_mm256_packus_epi16(blue, red), _mm256_packus_epi16(green, Zero()), result);
    }
    for (int k = 0; k < pairs; ++k) blocks[k] += 2;
    result += 2 * kLanes;
  }
}

template <PixelLayout layout>
LANES_FUNCTION void FilterDownByPairs(const SmallWeights& small, std::int32_t pairs,
                                      const RingBlock* const* rows, Piece piece,
                                      std::uint32_t* result) {
  switch (pairs) {
    case 1:
      return FilterDownSixteens<layout, 1>(small, rows, piece, result);
    case 2:
      return FilterDownSixteens<layout, 2>(small, rows, piece, result);
    case 3:
      return FilterDownSixteens<layout, 3>(small, rows, piece, result);
    default:
      return FilterDownSixteens<layout, kMostSmallPairs>(small, rows, piece, result);
  }
}

// The sixteens of a piece, as far as there are whole ones; how many columns that was.
LANES_FUNCTION std::int32_t FilterDownBySmallWeights(const FixedWeights& list,
                                                     const RingBlock* const* pairs, Piece piece,
                                                     PixelLayout layout, std::uint32_t* result) {
  SmallWeights small;
  if (piece.rounding != Rounding::kExact || !FindSmallWeights(list, small)) return 0;
  piece.count -= piece.count % (2 * kLanes);
  switch (layout) {
    case PixelLayout::kRedFirst:
      FilterDownByPairs<PixelLayout::kRedFirst>(small, list.pairs, pairs, piece, result);
      break;
    case PixelLayout::kAlphaFirst:
      FilterDownByPairs<PixelLayout::kAlphaFirst>(small, list.pairs, pairs, piece, result);
      break;
    default:
      FilterDownByPairs<PixelLayout::kBlueFirst>(small, list.pairs, pairs, piece, result);
      break;
  }
  return piece.count;
}

}  // namespace
