// Tap weights as integers, for sums of eight pixels at a time: coarse ones that decide nearly every
// channel, and fine ones that decide most of the others.
#pragma once

#include <cstdint>

#include "resample/contributions.h"
#include "resample/lane_piece.h"

// What belongs to one list, beside its weights.
struct FixedHead {
  std::int32_t firstPair;  // of source pixels: the first weight is that of pixel 2·firstPair
  std::int32_t bits;       // at most 20; the same for every eight lists
  std::int32_t ownBits;    // what the list would have alone
  std::int32_t twin;       // how many lists before there is one with the same weights; 0: unknown
  std::int32_t upper;      // what coarse sums need to become upper bounds,
  std::int32_t window;     // and how much too high those may be: 0 for kExact and kMean
  std::int32_t fineUpper;  // the same for fine sums
  std::int32_t fineWindow;
  float total;       // of the list
  float reciprocal;  // of the total, for kMean
};

// From the first list on, so many share a scale.
inline constexpr std::int32_t kListGroup = 8;

// The lists of one axis, or a single list. Every list has the weights of the same number of pairs,
// with weights of 0 where it has no taps; the low half of a pair's word belongs to the even pixel.
//
// With n = weight / total, a list's channel is the integer part of 1/2 plus the sum of n·c, give or
// take what the definition's floats round. Coarse weights are n·2^bits, rounded; fine ones are what
// that left, times 2^fineBits, rounded. With d for what is left, the coarse sum lacks the sum of
// d·c: that is 127.5·sum(d), which can be added, and at most 127.5·sum(|d|) more or less. So with
// an allowance E for that and for the floats,
//   upper = 2^(bits - 1) + 127.5·sum(d) + E
// makes the sum an upper bound of 2^bits·channel that is at most 2·E too high. Unless its last
// `bits` bits are below window = 2·E, the channel is known. It is likewise with the fine sum.
struct FixedWeights {
  bool areMeans;          // kMean, which is then right for all lists
  std::int32_t fineBits;  // at most 15
  std::int32_t pairs;     // per list
  FixedHead* heads;       // one per list
  std::uint32_t* coarse;  // `pairs` per list
  std::uint32_t* fine;    // `pairs` per list
  float* weights;         // 2·pairs per list: the lists' own
};

// The widest list of `count`, in pairs of source pixels; at least 1.
std::int32_t WidestList(const ContributionList* lists, std::int32_t count);

// Fills in `fixed`, whose `pairs` is WidestList and whose arrays have room for `count` lists and
// are overwritten. sourceSize: pixels along the axis. Weights that no integers come near to leave
// every channel open; none may be above 1e36.
void FixWeights(const ContributionList* lists, std::int32_t count, std::int32_t sourceSize,
                FixedWeights& fixed);

// Whether two lists have the same weights, up to an even number of pixels.
bool AreTwins(const ContributionList& a, const ContributionList& b);

// Which share of channels, of evenly distributed sums, the coarse weights of a list would leave
// open.
double ShareLeftOpen(const ContributionList& list);

// How the channels of some of its lists come from their sums.
Rounding RoundingOf(const FixedWeights& fixed, std::int32_t first, std::int32_t count);
