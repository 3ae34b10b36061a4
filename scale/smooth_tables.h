// The tables of the smooth enlarger: which source pixel lies under each new one, and how much its
// neighbours weigh.
#pragma once

#include <cstdint>

#include "plugin/zeroed_block.h"

// Weights of four neighbouring source pixels, from the last to the first: entry 3 belongs to the
// one before the pixel underneath, entry 2 to that pixel, entries 1 and 0 to the two after it.
struct TapWeights {
  float entry[4];
};

// The weights for a fraction 0 <= t < 1 between the second and third neighbour, a cubic Hermite
// blend with the tangent factor 0: entry 1 is smoothstep(t) = 3t² - 2t³, entry 2 its complement.
// Deliberate: the factor is multiplied all the same, so the outer two weigh exactly nothing.
TapWeights WeightsFor(float t);

class SmoothTables {
 public:
  // For a source of sw×sh and a result of width×height pixels, all at least 1. Requests five
  // blocks, always in the same order and of the same sizes, whichever of them fail.
  SmoothTables(std::int32_t sw, std::int32_t sh, std::int32_t width, std::int32_t height);

  // False when any block is missing: the tables must not be used.
  bool Complete() const;

  // Each step fills one kind of entry.
  void FillIndexes();
  void FillColumnWeights();
  void FillRowWeights();
  void PadWeights();

  // Sets the column weights that are not zero apart, as HereWeights and NextWeights. They take the
  // place of ColumnWeights and of the row buffer, which must not be used any more.
  void SetColumnWeightsApart();

  std::int32_t Column(std::int32_t i) const { return xIndex_[i]; }
  std::int32_t Row(std::int32_t j) const { return yIndex_[j]; }
  const TapWeights& ColumnWeights(std::int32_t i) const { return xWeights_[i]; }
  const TapWeights& RowWeights(std::int32_t j) const { return yWeights_[j]; }
  float* RowBuffer() const { return rowBuffer_.Data(); }

  // One entry per column each: the source pixel of each new one, the weight of that pixel and the
  // weight of the next.
  const std::int32_t* Columns() const { return xIndex_.Data(); }
  const float* HereWeights() const { return rowBuffer_.Data(); }
  const float* NextWeights() const { return xWeights_[0].entry; }

 private:
  std::int32_t sw_, sh_, width_, height_;
  std::int32_t entries_;  // the larger of width and height
  ZeroedBlock<std::int32_t> xIndex_;
  ZeroedBlock<std::int32_t> yIndex_;
  ZeroedBlock<TapWeights> xWeights_;
  ZeroedBlock<TapWeights> yWeights_;
  ZeroedBlock<float> rowBuffer_;
};
