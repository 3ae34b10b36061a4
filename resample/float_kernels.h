// The inner loops of the resampler in fused operations on single precision: eight pixels at a time,
// one in each lane, for lists of few taps.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pixels/pixel_format.h"
#include "plugin/processor.h"
#include "resample/float_weights.h"
#include "resample/lane_piece.h"

// One column of eight rows, taken apart.
using FloatColumn = float[kChannels][kLanes];

// Eight columns of a row: 0..255 each. To kernels these are numbers of half precision, without an
// exponent, and so exactly 2^-24 of what they are, which weights down columns make up for.
using HalfBlock = std::uint16_t[kChannels][kLanes];

struct FloatKernels {
  VectorLevel level;

  // Takes eight rows of `width` pixel words apart, in columns first..last - 1. Reads only pixels of
  // the rows; not for kNone.
  void (*spread)(const std::uint32_t* const rows[kLanes], PixelLayout layout, std::int32_t width,
                 std::int32_t first, std::int32_t last, FloatColumn* columns);

  // Filters along eight rows, taken apart, at most kLongestAlong columns of the result. Its eight
  // rows lie `stride` blocks apart; what fills the last block up is 0.
  void (*along)(const FloatWeights& lists, const FloatColumn* columns, Piece piece,
                HalfBlock* result, std::size_t stride, OpenChannels& counts);

  // Filters down columns of the rows that the single list tells, from its first on, into a piece of
  // at most kLongestDown opaque words; not for kNone.
  void (*down)(const FloatWeights& list, const HalfBlock* const* rows, Piece piece,
               PixelLayout layout, std::uint32_t* result, OpenChannels& counts);
};

// Null where the level has none.
const FloatKernels* FloatKernelsFor(VectorLevel level);

#if defined(__i386__) || defined(__x86_64__)
extern const FloatKernels kFloatKernelsAvx2;
#endif
