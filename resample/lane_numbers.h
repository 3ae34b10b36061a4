// What the sums of RingPasses may be made of. A unit is what their kernels take as one: of columns
// before they filter along rows, of rows before they filter down columns.
#pragma once

#include <cstdint>

#include "resample/fixed_weights.h"
#include "resample/float_kernels.h"
#include "resample/float_weights.h"
#include "resample/lane_kernels.h"
#include "resample/list_facts.h"

// Integers, in two or three steps of precision: for any list.
struct IntegerNumbers {
  using Kernels = LaneKernels;
  using Weights = FixedWeights;
  using Columns = SpreadPair;
  using Block = RingBlock;
  static constexpr std::int32_t kPixels = 2;  // in a unit

  static const Kernels* KernelsFor(VectorLevel level) { return LaneKernelsFor(level); }
  static std::int32_t& UnitsIn(Weights& weights) { return weights.pairs; }
  static std::int32_t UnitsIn(const Weights& weights) { return weights.pairs; }
  static std::int32_t FirstUnit(const FixedHead& head) { return head.firstPair; }
  static std::int32_t BitsOf(const FixedHead& head) { return head.bits; }
  static std::int32_t Widest(const ContributionList* lists, std::int32_t count) {
    return WidestList(lists, count);
  }
  static std::int32_t MostUnitsOf(std::int32_t pixels) { return pixels / 2 + 1; }
  static bool AreTwins(const ContributionList& a, const ContributionList& b) {
    return ::AreTwins(a, b);
  }
  static void Fix(const ContributionList* lists, std::int32_t count, std::int32_t sourceSize, Axis,
                  Weights& weights) {
    FixWeights(lists, count, sourceSize, weights);
  }
};

// Single precision, in one step: for lists of few taps.
struct FloatNumbers {
  using Kernels = FloatKernels;
  using Weights = FloatWeights;
  using Columns = FloatColumn;
  using Block = HalfBlock;
  static constexpr std::int32_t kPixels = 1;

  static const Kernels* KernelsFor(VectorLevel level) { return FloatKernelsFor(level); }
  static std::int32_t& UnitsIn(Weights& weights) { return weights.taps; }
  static std::int32_t UnitsIn(const Weights& weights) { return weights.taps; }
  static std::int32_t FirstUnit(const FloatHead& head) { return head.first; }
  static std::int32_t BitsOf(const FloatHead&) { return kFloatBits; }
  static std::int32_t Widest(const ContributionList* lists, std::int32_t count) {
    return WidestListInPixels(lists, count);
  }
  static std::int32_t MostUnitsOf(std::int32_t pixels) { return pixels; }
  static bool AreTwins(const ContributionList& a, const ContributionList& b) {
    return AreAlike(a, b);
  }
  static void Fix(const ContributionList* lists, std::int32_t count, std::int32_t sourceSize,
                  Axis axis, Weights& weights) {
    FixFloats(lists, count, sourceSize, axis, weights);
  }
};
