// The products of channels and one weight in 16-bit integers, where those are exact.
#pragma once

#include <cstdint>

// For every channel c of 0..255, the truncated product c * weight is
//   (c & whole) + (c * multiplier >> 16), with step[i] added (wrapping) where c is value[i].
struct FixedShare {
  static constexpr int kMostPatches = 8;

  double weight = 0;
  std::uint16_t multiplier = 0;
  std::uint16_t whole = 0;  // 0 or 0xFFFF: the integer part of the weight
  int patches = 0;
  std::uint16_t value[kMostPatches] = {};
  std::uint16_t step[kMostPatches] = {};

  // All products are 0: a multiplier of 0 is that of weights below 1 / 65536, without patches.
  bool Nothing() const { return multiplier == 0 && whole == 0; }
};

// Finds the share of a weight; every one of the 256 products is checked. False, and the share is of
// no use, for weights outside [0, 2) and for the few that would need more patches: those whose
// products lie so close to integers that rounding lifts some of them up to it, and others not.
bool FindFixedShare(double weight, FixedShare& share);
