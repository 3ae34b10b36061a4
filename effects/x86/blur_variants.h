// The vector variants of the blur's rows. Narrow ones are for boxes up to kLargestNarrowBox.
#pragma once

#include "effects/blur_rows.h"

extern const BlurRows kNarrowBlurSse2, kWideBlurSse2;
extern const BlurRows kNarrowBlurAvx2, kWideBlurAvx2;

// The colour channels of a pixel word are three neighbouring bytes; how they move from the source's
// words to the result's.
struct ChannelMoves {
  std::int32_t readShift;   // to the right, after which the channels are the lowest three bytes
  std::int32_t writeShift;  // to the left
  bool reversed;            // red and blue change places
  std::uint32_t opaque;     // all that is not colour
};

inline ChannelMoves MovesOf(const BlurRule& rule) {
  return {rule.source == PixelLayout::kAlphaFirst ? 8 : 0,
          rule.result == PixelLayout::kAlphaFirst ? 8 : 0,
          (rule.source == PixelLayout::kBlueFirst) != (rule.result == PixelLayout::kBlueFirst),
          EncodeOpaque(rule.result, {0, 0, 0})};
}
