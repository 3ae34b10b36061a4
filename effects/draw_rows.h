// The inner pixels of a drawing, where all four samples lie within the picture, as pure functions
// on rows, in several variants.
#pragma once

#include <cstddef>
#include <cstdint>

#include "effects/draw_share.h"
#include "pixels/pixel_format.h"
#include "plugin/processor.h"

// The samples in the order in which they are added.
enum Corner { kUpperLeft, kUpperRight, kLowerRight, kLowerLeft, kCorners };

// Two rows of pixels from the first pixel's left samples on: one pixel more than are drawn.
struct Neighbours {
  const std::uint32_t* upper = nullptr;
  const std::uint32_t* lower = nullptr;

  Neighbours From(std::size_t pixel) const { return {upper + pixel, lower + pixel}; }
};

// Weights that are the same for all pixels.
struct FixedBlend {
  PixelLayout source = PixelLayout::kNone;
  PixelLayout dest = PixelLayout::kNone;
  FixedShare corners[kCorners];
  FixedShare rest;  // of the old colour; weight 0 when nothing is left for it
};

// Weights of any size, chosen by the mask.
struct WeightedBlend {
  PixelLayout source, dest, mask;
  bool masked;                   // without a mask, that of 0 counts
  const double (*weights)[256];  // of each corner, by the mask's red
};

enum class MaskRun { kMixed, kBlack, kWhite };

// No layout is kNone. A row that is written overlaps no other one; nothing outside the rows is
// touched. Rows may lie at any multiple of 4 bytes.
struct DrawRows {
  void (*blendFixed)(std::uint32_t* dest, const FixedBlend& blend, const Neighbours& source,
                     std::size_t count);
  // The mask is not read when the blend has none.
  void (*blendWeighted)(std::uint32_t* dest, const WeightedBlend& blend, const Neighbours& source,
                        const Neighbours& mask, std::size_t count);
  // Pixels that keep their colour.
  void (*makeOpaque)(std::uint32_t* dest, PixelLayout layout, std::size_t count);
  // How many of the next `count` (at least 1) pixels have masks of one sort, in whole groups of
  // kMaskGroup or up to the end, and of which: the red of all samples 0, or of all 255, or neither.
  std::size_t (*maskRun)(const Neighbours& mask, PixelLayout layout, std::size_t count,
                         MaskRun& found);
};

inline constexpr std::size_t kMaskGroup = 16;

// The sort of one group of `count` pixels.
MaskRun MaskGroup(const Neighbours& mask, PixelLayout layout, std::size_t count);

// The fastest variant for a level.
const DrawRows& DrawRowsFor(VectorLevel level);
