// Tap weights in single precision, for sums of eight pixels at a time that decide nearly every
// channel. For lists of few taps: what a sum may be off by grows with them.
#pragma once

#include <cstdint>

#include "resample/contributions.h"
#include "resample/lane_piece.h"

// What belongs to one list, beside its weights.
struct FloatHead {
  std::int32_t first;   // source pixel of the first weight
  std::int32_t twin;    // how many lists before there is one with the same weights; 0: unknown
  std::int32_t window;  // how much too high sums may be: 0 where they are exact
  float start;          // what they start with to become upper bounds
  float total;          // of the list
};

inline constexpr std::int32_t kFloatBits = 20;  // behind the channel
inline constexpr std::int32_t kHalfBits = 24;   // that weights down columns have more

// The lists of one axis, or a single list. Every list has the weights of the same number of source
// pixels, with weights of 0 where it has no taps.
//
// With n = weight / total, a list's channel is the integer part of v = 1/2 plus the sum of n·c,
// give or take what the definition's floats round. Scaled weights w are n·2^kFloatBits, rounded;
// down columns they are 2^kHalfBits times as large, for numbers c that are as much smaller. Sums
// start with
//   start = 2^(kFloatBits - 1) + E
// and add the products one after the other, each product and addition rounded at once, as fused
// operations do it. None of these roundings is more than 2^-24 times the largest that the sum can
// be then. E is the sum of those, of what w are rounded by, times 255, of what rounding the sum to
// an integer may take, and of what the definition's floats round. So that integer is an upper bound
// of 2^kFloatBits·v that is at most window = 2·E too high. Unless its last kFloatBits bits are
// below the window, the channel is known; otherwise the definition has to decide.
struct FloatWeights {
  std::int32_t taps;  // per list
  FloatHead* heads;   // one per list
  float* scaled;      // `taps` per list
  float* weights;     // `taps` per list: the lists' own
};

// The widest list of `count`, in source pixels; at least 1.
std::int32_t WidestListInPixels(const ContributionList* lists, std::int32_t count);

// Fills in `floats`, whose `taps` is WidestListInPixels and whose arrays have room for `count`
// lists and are overwritten. sourceSize: pixels along the axis. No weight may be above 1e36.
// Lists whose weights, signs aside, add up to 4 times their total or more leave every channel open.
void FixFloats(const ContributionList* lists, std::int32_t count, std::int32_t sourceSize,
               Axis axis, FloatWeights& floats);

// How the channels of some of its lists come from their sums: kExact or kChecked.
Rounding RoundingOf(const FloatWeights& floats, std::int32_t first, std::int32_t count);
