// What the weights of a tap list are like. With n = weight / total.
#pragma once

#include <cstdint>

#include "resample/contributions.h"

// Of a list with taps.
inline std::int32_t FirstPixel(const ContributionList& list) { return list.entries[0].pixel; }
inline std::int32_t LastPixel(const ContributionList& list) {
  return list.entries[list.count - 1].pixel;
}

inline double PowerOfTwo(std::int32_t exponent) {
  return static_cast<double>(std::int64_t{1} << exponent);
}

// To the nearest integer, in doubles up to 2^50.
inline double Rounded(double value) {
  constexpr double kNoFractions = 6755399441055744.0;  // 1.5·2^52
  return (value + kNoFractions) - kNoFractions;
}

inline double ReciprocalOf(const ContributionList& list) {
  return 1.0 / static_cast<double>(list.total);
}

// What decides about the scale of a list.
struct Extremes {
  double weight = 0.0;  // largest |n|
  double sum = 0.0;     // of all |n|
};
Extremes ExtremesOf(const ContributionList& list);

// Whether every n is a multiple of 2^-bits and the definition's floats round nothing.
bool IsExact(const ContributionList& list, std::int32_t bits);

// Whether every list's channel is the mean of neighbouring pixels.
bool AreMeans(const ContributionList* lists, std::int32_t count);

// Whether two lists with taps have the same weights, of pixels that lie in the same way.
bool AreAlike(const ContributionList& a, const ContributionList& b);

// How many lists before one of several lies one that is like it and may have a twin; 0 for none.
// Simple scales repeat their weights after a few lists.
template <typename MayBe>
std::int32_t TwinOf(const ContributionList* lists, std::int32_t index, MayBe mayBe) {
  constexpr std::int32_t kMost = 4;
  for (std::int32_t before = 1; before <= kMost && before <= index; ++before) {
    if (mayBe(index - before) && AreAlike(lists[index], lists[index - before])) return before;
  }
  return 0;
}
