// The inner loops of the resampler in vector instructions: eight pixels at a time, one in each
// lane.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pixels/recolouring.h"
#include "plugin/processor.h"
#include "resample/fixed_weights.h"

inline constexpr std::int32_t kLanes = 8;     // rows along which a kernel filters at once
inline constexpr std::int32_t kChannels = 3;  // red, green, blue, everywhere in this order

// A pair of neighbouring columns of eight rows: one word for each channel and row, the even
// column's channel in its low half, the odd one's in its high half.
using SpreadPair = std::uint32_t[kChannels][kLanes];

// Eight columns of a pair of rows: two bytes for each channel and column, the even row's first.
using RingBlock = std::uint8_t[kChannels][2 * kLanes];

// Channels of a piece that the coarse weights, and the fine ones, left open.
struct OpenChannels {
  std::int32_t coarse = 0;
  std::int32_t fine = 0;
};

// A piece of a row of results, columns first..first + count - 1, of which `first` is a multiple of
// 8.
struct Piece {
  std::int32_t first, count;
  Rounding rounding;  // of all its lists
  std::int32_t bits;  // of all its lists
};
inline constexpr std::int32_t kLongestAlong = 64;  // columns
inline constexpr std::int32_t kLongestDown = 512;
inline constexpr std::int32_t kMostPlaces = 64;  // of columns along, of eight columns down

struct LaneKernels {
  VectorLevel level;

  // Takes eight rows of `width` pixel words apart, in pairs first..last - 1; a missing odd column
  // reads as black. Reads only pixels of the rows; not for kNone.
  void (*spread)(const std::uint32_t* const rows[kLanes], PixelLayout layout, std::int32_t width,
                 std::int32_t first, std::int32_t last, SpreadPair* pairs);

  // Filters along eight rows, taken apart, at most kLongestAlong columns of the result. Its four
  // pairs of rows lie `stride` blocks apart; what fills the last block up is 0.
  OpenChannels (*along)(const FixedWeights& lists, const SpreadPair* pairs, Piece piece,
                        RingBlock* result, std::size_t stride);

  // Filters down columns of the pairs of rows that the single list tells, from its first on, into a
  // piece of at most kLongestDown opaque words; not for kNone.
  OpenChannels (*down)(const FixedWeights& list, const RingBlock* const* pairs, Piece piece,
                       PixelLayout layout, std::uint32_t* result);

  // result[i] = the recoloured source[columns[i]]. Columns grow by 0 or 1. Reads pixels
  // columns[i]..columns[i] + 7 of the first `reaching`.
  void (*pick)(const std::uint32_t* source, const std::int32_t* columns, std::int32_t reaching,
               std::int32_t count, const Recolouring& change, std::uint32_t* result);
};

// Null when there is nothing but the definition: for kScalar, and on other processors.
const LaneKernels* LaneKernelsFor(VectorLevel level);

#if defined(__i386__) || defined(__x86_64__)
extern const LaneKernels kLaneKernelsSse2;
extern const LaneKernels kLaneKernelsAvx2;
#endif
