// Pieces of rows, as the resampler's vector kernels take them.
#pragma once

#include <cstdint>

// How a channel comes from its sum.
enum class Rounding {
  kExact,    // shifted: the sum is what the weights say
  kChecked,  // shifted, unless it is too near to the next channel value to be sure
  kMean,     // divided: all weights are 1
};

// Columns first..first + count - 1 of a row of results, of which `first` is a multiple of 8.
struct Piece {
  std::int32_t first, count;
  Rounding rounding;  // of all its lists
  std::int32_t bits;  // of all its lists
};
inline constexpr std::int32_t kLanes = 8;          // rows along which a kernel filters at once
inline constexpr std::int32_t kLongestAlong = 32;  // columns
inline constexpr std::int32_t kLongestDown = 512;
inline constexpr std::int32_t kMostPlaces = 64;  // of columns along, of eight columns down

inline constexpr std::int32_t kChannels = 3;  // red, green, blue, everywhere in this order

// How many channels the first sums, and the finer ones, left open. Kernels add to it; those in
// single precision all three of a pixel.
struct OpenChannels {
  std::int64_t coarse = 0;
  std::int64_t fine = 0;
};
