// The inner loops of the resampler in vector instructions: eight pixels at a time, one in each
// lane.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pixels/recolouring.h"
#include "plugin/processor.h"
#include "resample/fixed_weights.h"
#include "resample/lane_piece.h"

// A pair of neighbouring columns of eight rows: one word for each channel and row, the even
// column's channel in its low half, the odd one's in its high half.
using SpreadPair = std::uint32_t[kChannels][kLanes];

// Eight columns of a pair of rows: two bytes for each channel and column, the even row's first.
using RingBlock = std::uint8_t[kChannels][2 * kLanes];

// Eight neighbouring pixels of the result, each one of eight neighbouring ones of the source.
struct PickedEight {
  std::int32_t first, start;    // of the result's pixels, and of the source's
  std::int32_t places[kLanes];  // 0..7 after the start
};

struct LaneKernels {
  VectorLevel level;

  // Takes eight rows of `width` pixel words apart, in pairs first..last - 1; a missing odd column
  // reads as black. Reads only pixels of the rows; not for kNone.
  void (*spread)(const std::uint32_t* const rows[kLanes], PixelLayout layout, std::int32_t width,
                 std::int32_t first, std::int32_t last, SpreadPair* pairs);

  // Filters along eight rows, taken apart, at most kLongestAlong columns of the result. Its four
  // pairs of rows lie `stride` blocks apart; what fills the last block up is 0.
  void (*along)(const FixedWeights& lists, const SpreadPair* pairs, Piece piece, RingBlock* result,
                std::size_t stride, OpenChannels& counts);

  // Filters down columns of the pairs of rows that the single list tells, from its first on, into a
  // piece of at most kLongestDown opaque words; not for kNone.
  void (*down)(const FixedWeights& list, const RingBlock* const* pairs, Piece piece,
               PixelLayout layout, std::uint32_t* result, OpenChannels& counts);

  // Picks and recolours eights of pixels, of which a result pixel may be in two.
  void (*pick)(const std::uint32_t* source, const PickedEight* eights, std::int32_t count,
               const Recolouring& change, std::uint32_t* result);
};

// Null when there is nothing but the definition: for kScalar, and on other processors.
const LaneKernels* LaneKernelsFor(VectorLevel level);

#if defined(__i386__) || defined(__x86_64__)
extern const LaneKernels kLaneKernelsSse2;
extern const LaneKernels kLaneKernelsAvx2;
#endif
